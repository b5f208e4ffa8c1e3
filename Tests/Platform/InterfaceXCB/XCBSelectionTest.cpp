// SPDX-License-Identifier: Apache-2.0
// Tests of selections that are given to other programs and got from them.
#include "BackendDriver.h"
#include "ProgramOutput.h"

namespace {

struct Got {
    bool isDone = false;
    bool isThere = false;
    std::string content;
    SelectionReceiver receiver() {
        return [this](bool isThere, std::string content) { *this = {true, isThere, std::move(content)}; };
    }
};

std::string pattern(std::size_t size) {
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>('a' + i * i % 26);
    return text;
}

class XCBSelectionTest : public XCBTest {
  protected:
    void SetUp() override {
        XCBTest::SetUp();
        if (IsSkipped()) return;
        server.emplace();
        driver.emplace();
        other.emplace();
        driver->other = &*other;
        other->other = nullptr;
    }
    Got request(BackendDriver& from, BackendSelection selection, const std::string& type) {
        Got got;
        if (type.empty())
            from.backend->requestTypes(selection, got.receiver());
        else
            from.backend->requestSelection(selection, type, got.receiver());
        EXPECT_TRUE(driver->until([&] { return got.isDone; }));
        return got;
    }
    /// The next event of that kind that the peer gets.
    XEvent peerEvent(std::uint8_t kind) {
        XEvent event;
        EXPECT_TRUE(driver->until([&] {
            event = server->peerConnection().waitForEvent(
                0, [kind](const XAnyEvent& candidate) { return kindOf(candidate) == kind; });
            return event != nullptr;
        }));
        return event;
    }
    /// The peer asks for the clipboard's content; returns the property that it is told.
    xcb_atom_t convert(xcb_window_t window, const char* type, const std::string& property) {
        XConnection& peer = server->peerConnection();
        xcb_convert_selection(peer, window, peer[Atom::CLIPBOARD], peer.atomNamed(type),
                              peer.atomNamed(property), XCB_CURRENT_TIME);
        peer.flush();
        return as<xcb_selection_notify_event_t>(*peerEvent(XCB_SELECTION_NOTIFY)).property;
    }
    static SelectionProvider giving(const std::string& content) {
        return [content](const std::string&) { return content; };
    }

    std::optional<XServerScope> server;
    std::optional<BackendDriver> driver;
    std::optional<BackendDriver> other;
};

TEST_F(XCBSelectionTest, GoesFromProgramToProgram) {
    using enum BackendSelection;
    for (const std::size_t size : {std::size_t{0}, std::size_t{5}, std::size_t{262144}, std::size_t{3000000}})
        for (const BackendSelection selection : {clipboard, primary}) {
            const std::string content = pattern(size);
            ASSERT_TRUE(
                other->backend->offerSelection(selection, {"UTF8_STRING", "text/rtf"}, giving(content)));
            EXPECT_EQ(request(*driver, selection, "").content, "UTF8_STRING\ntext/rtf\n");
            const Got got = request(*driver, selection, "text/rtf");
            EXPECT_TRUE(got.isThere) << size;
            EXPECT_TRUE(got.content == content) << size;
            EXPECT_FALSE(request(*driver, selection, "image/png").isThere);
            EXPECT_TRUE(request(*other, selection, "UTF8_STRING").content == content);  // from itself
        }
    ASSERT_TRUE(driver->backend->offerSelection(clipboard, {"UTF8_STRING"}, giving("newer")));
    EXPECT_TRUE(other->untilHeard("selection lost 0"));
    EXPECT_EQ(other->count("selection lost 1"), 0U);
    driver->backend->offerSelection(clipboard, {}, nullptr);
    EXPECT_FALSE(request(*driver, clipboard, "UTF8_STRING").isThere);
    EXPECT_FALSE(request(*driver, clipboard, "").isThere);
}

TEST_F(XCBSelectionTest, IsUnderstoodByOtherPrograms) {
    const std::string content = pattern(2000000);
    ProgramScope owner({"xclip", "-selection", "clipboard", "-quiet", "-i"}, -1, content);
    EXPECT_TRUE(driver->until(
        [&] { return request(*driver, BackendSelection::clipboard, "UTF8_STRING").content == content; }));

    ASSERT_TRUE(driver->backend->offerSelection(BackendSelection::clipboard, {"UTF8_STRING"},
                                                giving("häppchen" + content)));
    ProgramOutput output{};
    std::atomic<bool> isDone = false;
    std::thread reader([&] {
        output = outputOf("xclip -selection clipboard -o -t UTF8_STRING");
        isDone = true;
    });
    EXPECT_TRUE(driver->until([&] { return isDone.load(); }));
    reader.join();
    EXPECT_TRUE(output.text == "häppchen" + content);
}

TEST_F(XCBSelectionTest, AnswersSeveralTargetsAtOnce) {
    ASSERT_TRUE(
        driver->backend->offerSelection(BackendSelection::clipboard, {"UTF8_STRING"}, giving("text")));
    XConnection& peer = server->peerConnection();
    const xcb_window_t window = peer.helper();
    const xcb_atom_t text = peer.atomNamed("A");
    const xcb_atom_t missing = peer.atomNamed("B");
    const xcb_atom_t pairs = peer.atomNamed("PAIRS");
    peer.setProperty(window, pairs, peer[Atom::ATOM_PAIR],
                     {peer[Atom::UTF8_STRING], text, peer.atomNamed("image/png"), missing});
    EXPECT_EQ(convert(window, "MULTIPLE", "PAIRS"), pairs);
    EXPECT_EQ(peer.property(window, text).bytes, "text");
    EXPECT_EQ(peer.property(window, missing).type, 0U);
    EXPECT_THAT(peer.property(window, pairs).words(),
                ElementsAre(peer[Atom::UTF8_STRING], text, 0U, missing));
}

TEST_F(XCBSelectionTest, GivesUpPartnersThatStop) {
    // One that took the selection and says nothing.
    XConnection& peer = server->peerConnection();
    xcb_set_selection_owner(peer, peer.helper(), peer[Atom::CLIPBOARD], XCB_CURRENT_TIME);
    peer.flush();
    Got first, second;
    driver->backend->requestSelection(BackendSelection::clipboard, "UTF8_STRING", first.receiver());
    driver->backend->requestSelection(BackendSelection::primary, "UTF8_STRING", second.receiver());
    EXPECT_LE(driver->backend->timeout(), 2.0);
    EXPECT_TRUE(driver->until([&] { return second.isDone; }));
    EXPECT_TRUE(first.isDone && !first.isThere && !second.isThere);

    // One that ends in the middle of a content, and one that stops there.
    ASSERT_TRUE(driver->backend->offerSelection(BackendSelection::clipboard, {"UTF8_STRING"},
                                                giving(pattern(1000000))));
    Got lost;
    other->backend->requestSelection(BackendSelection::clipboard, "UTF8_STRING", lost.receiver());
    other->backend->prepare();
    EXPECT_TRUE(driver->until([&] { return driver->backend->timeout() < 3; }));
    other->backend.reset();
    driver->other = nullptr;
    EXPECT_TRUE(driver->until([&] { return driver->backend->timeout() > 3; }));
}

TEST_F(XCBSelectionTest, TakesNoNumbersForAText) {
    XConnection& peer = server->peerConnection();
    xcb_set_selection_owner(peer, peer.helper(), peer[Atom::CLIPBOARD], XCB_CURRENT_TIME);
    peer.flush();
    for (const bool comesInPieces : {false, true}) {
        Got got;
        driver->backend->requestSelection(BackendSelection::clipboard, "UTF8_STRING", got.receiver());
        const XEvent question = peerEvent(XCB_SELECTION_REQUEST);
        const auto& asked = as<xcb_selection_request_event_t>(*question);
        const auto give = [&](xcb_atom_t type) {
            peer.setProperty(asked.requestor, asked.property, type, {65, 66});
            peer.flush();
        };
        give(comesInPieces ? peer[Atom::INCR] : xcb_atom_t{XCB_ATOM_ATOM});
        peer.sendSelectionNotice(asked, asked.property);
        if (comesInPieces) {
            const auto isTaken = [&] { return peer.property(asked.requestor, asked.property).type == 0; };
            EXPECT_TRUE(driver->until(isTaken));
            give(XCB_ATOM_ATOM);
            EXPECT_TRUE(driver->until(isTaken));
            peer.setProperty(asked.requestor, asked.property, XCB_ATOM_ATOM, "");  // the end
            peer.flush();
        }
        EXPECT_TRUE(driver->until([&] { return got.isDone; }));
        EXPECT_FALSE(got.isThere) << comesInPieces;
    }
    // Nor an endless list of types.
    Got types;
    driver->backend->requestTypes(BackendSelection::clipboard, types.receiver());
    const XEvent question = peerEvent(XCB_SELECTION_REQUEST);
    const auto& asked = as<xcb_selection_request_event_t>(*question);
    peer.setProperty(asked.requestor, asked.property, XCB_ATOM_ATOM,
                     std::vector<std::uint32_t>(50000, XCB_ATOM_STRING));
    peer.sendSelectionNotice(asked, asked.property);
    EXPECT_TRUE(driver->until([&] { return types.isDone; }));
    EXPECT_LT(types.content.size(), 10000U);
}

TEST_F(XCBSelectionTest, GivesEachContentOnceAndNotEndlessly) {
    XConnection& peer = server->peerConnection();
    const xcb_window_t window = peer.helper();
    const std::string former = pattern(700000), later(600000, 'x');
    const auto offer = [&](const std::string& content) {
        ASSERT_TRUE(
            driver->backend->offerSelection(BackendSelection::clipboard, {"UTF8_STRING"}, giving(content)));
    };
    // Asked for again, at the same place, before the former content was fetched.
    offer(former);
    convert(window, "UTF8_STRING", "PLACE");
    offer(later);
    const xcb_atom_t place = convert(window, "UTF8_STRING", "PLACE");
    EXPECT_EQ(peer.property(window, place, true).type, peer[Atom::INCR]);
    std::string got;
    for (bool isOver = false; !isOver;) {
        XProperty piece;
        ASSERT_TRUE(driver->until([&] {
            piece = peer.property(window, place, true);
            return piece.type != 0;
        }));
        isOver = piece.bytes.empty();
        got += piece.bytes;
    }
    EXPECT_TRUE(got == later);
    // Asked for again and again, and never fetched.
    int count = 0;
    for (int i = 0; i < 100; ++i)
        count += convert(window, "UTF8_STRING", "PLACE" + std::to_string(i)) != XCB_NONE;
    EXPECT_GT(count, 10);
    EXPECT_LT(count, 100);
}

// Whoever asks may name a window of the program that is asked.
TEST_F(XCBSelectionTest, GivesNothingToItsOwnWindows) {
    XConnection& peer = server->peerConnection();
    driver->openWindow({100, 100, 200, 200}, 0x111111);
    ASSERT_TRUE(driver->until([&] { return server->pixel(150, 150) == 0x111111; }));
    const auto windows = peer.wait<xcb_query_tree_reply_t>(xcb_query_tree(peer, peer.root()));
    const xcb_window_t window = xcb_query_tree_children(windows.get())[windows->children_len - 1];
    ASSERT_TRUE(driver->backend->offerSelection(BackendSelection::clipboard, {"UTF8_STRING"},
                                                giving(pattern(1000000))));
    for (const Atom name : {Atom::WM_PROTOCOLS, Atom::PELVOR_TIME}) {
        const XProperty before = peer.property(window, peer[name]);
        xcb_convert_selection(peer, window, peer[Atom::CLIPBOARD], peer[Atom::UTF8_STRING], peer[name],
                              XCB_CURRENT_TIME);
        peer.flush();
        convert(peer.helper(), "TARGETS", "PLACE");  // once this is replied to, the other is as well
        EXPECT_EQ(peer.property(window, peer[name]).bytes, before.bytes);
    }
    server->press(30);
    EXPECT_TRUE(driver->untilHeard("key down a"));
}

TEST_F(XCBSelectionTest, AsksClipboardManagersForAMomentOnly) {
    const double start = secondsNow();
    driver->backend->saveClipboard();
    ASSERT_TRUE(
        driver->backend->offerSelection(BackendSelection::clipboard, {"UTF8_STRING"}, giving("kept")));
    driver->backend->saveClipboard();
    EXPECT_LT(secondsNow() - start, 0.9) << "nobody to ask";

    // A manager that asks for the content, and then is done.
    std::atomic<bool> isReady = false;
    std::string saved;
    std::thread manager([&] {
        std::string reason;
        auto connection = XConnection::open(&reason);
        XConnection& c = *connection;
        xcb_set_selection_owner(c, c.helper(), c[Atom::CLIPBOARD_MANAGER], XCB_CURRENT_TIME);
        c.wait<xcb_get_input_focus_reply_t>(xcb_get_input_focus(c));
        isReady = true;
        const auto waitFor = [&](std::uint8_t kind) {
            return c.waitForEvent(20, [kind](const XAnyEvent& event) { return kindOf(event) == kind; });
        };
        const XEvent event = waitFor(XCB_SELECTION_REQUEST);
        const auto request = as<xcb_selection_request_event_t>(*event);
        xcb_convert_selection(c, c.helper(), c[Atom::CLIPBOARD], c[Atom::UTF8_STRING], c[Atom::TARGETS],
                              request.time);
        c.flush();
        waitFor(XCB_SELECTION_NOTIFY);
        saved = c.property(c.helper(), c[Atom::TARGETS]).bytes;
        c.sendSelectionNotice(request, XCB_NONE);
        waitFor(XCB_SELECTION_CLEAR);
    });
    while (!isReady) std::this_thread::yield();
    driver->backend->saveClipboard();
    // Another takes over, which says nothing.
    XConnection& peer = server->peerConnection();
    xcb_set_selection_owner(peer, peer.helper(), peer[Atom::CLIPBOARD_MANAGER], XCB_CURRENT_TIME);
    peer.flush();
    manager.join();
    EXPECT_EQ(saved, "kept");
    driver->backend->saveClipboard();
}

}  // namespace
