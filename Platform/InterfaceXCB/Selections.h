// SPDX-License-Identifier: Apache-2.0
// XSelections: what is copied, selected or dragged, given to other programs and got from them.
#pragma once

#include "Interface/Backend/Backend.h"
#include "InterfaceXCB/Connection.h"

namespace pelvor {

/// Nothing here waits for another program: contents come and go piece by piece as events arrive, and what
/// makes no progress for two seconds is given up. A content is asked for when somebody wants it, and is not
/// kept.
class XSelections {
  public:
    XSelections(XConnection& connection, BackendSink& sink) : _connection(connection), _sink(sink) {}

    bool offer(BackendSelection selection, std::vector<std::string> types, SelectionProvider provider);
    const std::vector<std::string>& offeredTypes(BackendSelection selection) const;
    void requestTypes(BackendSelection selection, SelectionReceiver done);
    /// `time` is the server's, of the event because of which it is asked for; 0 for now.
    void request(BackendSelection selection, const std::string& type, SelectionReceiver done,
                 xcb_timestamp_t time = 0);
    /// Waits up to a second for a clipboard manager, if there is one and something to save.
    void saveClipboard();

    /// Whether the event was about selections alone.
    bool handle(const XAnyEvent& event);
    /// Seconds until `giveUpLate` has something to do; infinity for never.
    double secondsLeft() const;
    void giveUpLate();
    /// The display is gone: whoever waits for a content hears that there is none.
    void giveUpAll();

  private:
    struct Offer {
        xcb_atom_t selection = 0;
        std::vector<std::string> types;
        SelectionProvider provider;
        xcb_timestamp_t time = 0;
    };
    /// A content that goes to another program in pieces.
    struct Transfer {
        xcb_window_t window;
        xcb_atom_t property;
        xcb_atom_t type;
        std::string content;
        std::size_t sent = 0;
        double deadline;

        bool goesTo(xcb_window_t itsWindow, xcb_atom_t itsProperty) const {
            return window == itsWindow && property == itsProperty;
        }
    };
    struct Request {
        xcb_atom_t selection;
        std::string type;  ///< "TARGETS" for the types
        SelectionReceiver done;
        xcb_timestamp_t time;
        xcb_atom_t target = 0;
        xcb_atom_t property = 0;
        bool comesInPieces = false;
        std::string content{};
        double deadline = 0;
    };

    xcb_atom_t atomOf(BackendSelection selection);
    Offer* offerOf(xcb_atom_t selection);
    std::size_t pieceSize() const;

    void answer(const xcb_selection_request_event_t& request);
    bool give(const Offer& offer, xcb_window_t window, xcb_atom_t target, xcb_atom_t property);
    bool giveSeveral(const Offer& offer, xcb_window_t window, xcb_atom_t property);
    bool giveContent(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, std::string content);
    bool continueTransfer(xcb_window_t window, xcb_atom_t property);
    void endTransfers(xcb_window_t window);

    void startRequest();
    void receive(const xcb_selection_notify_event_t& notice);
    void receivePiece();
    void finishRequest(bool isThere, std::string content);

    XConnection& _connection;
    BackendSink& _sink;
    Offer _offers[3];
    std::vector<Transfer> _transfers;
    std::deque<Request> _requests;  ///< the first is under way
    unsigned _requestCount = 0;
};

}  // namespace pelvor
