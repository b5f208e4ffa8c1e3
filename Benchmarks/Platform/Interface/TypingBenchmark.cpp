// SPDX-License-Identifier: Apache-2.0
// What somebody with keys and eyes waits for: a typed letter, a page, the first text. The clock runs at
// another client of an X server under a window manager: from a real key until a pixel of the screen is
// another one. Programs of ours and of Qt show the same text in the same window; Writer shows it in pages.
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "Interface/NSApplication.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextView.h"
#include "Interface/NSWindow.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSFont.h"
#include "TypingSample.h"
#include "XServerScope.h"

namespace {

using namespace pelvor;

constexpr int kLetterKey = 50, kBackspaceKey = 14, kPageUpKey = 104, kPageDownKey = 109;
constexpr int kCount = 60;

// MARK: Who is looked at

int showOurs(std::size_t size) {
    AutoreleasePool pool;
    NSApplication* app = NSApplication::sharedApplication();
    auto window = NSWindow::initWithContentRect_styleMask_backing_defer(
        {{kWindowLeft, 1024 - kWindowTop - kWindowHeight}, {kWindowWidth, kWindowHeight}},
        NSTitledWindowMask | NSResizableWindowMask, NSBackingStoreBuffered, true);
    auto scroll = NSScrollView::initWithFrame({{0, 0}, {kWindowWidth, kWindowHeight}});
    scroll->setHasVerticalScroller(true);
    auto text = NSTextView::initWithFrame({{0, 0}, {kWindowWidth - 20, kWindowHeight}});
    text->setFont(NSFont::fontWithName_size(u"DejaVu Sans"_ns, 12));
    text->setString(NSString::ofUTF8(sampleText(size)));
    scroll->setDocumentView(text);
    window->setContentView(scroll);
    window->makeFirstResponder(text);
    const NSRange middle{static_cast<NSUInteger>(size / 2), 0};
    text->setSelectedRange(middle);
    text->scrollRangeToVisible(middle);
    window->makeKeyAndOrderFront(nullptr);
    app->run();
    return 0;
}

// MARK: Who looks

double millisecondsNow() { return secondsNow() * 1000; }
void sleepMilliseconds(int count) { std::this_thread::sleep_for(std::chrono::milliseconds(count)); }

using Pixels = std::vector<std::uint32_t>;

class Onlooker {
  public:
    Onlooker(const char* program, std::size_t size) : Onlooker(commandOf(program, size)) {}
    explicit Onlooker(const std::vector<std::string>& command)
        : _server(XServerScope::Manager::openbox), _start(millisecondsNow()), _program(command) {}

    /// Milliseconds from the start until there are dark pixels on light ones where the text begins.
    double waitForText() {
        return waitUntil([&] {
            const Pixels pixels = see(kWindowLeft + 5, kWindowTop + 5, 200, 60);
            return std::ranges::any_of(pixels, isDark) && std::ranges::count_if(pixels, isLight) > 6000;
        });
    }
    /// Milliseconds of processor time that the program takes until there are dark pixels on light ones where
    /// the text of Writer's first page begins.
    double waitForPage() {
        const bool isSeen = waitUntil([&] {
                                const Pixels pixels = see(420, 180, 400, 100);
                                return std::ranges::count_if(pixels, isDark) > 500 &&
                                       std::ranges::count_if(pixels, isLight) > 20000;
                            }) >= 0;
        double nanoseconds = 0;
        for (const auto& task :
             std::filesystem::directory_iterator("/proc/" + std::to_string(_program.pid()) + "/task")) {
            double taken = 0;
            std::ifstream(task.path() / "schedstat") >> taken;
            nanoseconds += taken;
        }
        return isSeen ? nanoseconds / 1e6 : -1;
    }
    /// Milliseconds from the key until a pixel changes that it always changes, `count` times; the other key
    /// makes it as it was before.
    std::vector<double> timesOf(int key, int backKey, int count) {
        sleepMilliseconds(1000);
        const std::size_t place = placeThatChanges(key, backKey);
        const int x = kWindowLeft + static_cast<int>(place % kWindowWidth);
        const int y = kWindowTop + static_cast<int>(place / kWindowWidth);
        std::vector<double> times;
        for (int i = 0; place != kNowhere && i < count; ++i) {
            const std::uint32_t before = _server.pixel(x, y);
            _start = millisecondsNow();
            _server.press(key);
            times.push_back(waitUntil([&] { return _server.pixel(x, y) != before; }));
            sleepMilliseconds(30);
            _server.press(backKey);
            waitUntil([&] { return _server.pixel(x, y) == before; });
            sleepMilliseconds(30);
        }
        return times;
    }

    /// Until Writer has shown its first page, and found and examined the others.
    void waitForWriter() { sleepMilliseconds(6000); }

  private:
    static std::vector<std::string> commandOf(std::string_view program, std::size_t size) {
        if (program != "Writer")
            return {program == "ours" ? "/proc/self/exe" : TYPING_PEERS, std::string(program),
                    std::to_string(size)};
        const std::filesystem::path file = std::filesystem::temp_directory_path() / "TypingBenchmark.txt";
        std::ofstream(file) << sampleText(size);
        return {WRITER_PROGRAM, file};
    }
    static constexpr std::size_t kNowhere = ~std::size_t{0};
    static bool isDark(std::uint32_t pixel) { return (pixel & 0xFF00) < 0x6000; }
    static bool isLight(std::uint32_t pixel) { return (pixel & 0xFF00) > 0xE000; }

    Pixels see(int x, int y, int width, int height) {
        XConnection& peer = _server.peerConnection();
        const auto image = peer.wait<xcb_get_image_reply_t>(
            xcb_get_image(peer, XCB_IMAGE_FORMAT_Z_PIXMAP, peer.root(), static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), ~0U));
        Pixels pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        if (image) std::memcpy(pixels.data(), xcb_get_image_data(image.get()), pixels.size() * 4);
        for (std::uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
        return pixels;
    }
    /// Pixels that blink, as those of a caret do, count as none.
    Pixels seeWhatStays() {
        sleepMilliseconds(500);
        Pixels pixels = see(kWindowLeft, kWindowTop, kWindowWidth, kWindowHeight);
        for (int i = 0; i < 12; ++i) {
            sleepMilliseconds(100);
            const Pixels again = see(kWindowLeft, kWindowTop, kWindowWidth, kWindowHeight);
            for (std::size_t at = 0; at < pixels.size(); ++at)
                if (pixels[at] != again[at]) pixels[at] = ~0U;
        }
        return pixels;
    }
    std::size_t placeThatChanges(int key, int backKey) {
        const Pixels before = seeWhatStays();
        _server.press(key);
        const Pixels after = seeWhatStays();
        _server.press(backKey);
        const Pixels again = seeWhatStays();
        for (std::size_t at = 0; at < before.size(); ++at)
            if (before[at] == again[at] && isLight(before[at]) && before[at] != ~0U && isDark(after[at]))
                return at;
        return kNowhere;
    }
    template <class Condition>
    double waitUntil(Condition condition) {
        while (!condition())
            if (millisecondsNow() - _start > 20000) return -1;
        return millisecondsNow() - _start;
    }

    XServerScope _server;
    double _start;
    ProgramScope _program;
};

void tell(benchmark::State& state, std::vector<double> times) {
    if (times.empty() || *std::ranges::min_element(times) < 0)
        return state.SkipWithError("nothing was to be seen");
    std::ranges::sort(times);
    for (auto _ : state) state.SetIterationTime(times[times.size() / 2] / 1000);
    state.counters["p95"] = times[times.size() * 95 / 100];
}

void typing(benchmark::State& state, const char* program, int key, int backKey) {
    Onlooker onlooker(program, static_cast<std::size_t>(state.range(0)));
    if (std::string_view(program) == "Writer")
        onlooker.waitForWriter();
    else if (onlooker.waitForText() < 0)
        return state.SkipWithError("no text was to be seen");
    tell(state, onlooker.timesOf(key, backKey, kCount));
}

void starting(benchmark::State& state, const char* program) {
    std::vector<double> times;
    for (int i = 0; i < 12; ++i)
        times.push_back(Onlooker(program, static_cast<std::size_t>(state.range(0))).waitForText());
    tell(state, times);
}

// As an editor of small texts writes.
void openingRichText(benchmark::State& state) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "TypingBenchmark.rtf";
    {
        std::ofstream bytes(file);
        bytes << "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\froman DejaVu Serif;}}\n";
        while (bytes.tellp() < state.range(0))
            bytes << "\\pard\\sa200\\sl276\\slmult1\\f0\\fs22 It was a bright cold day in April, and the "
                     "clocks "
                     "were striking \\b thirteen\\b0 . Winston Smith, his chin nuzzled into his breast in an "
                     "effort to escape the vile wind, slipped quickly through the glass doors.\\par\n";
        bytes << "}";
    }
    std::vector<double> times;
    for (int i = 0; i < 8; ++i)
        times.push_back(Onlooker(std::vector<std::string>{WRITER_PROGRAM, file}).waitForPage());
    tell(state, times);
}

void settings(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(1);
}

void add(const char* program) {
    const std::string name = program;
    const auto letter = [program](benchmark::State& state) {
        typing(state, program, kLetterKey, kBackspaceKey);
    };
    const auto page = [program](benchmark::State& state) {
        typing(state, program, kPageDownKey, kPageUpKey);
    };
    const auto start = [program](benchmark::State& state) { starting(state, program); };
    benchmark::RegisterBenchmark(("letter/" + name).c_str(), letter)->Apply(settings)->Arg(500)->Arg(1 << 20);
    benchmark::RegisterBenchmark(("page/" + name).c_str(), page)->Apply(settings)->Arg(1 << 20);
    if (name == "Writer") return;  // StartUpBenchmark measures its start
    benchmark::RegisterBenchmark(("start/" + name).c_str(), start)->Apply(settings)->Arg(500);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == "ours") return showOurs(std::strtoul(argv[2], nullptr, 10));
    for (const char* program : {"ours", "Writer", "QTextEdit", "QPlainTextEdit"}) add(program);
    benchmark::RegisterBenchmark("richText/Writer", openingRichText)->Apply(settings)->Arg(10'000'000);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
