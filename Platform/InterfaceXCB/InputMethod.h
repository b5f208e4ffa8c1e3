// SPDX-License-Identifier: Apache-2.0
// XInputMethod: the user's input method, another program that may take keys and give text for them.
#pragma once

#include "InterfaceXCB/Connection.h"
#include "InterfaceXCB/Preedit.h"

namespace pelvor {

/// Keys go to the input method, and come back or become text at some later time. Behind each key goes a
/// question that every input method replies to. If the reply for the oldest key does not come within a fifth
/// of a second, all keys are taken back, in their order, and none is handed on until the input method
/// replies; what it does until then is ignored.
///
/// One request is under way at a time: libxcb-imdkit sends no request that waited behind another one.
class XInputMethod {
  public:
    class Client {
      public:
        /// The input method has no use for the key.
        virtual void keyCameBack(BackendWindow window, const BackendKey& key) = 0;
        virtual void composed(BackendWindow window, std::u16string_view text) = 0;
        virtual void composing(BackendWindow window, const Preedit::Shown& preedit) = 0;

      protected:
        ~Client() = default;
    };

    XInputMethod(XConnection& connection, Client& client) : _connection(connection), _client(client) {}
    ~XInputMethod();
    XInputMethod(const XInputMethod&) = delete;
    XInputMethod& operator=(const XInputMethod&) = delete;

    /// Looks for the one that the environment names; one that starts later is found then.
    void open();
    /// Whether the event is part of the talk with the input method.
    bool filter(XAnyEvent* event);

    /// Returns false if there is no input method for this window, or it does not want such keys.
    bool take(BackendWindow window, const BackendKey& key,
              const std::shared_ptr<xcb_key_press_event_t>& event);
    void release(BackendWindow window, const xcb_key_release_event_t& event);
    /// Where the caret is; null if no text is taken. A window that has not told takes text.
    void setCaret(BackendWindow window, xcb_window_t handle, const PixelRect* caret);
    /// Gives up what is being composed.
    void reset(BackendWindow window);
    void setFocused(BackendWindow window, xcb_window_t handle, bool isFocused);
    void windowEnded(BackendWindow window);

    /// Seconds until `takeBackLate` has something to do; infinity for never.
    double secondsLeft() const;
    void takeBackLate();
    /// The display is gone.
    void abandon();

  private:
    /// What the input method knows of a window.
    struct Context {
        BackendWindow window;
        xcb_window_t handle;
        xcb_xic_t ic = 0;
        bool isRefused = false;
        bool takesText = true;
        bool isFocused = false;
        bool hasNewCaret = false;
        bool isToBeReset = false;
        bool wantsPresses = true;
        bool wantsReleases = false;
        PixelRect caret{};
        Preedit preedit{};
    };
    struct Key {
        BackendWindow window;
        BackendKey key;
        std::shared_ptr<xcb_key_press_event_t> event;
        double deadline;
        bool isSent = false;
        bool isBack = false;
    };

    Context* contextOf(BackendWindow window);
    Context& contextFor(BackendWindow window, xcb_window_t handle);
    Context* contextOfIC(xcb_xic_t ic);
    void opened();
    void chooseStyle(const xcb_im_get_im_values_reply_fr_t* reply);
    void proceed();
    bool makeContext();
    void made(xcb_xic_t ic);
    bool resetContext();
    bool sendCaret();
    bool sendKey();
    void replied();
    void answered();
    void disconnected();
    void tellFocus(const Context& context);
    void takeBack();
    void cameBack(const xcb_key_press_event_t& event);
    void committed(xcb_xic_t ic, const char* bytes, std::size_t length);
    void drawn(xcb_xic_t ic, const xcb_im_preedit_draw_fr_t& frame);
    std::u16string textOf(const void* bytes, std::size_t length) const;
    void tellPreedit(const Context& context);
    void clearPreedit(Context& context);
    void clearPreedits();
    static const xcb_xim_im_callback& callbacks();

    XConnection& _connection;
    Client& _client;
    xcb_xim_t* _method = nullptr;
    bool _isOpen = false;
    std::uint32_t _style = 0;
    std::vector<Context> _contexts;
    BackendWindow _asked = 0;  ///< whose context is being made; one at a time
    BackendWindow _focused = 0;
    std::vector<xcb_xic_t> _ended;  ///< contexts of windows that are gone
    std::deque<Key> _keys;          ///< the first one may be under way
    std::deque<Key> _answered;      ///< the latest others, which may still come back
    bool _isWaiting = false;        ///< for the reply to a request
    bool _isSilent = false;         ///< has had too much time for it
};

}  // namespace pelvor
