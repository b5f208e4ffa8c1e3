// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Selections.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace pelvor {

namespace {

constexpr double kPatience = 2;
constexpr std::size_t kPieceSize = 1 << 18;
constexpr std::size_t kLargestContent = std::size_t{1} << 30;  // an owner may send without an end
constexpr unsigned kPropertyCount = 4;
constexpr std::size_t kMostTransfers = 64;  // each has its content; a program may ask as often as it likes

constexpr const char* kTargets = "TARGETS";
constexpr std::string_view kNotTypes[] = {"DELETE",       "INSERT_PROPERTY", "INSERT_SELECTION", "MULTIPLE",
                                          "SAVE_TARGETS", kTargets,          "TIMESTAMP"};

// Any content is bytes, the list of types numbers.
int formatOf(std::string_view type) { return type == kTargets ? 32 : 8; }

}  // namespace

xcb_atom_t XSelections::atomOf(BackendSelection selection) {
    switch (selection) {
        case BackendSelection::clipboard:
            return _connection[Atom::CLIPBOARD];
        case BackendSelection::primary:
            return XCB_ATOM_PRIMARY;
        default:
            return _connection[Atom::XdndSelection];
    }
}

XSelections::Offer* XSelections::offerOf(xcb_atom_t selection) {
    const auto found = std::ranges::find(_offers, selection, &Offer::selection);
    return selection == 0 || found == std::end(_offers) ? nullptr : &*found;
}

const std::vector<std::string>& XSelections::offeredTypes(BackendSelection selection) const {
    return _offers[static_cast<int>(selection)].types;
}

std::size_t XSelections::pieceSize() const {
    return std::min(kPieceSize, std::size_t{xcb_get_maximum_request_length(_connection)} * 4 - 64);
}

// MARK: Giving

bool XSelections::offer(BackendSelection selection, std::vector<std::string> types,
                        SelectionProvider provider) {
    if (_connection.isLost()) return false;
    Offer& offer = _offers[static_cast<int>(selection)];
    const xcb_atom_t atom = atomOf(selection);
    if (types.empty()) {
        if (offer.selection) xcb_set_selection_owner(_connection, XCB_NONE, atom, offer.time);
        offer = {};
        _connection.flush();
        return true;
    }
    const xcb_timestamp_t time = _connection.time();
    xcb_set_selection_owner(_connection, _connection.helper(), atom, time);
    const auto owner =
        _connection.wait<xcb_get_selection_owner_reply_t>(xcb_get_selection_owner(_connection, atom));
    if (!owner || owner->owner != _connection.helper()) return false;
    for (const std::string& type : types) _connection.atomNamed(type);  // so that requests find the name
    offer = {atom, std::move(types), std::move(provider), time};
    return true;
}

void XSelections::answer(const xcb_selection_request_event_t& request) {
    const xcb_atom_t property = request.property ? request.property : request.target;  // of very old programs
    const Offer* found = offerOf(request.selection);
    const bool isEarlier = found && request.time != XCB_CURRENT_TIME &&
                           static_cast<std::int32_t>(request.time - found->time) < 0;
    const auto reply = [&](bool isGiven) {
        _connection.sendSelectionNotice(request, isGiven ? property : static_cast<xcb_atom_t>(XCB_NONE));
    };
    // Whoever asks may name any window; what a window of ours has for properties and events is not its own to
    // say.
    const bool isOurs = _connection.owns(request.requestor) && request.requestor != _connection.helper();
    if (!found || isEarlier || isOurs) return reply(false);
    const Offer offer = *found;  // the provider may offer something else
    try {
        reply(request.target == _connection[Atom::MULTIPLE]
                  ? request.property && giveSeveral(offer, request.requestor, property)
                  : give(offer, request.requestor, request.target, property));
    } catch (...) {
        reply(false);
        throw;
    }
}

bool XSelections::give(const Offer& offer, xcb_window_t window, xcb_atom_t target, xcb_atom_t property) {
    if (target == _connection[Atom::TARGETS]) {
        std::vector<std::uint32_t> targets{target, _connection[Atom::MULTIPLE], _connection[Atom::TIMESTAMP]};
        for (const std::string& type : offer.types) targets.push_back(_connection.atomNamed(type));
        _connection.setProperty(window, property, XCB_ATOM_ATOM, targets);
        return true;
    }
    if (target == _connection[Atom::TIMESTAMP]) {
        _connection.setProperty(window, property, XCB_ATOM_INTEGER, {offer.time});
        return true;
    }
    const auto type = std::ranges::find_if(
        offer.types, [&](const std::string& name) { return _connection.atomNamed(name) == target; });
    if (type == offer.types.end() || target == 0) return false;
    return giveContent(window, property, target, offer.provider(*type));
}

bool XSelections::giveSeveral(const Offer& offer, xcb_window_t window, xcb_atom_t property) {
    std::vector<std::uint32_t> pairs = _connection.property(window, property).words();
    pairs.resize(std::min<std::size_t>(pairs.size() / 2 * 2, 2 * 64));
    for (std::size_t i = 0; i < pairs.size(); i += 2)
        if (pairs[i] == _connection[Atom::MULTIPLE] || pairs[i + 1] == 0 ||
            !give(offer, window, pairs[i], pairs[i + 1]))
            pairs[i] = XCB_NONE;
    _connection.setProperty(window, property, _connection[Atom::ATOM_PAIR], pairs);
    return !pairs.empty();
}

bool XSelections::giveContent(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                              std::string content) {
    // What the window did not fetch from there it does not want any longer.
    std::erase_if(_transfers, [&](const Transfer& transfer) { return transfer.goesTo(window, property); });
    if (content.size() <= pieceSize()) {
        _connection.setProperty(window, property, type, content);
        return true;
    }
    if (_transfers.size() >= kMostTransfers) return false;
    _connection.watch(window);  // who wants it deletes the property to get the next piece
    _connection.setProperty(window, property, _connection[Atom::INCR],
                            {static_cast<std::uint32_t>(std::min<std::size_t>(content.size(), UINT32_MAX))});
    _transfers.push_back({window, property, type, std::move(content), 0, secondsNow() + kPatience});
    return true;
}

bool XSelections::continueTransfer(xcb_window_t window, xcb_atom_t property) {
    const auto transfer = std::ranges::find_if(
        _transfers, [&](const Transfer& candidate) { return candidate.goesTo(window, property); });
    if (transfer == _transfers.end()) return false;
    const std::size_t size = std::min(pieceSize(), transfer->content.size() - transfer->sent);
    _connection.setProperty(window, property, transfer->type,
                            std::string_view(transfer->content).substr(transfer->sent, size));
    _connection.flush();
    transfer->sent += size;
    transfer->deadline = secondsNow() + kPatience;
    if (size == 0) _transfers.erase(transfer);  // an empty piece is the end
    return true;
}

void XSelections::endTransfers(xcb_window_t window) {
    std::erase_if(_transfers, [window](const Transfer& transfer) { return transfer.window == window; });
}

// MARK: Getting

void XSelections::requestTypes(BackendSelection selection, SelectionReceiver done) {
    if (const Offer* offer = offerOf(atomOf(selection))) {
        std::string lines;
        for (const std::string& type : offer->types) lines += type + "\n";
        return done(true, std::move(lines));
    }
    request(selection, kTargets, [this, done = std::move(done)](bool isThere, const std::string& content) {
        std::string lines;
        for (const std::string& name : _connection.namesOf(XProperty{0, 32, content}.words()))
            if (std::ranges::find(kNotTypes, name) == std::end(kNotTypes)) lines += name + "\n";
        done(isThere, std::move(lines));
    });
}

void XSelections::request(BackendSelection selection, const std::string& type, SelectionReceiver done,
                          xcb_timestamp_t time) {
    if (const Offer* offer = offerOf(atomOf(selection))) {
        if (std::ranges::find(offer->types, type) == offer->types.end()) return done(false, {});
        const SelectionProvider provider = offer->provider;
        return done(true, provider(type));
    }
    if (_connection.isLost()) return done(false, {});
    _requests.push_back({atomOf(selection), type, std::move(done), time});
    if (_requests.size() == 1) startRequest();
}

void XSelections::startRequest() {
    Request& request = _requests.front();
    request.target = _connection.atomNamed(request.type);
    // Another property than those before, which owners that were given up may still write to.
    request.property =
        _connection.atomNamed("PELVOR_SELECTION_" + std::to_string(_requestCount++ % kPropertyCount));
    request.deadline = secondsNow() + kPatience;
    xcb_delete_property(_connection, _connection.helper(), request.property);
    xcb_convert_selection(_connection, _connection.helper(), request.selection, request.target,
                          request.property, request.time);
    _connection.flush();
}

void XSelections::receive(const xcb_selection_notify_event_t& notice) {
    if (_requests.empty()) return;
    Request& request = _requests.front();
    if (notice.selection != request.selection || notice.target != request.target || request.comesInPieces)
        return;
    if (notice.property == XCB_NONE) return finishRequest(false, {});
    if (notice.property != request.property) return;
    XProperty property = _connection.property(_connection.helper(), request.property, true);
    if (property.type != _connection[Atom::INCR])
        return finishRequest(property.format == formatOf(request.type), std::move(property.bytes));
    request.comesInPieces = true;
    request.deadline = secondsNow() + kPatience;
}

void XSelections::receivePiece() {
    Request& request = _requests.front();
    const XProperty piece = _connection.property(_connection.helper(), request.property, true);
    if (piece.bytes.empty()) return finishRequest(piece.type != 0, std::move(request.content));
    if (piece.format != formatOf(request.type) ||
        request.content.size() + piece.bytes.size() > kLargestContent)
        return finishRequest(false, {});
    request.content += piece.bytes;
    request.deadline = secondsNow() + kPatience;
    _connection.flush();
}

void XSelections::finishRequest(bool isThere, std::string content) {
    const SelectionReceiver done = std::move(_requests.front().done);
    _requests.pop_front();
    if (!_requests.empty()) startRequest();
    done(isThere, std::move(content));
}

// MARK: Events and time

bool XSelections::handle(const XAnyEvent& event) {
    switch (kindOf(event)) {
        case XCB_SELECTION_REQUEST:
            answer(as<xcb_selection_request_event_t>(event));
            return true;
        case XCB_SELECTION_NOTIFY:
            receive(as<xcb_selection_notify_event_t>(event));
            return true;
        case XCB_SELECTION_CLEAR: {
            const auto& clear = as<xcb_selection_clear_event_t>(event);
            Offer* offer = offerOf(clear.selection);
            // The notice may be older than what is offered now.
            if (!offer || static_cast<std::int32_t>(clear.time - offer->time) < 0) return true;
            *offer = {};
            _sink.selectionLost(static_cast<BackendSelection>(offer - _offers));
            return true;
        }
        case XCB_DESTROY_NOTIFY:
            endTransfers(as<xcb_destroy_notify_event_t>(event).window);
            return false;
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = as<xcb_property_notify_event_t>(event);
            if (change.state == XCB_PROPERTY_DELETE) return continueTransfer(change.window, change.atom);
            const bool isPiece = change.window == _connection.helper() && !_requests.empty() &&
                                 _requests.front().comesInPieces && change.atom == _requests.front().property;
            if (isPiece) receivePiece();
            return isPiece;
        }
        default:
            return false;
    }
}

double XSelections::secondsLeft() const {
    double first = _requests.empty() ? std::numeric_limits<double>::infinity() : _requests.front().deadline;
    for (const Transfer& transfer : _transfers) first = std::min(first, transfer.deadline);
    return std::max(first - secondsNow(), 0.0);
}

void XSelections::giveUpLate() {
    const double now = secondsNow();
    std::erase_if(_transfers, [now](const Transfer& transfer) { return transfer.deadline <= now; });
    if (!_requests.empty() && _requests.front().deadline <= now) finishRequest(false, {});
}

void XSelections::giveUpAll() {
    _transfers.clear();
    for (std::deque<Request> requests = std::exchange(_requests, {}); Request & request : requests)
        request.done(false, {});
}

void XSelections::saveClipboard() {
    const Offer* offer = offerOf(_connection[Atom::CLIPBOARD]);
    if (!offer || _connection.isLost()) return;
    const xcb_atom_t manager = _connection[Atom::CLIPBOARD_MANAGER];
    const auto owner =
        _connection.wait<xcb_get_selection_owner_reply_t>(xcb_get_selection_owner(_connection, manager));
    if (!owner || owner->owner == XCB_NONE) return;
    std::vector<std::uint32_t> targets;
    for (const std::string& type : offer->types) targets.push_back(_connection.atomNamed(type));
    const xcb_atom_t property = _connection[Atom::PELVOR_SELECTION];
    _connection.setProperty(_connection.helper(), property, XCB_ATOM_ATOM, targets);
    xcb_convert_selection(_connection, _connection.helper(), manager, _connection[Atom::SAVE_TARGETS],
                          property, _connection.time());
    // The manager asks for the contents meanwhile.
    for (const double deadline = secondsNow() + 1; secondsNow() < deadline;) {
        const XEvent event = _connection.waitForEvent(deadline - secondsNow(), [](const XAnyEvent& event) {
            const std::uint8_t kind = kindOf(event);
            return kind == XCB_SELECTION_NOTIFY || kind == XCB_SELECTION_REQUEST ||
                   kind == XCB_PROPERTY_NOTIFY || kind == XCB_DESTROY_NOTIFY;
        });
        if (!event) return;
        if (kindOf(*event) == XCB_SELECTION_NOTIFY &&
            as<xcb_selection_notify_event_t>(*event).selection == manager)
            return;
        handle(*event);
    }
}

}  // namespace pelvor
