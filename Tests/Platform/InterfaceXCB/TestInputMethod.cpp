// SPDX-License-Identifier: Apache-2.0
#include "TestInputMethod.h"

#include <poll.h>
#include <xcb-imdkit/encoding.h>
#include <xcb-imdkit/imdkit.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace pelvor {

struct TestInputMethod::Server {
    TestInputMethod& owner;
    bool isUTF8;
    std::size_t count = 0;  ///< of letters that are being composed

    std::string encoded(const std::string& text) const {
        if (isUTF8) return text;
        std::size_t length = 0;
        char* bytes = xcb_utf8_to_compound_text(text.c_str(), text.size(), &length);
        const std::string result(bytes, length);
        std::free(bytes);
        return result;
    }
    std::string composed() const {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) text += "啊";
        return text;
    }
    void take(xcb_im_t* im, xcb_im_input_context_t* ic, xcb_key_press_event_t* event) {
        ++owner.keyCount;
        const int code = event->detail - 8;
        if (code == 30) {
            if (count++ == 0) xcb_im_preedit_start_callback(im, ic);
            std::vector<std::uint32_t> styles(1, count == 1 ? XCB_XIM_HIGHLIGHT : XCB_XIM_UNDERLINE);
            std::string letter = encoded("啊");
            xcb_im_preedit_draw_fr_t frame{};
            frame.caret = static_cast<std::uint32_t>(count);
            frame.chg_first = static_cast<std::uint32_t>(count - 1);
            frame.preedit_string = reinterpret_cast<std::uint8_t*>(letter.data());
            frame.length_of_preedit_string = static_cast<std::uint16_t>(letter.size());
            frame.feedback_array = {1, styles.data()};
            xcb_im_preedit_draw_callback(im, ic, &frame);
        } else if (code == 28 && count > 0) {
            const std::string text = encoded(composed());
            count = 0;
            xcb_im_preedit_done_callback(im, ic);
            xcb_im_commit_string(im, ic, XCB_XIM_LOOKUP_CHARS, text.data(),
                                 static_cast<std::uint32_t>(text.size()), 0);
        } else if (code != 45) {
            xcb_im_forward_event(im, ic, event);
        }
    }
    static void handle(xcb_im_t* im, xcb_im_client_t*, xcb_im_input_context_t* ic,
                       const xcb_im_packet_header_fr_t* header, void*, void* argument, void* data) {
        auto& server = *static_cast<Server*>(data);
        if (header->major_opcode == XCB_XIM_SET_IC_FOCUS) ++server.owner.focusCount;
        if (header->major_opcode == XCB_XIM_RESET_IC) server.count = 0;
        if (header->major_opcode == XCB_XIM_FORWARD_EVENT)
            server.take(im, ic, static_cast<xcb_key_press_event_t*>(argument));
        if (header->major_opcode == XCB_XIM_SET_IC_VALUES)
            server.owner.spotX = xcb_im_input_context_get_preedit_attr(ic)->spot_location.x;
    }
};

TestInputMethod::TestInputMethod(const char* encoding) : _encoding(encoding) {
    ::setenv("XMODIFIERS", "@im=pelvor_test", 1);
    xcb_compound_text_init();
    _thread = std::thread([this] { run(); });
    while (!_isReady) std::this_thread::yield();
}

TestInputMethod::~TestInputMethod() {
    _ends = true;
    _thread.join();
}

void TestInputMethod::run() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
    std::uint32_t style = XCB_IM_PreeditCallbacks | XCB_IM_StatusNothing;
    const xcb_im_styles_t styles{1, &style};
    char* name = _encoding.data();
    const xcb_im_encodings_t encodings{1, &name};
    Server server{*this, _encoding == "UTF8_STRING"};
    xcb_im_t* im = xcb_im_create(connection, 0, window, "pelvor_test", "en_US,en,C", &styles, nullptr,
                                 nullptr, &encodings, XCB_EVENT_MASK_KEY_PRESS, &Server::handle, &server);
    if (!xcb_im_open_im(im)) std::abort();
    xcb_flush(connection);
    _isReady = true;
    while (!_ends) {
        pollfd descriptor{xcb_get_file_descriptor(connection), POLLIN, 0};
        ::poll(&descriptor, 1, 5);
        while (xcb_generic_event_t* event = hangs ? nullptr : xcb_poll_for_event(connection)) {
            xcb_im_filter_event(im, event);
            std::free(event);
        }
        xcb_flush(connection);
    }
    xcb_im_close_im(im);
    xcb_im_destroy(im);
    xcb_disconnect(connection);
}

}  // namespace pelvor
