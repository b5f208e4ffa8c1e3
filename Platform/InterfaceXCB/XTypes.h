// SPDX-License-Identifier: Apache-2.0
// The names of XCB, xkbcommon and libxcb-imdkit that our headers mention: only .cpp files include the headers
// of these libraries. A .cpp file that includes both compiles only if each name means the same in both.
#pragma once

#include <cstdint>

struct xcb_connection_t;
struct xcb_cursor_context_t;
struct xcb_get_property_reply_t;
struct xcb_screen_t;

struct xcb_button_press_event_t;
struct xcb_client_message_event_t;
struct xcb_configure_notify_event_t;
struct xcb_enter_notify_event_t;
struct xcb_expose_event_t;
struct xcb_focus_in_event_t;
struct xcb_key_press_event_t;
struct xcb_motion_notify_event_t;
struct xcb_selection_notify_event_t;
struct xcb_selection_request_event_t;
using xcb_key_release_event_t = xcb_key_press_event_t;

using xcb_atom_t = std::uint32_t;
using xcb_colormap_t = std::uint32_t;
using xcb_cursor_t = std::uint32_t;
using xcb_gcontext_t = std::uint32_t;
using xcb_shm_seg_t = std::uint32_t;
using xcb_timestamp_t = std::uint32_t;
using xcb_visualid_t = std::uint32_t;
using xcb_window_t = std::uint32_t;

using xcb_im_get_im_values_reply_fr_t = struct _xcb_im_get_im_values_reply_fr_t;
using xcb_im_preedit_draw_fr_t = struct _xcb_im_preedit_draw_fr_t;
using xcb_xim_im_callback = struct _xcb_xim_im_callback;
using xcb_xim_t = struct _xcb_xim_t;
using xcb_xic_t = std::uint16_t;

struct xkb_compose_state;
struct xkb_compose_table;
struct xkb_context;
struct xkb_keymap;
struct xkb_state;
using xkb_keycode_t = std::uint32_t;
using xkb_keysym_t = std::uint32_t;
