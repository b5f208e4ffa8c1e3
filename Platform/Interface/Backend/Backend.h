// SPDX-License-Identifier: Apache-2.0
// InterfaceBackend: what shows windows, reads keys and mouse, and knows the screens; and what it tells.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pelvor {

/// Places and extents in pixels; y grows downwards. Of windows and screens they count from the upper left
/// corner of the area that all screens share, inside a window from the upper left corner of its contents.
struct PixelPoint {
    int x = 0;
    int y = 0;
    friend constexpr bool operator==(const PixelPoint&, const PixelPoint&) = default;
};
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend constexpr bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// Names a window of a back end; 0 names no window. A number is not used twice.
using BackendWindow = std::uint32_t;

/// Modifier keys and mouse buttons that are down, joined by "|". The command key is the key that shortcuts
/// are typed with, "Ctrl" on the keyboards of this system; the control key is the one that is labelled with a
/// logo.
enum BackendModifiers : std::uint32_t {
    kBackendCapsLock = 1u << 0,
    kBackendShift = 1u << 1,
    kBackendControl = 1u << 2,
    kBackendOption = 1u << 3,
    kBackendCommand = 1u << 4,
    kBackendNumericPad = 1u << 5,
};

/// A monitor. All screens have one scale: pixels for each unit of length that hosts see.
struct BackendScreen {
    PixelRect frame;
    PixelRect visibleFrame;  ///< without panels and docks
    float scale = 1;
    bool isMain = false;
    std::string name;
    friend bool operator==(const BackendScreen&, const BackendScreen&) = default;
};

struct BackendKey {
    /// Of a modifier key (its symbol tells), `modifiers` is what holds after it.
    bool isDown = true;
    bool isRepeat = false;
    std::uint16_t code = 0;       ///< of the key itself, whatever the layout
    std::uint32_t symbol = 0;     ///< the symbol under the layout and the modifiers, as XKB numbers them
    std::uint32_t modifiers = 0;  ///< BackendModifiers
    std::u16string characters;    ///< what the key types; a function key its NS…FunctionKey unit
    std::u16string charactersIgnoringModifiers;  ///< the same with Shift and the third level alone
    std::u16string
        shortcutCharacters;   ///< of the first layout that gives the key an ASCII character, with Shift alone
    std::uint32_t group = 0;  ///< the layout that was in use
    double seconds = 0;       ///< since some moment, the same for all events
};

/// Whether the key types text by itself, without dead keys, compose sequences and input methods.
inline bool isTypedText(const BackendKey& key) {
    if (key.characters.empty() || (key.modifiers & (kBackendCommand | kBackendControl | kBackendOption)))
        return false;
    const char16_t unit = key.characters[0];
    return unit >= u' ' && unit != 0x7F && (unit < 0xF700 || unit > 0xF8FF);
}

struct BackendPointer {
    enum class Kind { down, up, moved, entered, exited, scrolled };
    Kind kind = Kind::moved;
    int button = 0;    ///< 1 is the main button, 2 the one that opens context menus, 3 the middle one
    PixelPoint place;  ///< in the window
    PixelPoint onScreen;
    std::uint32_t modifiers = 0;    ///< BackendModifiers
    std::uint32_t buttonsDown = 0;  ///< bit 1 << (button - 1)
    float linesX = 0;  ///< how far to scroll, in lines of text; positive scrolls to the right and down
    float linesY = 0;
    double seconds = 0;
};

/// Part of a text that is being composed, and how it is to be shown.
struct PreeditSpan {
    std::size_t location = 0;
    std::size_t length = 0;
    bool isHighlighted = false;  ///< the part that is being converted; else plainly underlined
};

enum class BackendSelection { clipboard, primary, drag };

/// Gives the content in one of the offered types; called when somebody asks for it, on the main thread.
using SelectionProvider = std::function<std::string(const std::string& type)>;
/// Receives the content; `isThere` is false if the owner has nothing of that type or does not reply.
using SelectionReceiver = std::function<void(bool isThere, std::string content)>;

struct BackendDrag {
    enum class Kind { entered, moved, left, dropped };
    Kind kind = Kind::entered;
    PixelPoint place;                ///< in the window
    std::vector<std::string> types;  ///< what the dragged content can be had as
};

/// A keyboard layout.
struct BackendLayout {
    std::uint32_t group = 0;  ///< what `setLayout` takes, of a layout that the user can switch to
    std::string name;         ///< "us", "de(nodeadkeys)"
    std::string displayName;  ///< "German (no dead keys)", in English
    std::string language;     ///< its first language: "deu" or "de", "srp-Latn"; "" if that is not known
    std::string shortName;    ///< "de"
    bool isCurrent = false;
};

enum class WindowKind { document, panel, menu, tip };

struct WindowWishes {
    WindowKind kind = WindowKind::document;
    PixelRect frame;           ///< of the contents
    BackendWindow parent = 0;  ///< of menus, tips and panels; 0 for a window without a parent
    bool isResizable = true;
    bool hasTitleBar = true;
    std::string title;
    std::string name;  ///< of the program, by which window managers group windows
};

/// What `configure` is to change; what is left out stays as it is.
struct WindowChanges {
    const PixelRect* frame = nullptr;
    const std::string* title = nullptr;
    const bool* isShown = nullptr;
    const bool* isMinimized = nullptr;
    const bool* isZoomed = nullptr;
    const bool* isFullScreen = nullptr;
    const bool* isDocumentEdited = nullptr;
    bool raises = false;
    bool takesFocus = false;
    const PixelRect* minimumAndMaximum =
        nullptr;  ///< x, y: least width and height; width, height: greatest, 0 for any
};

/// What a window is painted into: 32-bit pixels, blue in the lowest byte, then green and red; the highest is
/// not shown.
struct BackendImage {
    unsigned char* pixels = nullptr;
    int width = 0;
    int height = 0;
    int bytesPerRow = 0;
};

enum class BackendCursor {
    arrow,
    text,
    pointingHand,
    openHand,
    closedHand,
    crosshair,
    resizeLeft,
    resizeRight,
    resizeLeftRight,
    resizeUp,
    resizeDown,
    resizeUpDown,
    notAllowed,
    hidden,
};

/// What a back end tells; all calls come from inside `dispatch`, `interpretKey` or another operation of the
/// back end, on the main thread. A call for a window that has been destroyed is left out.
class BackendSink {
  public:
    virtual void key(BackendWindow window, const BackendKey& key) = 0;
    /// The three replies to `interpretKey`, which may come later, in the order of the keys: the text that one
    /// or several keys gave; what is being composed, "" when there is no longer anything; and a key that is
    /// part of no text.
    virtual void text(BackendWindow window, std::u16string_view text) = 0;
    virtual void preedit(BackendWindow window, std::u16string_view text, std::size_t caret,
                         std::span<const PreeditSpan> spans) = 0;
    virtual void command(BackendWindow window, const BackendKey& key) = 0;
    virtual void pointer(BackendWindow window, const BackendPointer& pointer) = 0;
    /// Pixels have to be painted again.
    virtual void expose(BackendWindow window, const PixelRect& damage) = 0;
    /// `beginPaint` said busy, and would no longer.
    virtual void paintReady(BackendWindow window) = 0;
    /// Where the window is now and what has become of it.
    virtual void configured(BackendWindow window, const PixelRect& frame, bool isMinimized,
                            bool isZoomed) = 0;
    virtual void focus(BackendWindow window, bool isFocused) = 0;
    /// Somebody, such as a window manager with keys of its own, takes keys although the focus is here.
    virtual void keysTaken() {}
    /// The user asks to close the window.
    virtual void close(BackendWindow window) = 0;
    /// A click beside the menus that are tracked, the loss of the grab, or of the keyboard: tracking ends.
    virtual void trackingLost() = 0;
    virtual void layoutChanged() = 0;
    virtual void screensChanged() = 0;
    virtual void selectionLost(BackendSelection selection) = 0;
    /// Returns whether a drop at this place would be taken.
    virtual bool drag(BackendWindow window, const BackendDrag& drag) = 0;
    /// The display is gone. Windows stay as they are, unseen; no other call follows.
    virtual void lost(const std::string& reason) = 0;

  protected:
    ~BackendSink() = default;
};

/// One connection to a display, or none at all. Main thread; no operation waits for longer than its comment
/// says.
class InterfaceBackend {
  public:
    virtual ~InterfaceBackend() = default;

    /// "XCB", "none".
    virtual std::string name() const = 0;
    /// Whether somebody can see windows.
    virtual bool hasDisplay() const = 0;
    /// Whether somebody can press keys: a user at a display, or a program that plays one.
    virtual bool hasUser() const { return hasDisplay(); }

    // The loop: wait until the descriptor is readable, but not if `prepare` returns true; then call
    // `dispatch`.

    /// -1 if there is no descriptor to wait for.
    virtual int descriptor() const = 0;
    /// Sends what is still to be sent. Returns whether events have come already.
    virtual bool prepare() = 0;
    /// Delivers all events that have come, without waiting.
    virtual void dispatch() = 0;
    /// Seconds until `dispatch` is to be called even if nothing comes, such as for a server that does not
    /// reply; infinity for never.
    virtual double timeout() = 0;

    // Screens, the main one first.

    virtual std::vector<BackendScreen> screens() = 0;

    // Windows

    /// A window that is not shown yet; 0 if the display is gone.
    virtual BackendWindow createWindow(const WindowWishes& wishes) = 0;
    virtual void destroyWindow(BackendWindow window) = 0;
    /// What is wished; what came of it is told by `configured`.
    virtual void configure(BackendWindow window, const WindowChanges& changes) = 0;
    /// How much wider a window is than its contents: left, top, right and bottom edge in x, y, width and
    /// height. Waits up to a tenth of a second where the window was not shown yet.
    virtual PixelRect frameExtents(BackendWindow window) = 0;

    // Painting. What was painted before is still in the image.

    /// Null while an earlier picture is still being sent; `paintReady` follows.
    /// The image stays where it is until `present` ends the frame.
    virtual const BackendImage* beginPaint(BackendWindow window) = 0;
    /// Shows these parts, which do not overlap, and any earlier ones of this frame. `isLast` ends the frame.
    virtual void present(BackendWindow window, std::span<const PixelRect> damage, bool isLast) = 0;

    virtual void setCursor(BackendWindow window, BackendCursor cursor) = 0;
    virtual PixelPoint pointerPlace() = 0;
    virtual std::uint32_t modifiersDown() = 0;

    /// Sends all pointer and key events to the menus of this program until `endTracking`. Returns false if
    /// another program holds the pointer: events then come only while the pointer is in our windows.
    virtual bool beginTracking(BackendWindow menu) = 0;
    virtual void endTracking() = 0;

    // Keys and text

    /// Hands the key, as `key` gave it, to dead keys, compose sequences and the input method.
    virtual void interpretKey(BackendWindow window, const BackendKey& key) = 0;
    /// Where the caret is, so that an input method shows its list there; null when nobody takes text. A text
    /// that was being composed is given up then.
    virtual void setTextInput(BackendWindow window, const PixelRect* caret) = 0;
    /// Forgets half a compose sequence, such as when a shortcut takes the key.
    virtual void resetComposing(BackendWindow window) = 0;
    /// Returns the layouts that the user can switch to; the list is empty where programs cannot switch the
    /// keyboard. From the first call on, `layoutChanged` tells of changes, and sometimes when nothing
    /// changed.
    virtual std::vector<BackendLayout> layouts() = 0;
    /// Returns all layouts that the system has, whether or not the user can switch to them.
    virtual const std::vector<BackendLayout>& knownLayouts() = 0;
    /// Switches to the layout with that group, which `layouts` returns as the current one from then on.
    /// Returns false where the keyboard cannot be switched.
    virtual bool setLayout(std::uint32_t group) = 0;

    // Selections: what is copied, selected or dragged, here or by other programs. Types are names such as
    // "UTF8_STRING" or "text/rtf".

    /// Offers content of these types to other programs; without types, gives the selection up. Returns false
    /// if another program was faster or the display is gone.
    virtual bool offerSelection(BackendSelection selection, std::vector<std::string> types,
                                SelectionProvider provider) = 0;
    /// The types that the owner offers; `done` gets them as lines.
    virtual void requestTypes(BackendSelection selection, SelectionReceiver done) = 0;
    virtual void requestSelection(BackendSelection selection, const std::string& type,
                                  SelectionReceiver done) = 0;
    /// Drags what is offered as BackendSelection::drag, while the main button is down. `done` gets whether it
    /// was taken.
    virtual bool beginDrag(BackendWindow window, std::function<void(bool isTaken)> done) = 0;
    /// After `dropped`: the content was read, or not wanted.
    virtual void endDrop(bool isTaken) = 0;

    virtual void beep() = 0;
    /// Hands the clipboard's content to a program that keeps it when this one ends; waits up to a second for
    /// it.
    virtual void saveClipboard() = 0;
};

/// The one symbol of a back end's module, `interface_backend_2`; a change of this file raises the number.
/// Connects to the display, waiting two seconds at most; returns null, and the reason, without a display.
using InterfaceBackendEntry = InterfaceBackend* (*)(BackendSink* sink, std::string* reason);

}  // namespace pelvor
