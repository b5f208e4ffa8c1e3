// SPDX-License-Identifier: Apache-2.0
// BackendDriver: a back end that is looked after as the library does, and notes what it tells.
#pragma once

#include <poll.h>

#include "Prelude.h"
#include "Shared/UTF8.h"
#include "XServerScope.h"

extern "C" pelvor::InterfaceBackend* interface_backend_2(pelvor::BackendSink* sink, std::string* reason);

namespace pelvor {

inline std::string shownRect(const PixelRect& rect) {
    return std::to_string(rect.x) + "," + std::to_string(rect.y) + " " + std::to_string(rect.width) + "x" +
           std::to_string(rect.height);
}
inline std::string utf8(std::u16string_view text) { return utf8FromUnitsMending(text); }
inline std::string shownPreedit(std::u16string_view text, std::size_t caret,
                                std::span<const PreeditSpan> spans) {
    std::string shown = utf8(text) + " " + std::to_string(caret);
    for (const PreeditSpan& span : spans)
        shown += " " + std::to_string(span.location) + "+" + std::to_string(span.length) +
                 (span.isHighlighted ? "!" : "");
    return shown;
}

class BackendDriver final : public BackendSink {
  public:
    BackendDriver() : backend(interface_backend_2(this, &reason)) {}

    /// Lets the back end work until that holds; fails if that takes very long.
    template <class Condition>
    [[nodiscard]] bool until(Condition condition) {
        for (const double deadline = secondsNow() + 20; secondsNow() < deadline;) {
            if (condition()) return true;
            if (backend->descriptor() < 0) return condition();
            pollfd descriptor{backend->descriptor(), POLLIN, 0};
            if (!backend->prepare())
                ::poll(&descriptor, 1, static_cast<int>(std::min(backend->timeout(), 0.05) * 1000));
            backend->dispatch();
            if (other) other->backend->prepare(), other->backend->dispatch();
        }
        return false;
    }
    [[nodiscard]] bool untilHeard(const std::string& text) {
        return until([&] { return std::ranges::find(heard, text) != heard.end(); });
    }
    /// A window that is shown, painted in one colour, and has the focus if it can.
    BackendWindow openWindow(const PixelRect& frame, std::uint32_t colour,
                             WindowKind kind = WindowKind::document, BackendWindow parent = 0) {
        WindowWishes wishes;
        wishes.kind = kind;
        wishes.frame = frame;
        wishes.title = "Trial";
        wishes.name = "pelvor-test";
        wishes.parent = parent;
        const BackendWindow window = backend->createWindow(wishes);
        colours[window] = colour;
        const bool yes = true;
        WindowChanges changes;
        changes.frame = &frame;
        changes.isShown = &yes;
        changes.takesFocus = true;
        backend->configure(window, changes);
        paint(window, colour);
        return window;
    }
    void paint(BackendWindow window, std::uint32_t colour) {
        const BackendImage* image = backend->beginPaint(window);
        ASSERT_TRUE(image);
        for (int y = 0; y < image->height; ++y)
            for (int x = 0; x < image->width; ++x)
                std::memcpy(image->pixels + y * image->bytesPerRow + x * 4, &colour, 4);
        const PixelRect all{0, 0, image->width, image->height};
        backend->present(window, {&all, 1}, true);
    }
    void configure(BackendWindow window, const std::function<void(WindowChanges&)>& change) {
        WindowChanges changes;
        change(changes);
        backend->configure(window, changes);
    }
    std::size_t count(const std::string& beginning) const {
        return static_cast<std::size_t>(std::ranges::count_if(
            heard, [&](const std::string& text) { return text.starts_with(beginning); }));
    }

    std::vector<std::string> heard;
    std::vector<BackendKey> keys;
    std::vector<BackendPointer> pointers;
    std::vector<BackendDrag> drags;
    std::map<BackendWindow, PixelRect> frames;
    std::map<BackendWindow, std::uint32_t> colours;
    BackendDriver* other = nullptr;  ///< has to be looked after, too
    bool interprets = true;          ///< each key that is pressed
    bool takesDrops = true;
    std::function<void()> reaction;  ///< to whatever comes next
    std::string reason;
    std::unique_ptr<InterfaceBackend> backend;

  private:
    void note(const std::string& text) {
        heard.push_back(text);
        if (const auto react = std::exchange(reaction, nullptr)) react();
    }
    void key(BackendWindow window, const BackendKey& key) override {
        keys.push_back(key);
        note(std::string("key ") + (key.isDown ? "down " : "up ") + utf8(key.characters));
        if (key.isDown && interprets) backend->interpretKey(window, key);
    }
    void text(BackendWindow, std::u16string_view text) override { note("text " + utf8(text)); }
    void preedit(BackendWindow, std::u16string_view text, std::size_t caret,
                 std::span<const PreeditSpan> spans) override {
        note("preedit " + shownPreedit(text, caret, spans));
    }
    void command(BackendWindow, const BackendKey& key) override {
        note("command " + utf8(key.shortcutCharacters));
    }
    void pointer(BackendWindow window, const BackendPointer& pointer) override {
        static constexpr const char* kKinds[] = {"down", "up", "moved", "entered", "exited", "scrolled"};
        pointers.push_back(pointer);
        note(std::string(kKinds[static_cast<int>(pointer.kind)]) + " " + std::to_string(window));
    }
    void expose(BackendWindow window, const PixelRect& damage) override {
        note("expose " + std::to_string(window));
        if (backend->beginPaint(window)) paint(window, colours[window]);
    }
    void paintReady(BackendWindow window) override { note("ready " + std::to_string(window)); }
    void configured(BackendWindow window, const PixelRect& frame, bool isMinimized, bool isZoomed) override {
        frames[window] = frame;
        note("configured " + std::to_string(window) + " " + shownRect(frame) +
             (isMinimized ? " minimized" : "") + (isZoomed ? " zoomed" : ""));
    }
    void focus(BackendWindow window, bool isFocused) override {
        note((isFocused ? "focus " : "blur ") + std::to_string(window));
    }
    void close(BackendWindow window) override { note("close " + std::to_string(window)); }
    void trackingLost() override { note("tracking lost"); }
    void layoutChanged() override { note("layout changed"); }
    void screensChanged() override { note("screens changed"); }
    void selectionLost(BackendSelection selection) override {
        note("selection lost " + std::to_string(static_cast<int>(selection)));
    }
    bool drag(BackendWindow window, const BackendDrag& drag) override {
        static constexpr const char* kKinds[] = {"entered", "moved", "left", "dropped"};
        drags.push_back(drag);
        note(std::string("drag ") + kKinds[static_cast<int>(drag.kind)]);
        return takesDrops;
    }
    void lost(const std::string& reason) override { note("lost: " + reason); }
};

/// Skips where there is no X server to run.
class XCBTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!XServerScope::isPossible())
            GTEST_SKIP() << "There is no Xvfb; scripts/install-dependencies installs it";
    }
};

}  // namespace pelvor
