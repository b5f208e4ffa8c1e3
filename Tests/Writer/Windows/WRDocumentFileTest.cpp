// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRDocumentFile.h"

#include <sys/stat.h>

#include <set>

#include "BaseTextLibrary.h"
#include "EnvironmentScope.h"
#include "FormatScope.h"
#include "Foundation/NSNib.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Foundation/NSURL.h"
#include "Interface/NSAlert.h"
#include "Interface/NSButton.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSSavePanel.h"
#include "PBRegistry.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugIns/PlainText/PlainTextPlugIn.h"
#include "Writer/PlugIns/PlainText/WRPlainTextReader.h"
#include "Writer/PlugIns/PlainText/WRPlainTextWriter.h"
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"
#include "Writer/Recovery/RecoveryStore.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/Windows/WRDesktop.h"
#include "Writer/Windows/WROpenChoices.h"
#include "Writer/Windows/WRRecentDocuments.h"
#include "Writer/Windows/WRRuler.h"

namespace pelvor {

// Linked into this program, which has room for one plug-in's own entry: that of RichText.
constexpr Library* kDependencies[] = {&baseTextLibrary};
constinit Library plainTextPlugIn{
    "PlainText", kDependencies, kClassesOf<WRPlainTextReader, WRPlainTextWriter>, {}};

}  // namespace pelvor

namespace {

NSButton* buttonIn(NSView* view, const std::function<bool(NSButton*)>& isWanted) {
    if (auto* button = cast<NSButton>(static_cast<id>(view)); button && isWanted(button)) return button;
    for (id part : view->subviews())
        if (NSButton* found = buttonIn(static_cast<NSView*>(part), isWanted)) return found;
    return nullptr;
}

NSButton* buttonIn(NSView* view, NSString* title) {
    return buttonIn(view, [=](auto* button) { return button->title()->isEqualToString(localized(title)); });
}

NSAlert* alertIn(NSWindow* panel) {
    NSButton* button = buttonIn(panel->contentView(), [](auto*) { return true; });
    return button ? cast<NSAlert>(button->target()) : nullptr;
}

struct DocumentFileTest : ::testing::Test, DefaultsScope {
    static void SetUpTestSuite() {
        prepareWindows();
        registerLibrary(plainTextPlugIn);
        registerLibrary(richTextPlugIn);
        for (NSString* folder : {u"PlainText"_ns, u"RichText"_ns})
            PBRegistry::sharedRegistry()->addProfilesFromPath_bundle(
                NSString::stringWithFormat(u"%s/%@/Profiles.plist"_ns, WRITER_PLUGINS, folder), nullptr);
    }
    DocumentFileTest() { start(); }
    /// Writer starts.
    void start() {
        desktop = WRDesktop::init();
        desktop->setRecoveryStore(std::make_unique<RecoveryStore>(folder.path("recovery")));
        desktop->showDocument_options(WRDocument::initWithName(u"Untitled"_ns).get(),
                                      NSDictionary::dictionary());
    }
    WRDocumentWindow* open(const std::string& name, const std::string& content) {
        NSString* path = NSString::ofUTF8(folder.write(name, content));
        desktop->openPath(path);
        screen.turn();
        return desktop->windowForPath(path);
    }
    WRDocumentWindow* front() { return cast<WRDocumentWindow>(screen.app->keyWindow()->delegate()); }
    /// Does something, while the user presses these buttons of the alerts that come. Returns their texts.
    std::string doing(const std::function<void()>& action, std::vector<NSString*> buttons = {}) {
        std::string texts;
        std::size_t next = 0;
        auto user = Listener::doing([&](id) {
            NSWindow* panel = screen.app->modalWindow();
            if (!panel) return;
            if (auto* files = cast<NSSavePanel>(static_cast<id>(panel))) {
                files->setDirectory(NSString::ofUTF8(folder.path().string()));
                files->setNameFieldStringValue(buttons.at(next++));
                return files->ok(nullptr);
            }
            if (NSAlert* alert = alertIn(panel)) {
                EXPECT_FALSE(panel->title()->isEqualToString(alert->messageText())) << "says it twice";
                texts += alert->messageText()->toUTF8() + "|" + alert->informativeText()->toUTF8() + "|";
            }
            NSButton* button =
                next < buttons.size() ? buttonIn(panel->contentView(), buttons[next++]) : nullptr;
            if (button) return button->performClick(nullptr);
            ADD_FAILURE() << "no button for: " << texts;
            screen.app->abortModal();
        });
        auto acts = Listener::doing([&](id) {
            action();
            screen.app->stop(nullptr);
        });
        auto timer = NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(0.25, user, "hear:"_sel,
                                                                                     nullptr, true);
        const auto stopped = atEnd([&] { timer->invalidate(); });
        NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSModalPanelRunLoopMode);
        performSelector_withObject_afterDelay(acts, "hear:"_sel, nullptr, 0);
        screen.app->run();
        EXPECT_EQ(next, buttons.size()) << texts;
        return texts;
    }
    /// Lets the thread that watches files work, for some seconds at most.
    bool until(const std::function<bool()>& condition) {
        for (int i = 0; i < 1000 && !condition(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            screen.wait(0.3);
        }
        return condition();
    }
    std::string textOf(WRDocumentWindow* window) { return window->document()->text()->toUTF8(); }
    /// The text, whether there are changes that are in no file, and whether the window says so: "text 1 1".
    std::string stateOf(WRDocumentWindow* window) {
        return shown(textOf(window), window->file()->isEdited(), window->window()->isDocumentEdited());
    }
    void typeInto(WRDocumentWindow* window, std::u16string_view text) {
        window->show();
        screen.turn();
        screen.type(text);
    }
    void undo(WRDocumentWindow* window) { send(window->pageView(), "undo:"_sel, id(nullptr)); }
    void redo(WRDocumentWindow* window) { send(window->pageView(), "redo:"_sel, id(nullptr)); }
    std::string notice(WRDocumentWindow* window) {
        return window->notice() ? window->notice()->text()->toUTF8() : "";
    }
    void choose(WRDocumentWindow* window, NSString* title) {
        buttonIn(window->notice(), title)->performClick(nullptr);
    }

    TemporaryFolder folder;
    InterfaceScope screen;
    Retained<WRDesktop> desktop;
};

TEST_F(DocumentFileTest, KnowsWhetherThereAreChangesThatAreInNoFile) {
    WRDocumentWindow* window = open("a.txt", "one");
    typeInto(window, u"ab");
    EXPECT_EQ(stateOf(window), "abone 1 1");
    undo(window);
    EXPECT_EQ(stateOf(window), "one 0 0");
    redo(window);
    EXPECT_EQ(stateOf(window), "abone 1 1");
    EXPECT_TRUE(window->file()->save());
    EXPECT_EQ(folder.read("a.txt") + stateOf(window), "aboneabone 0 0");
    screen.type(u"c");  // another step than what was typed before the saving
    EXPECT_EQ(stateOf(window), "abcone 1 1");
    undo(window);
    EXPECT_EQ(stateOf(window), "abone 0 0");
    undo(window);
    EXPECT_EQ(stateOf(window), "one 1 1");
    screen.type(u"d");
    undo(window);
    EXPECT_EQ(stateOf(window), "one 1 1") << "what is in the file cannot be redone";
}

TEST_F(DocumentFileTest, BeginsWhereThereIsNoFileYet) {
    auto opener = WRDocumentOpener::initWithProfiles(PBRegistry::sharedRegistry());
    const auto opened = [&](const char* name) {
        return opener->openOrMakeDocumentAtPath_options(NSString::ofUTF8(folder.path(name)),
                                                        NSDictionary::dictionary());
    };
    EXPECT_FALSE(opened("no/New.txt"));
    EXPECT_THAT(shown(opener->problem()), HasSubstr("the enclosing folder does not exist"));
    WRDocument* document = opened("New.txt");
    ASSERT_TRUE(document) << opener->problem();
    EXPECT_FALSE(desktop->showDocument_options(document, nullptr));
    WRDocumentWindow* window = desktop->windowForPath(document->path());
    const auto states = [&] {
        WRDocumentFile* file = window->file();
        return shown(window->window()->title(), file->isEdited(),
                     file->validateRevertDocumentToSaved(nullptr),
                     file->validateMoveDocumentToTrash(nullptr));
    };
    EXPECT_EQ(states(), "New.txt 0 0 0");
    typeInto(window, u"x");
    EXPECT_EQ(states(), "New.txt 1 0 0");
    EXPECT_EQ(doing([&] { window->file()->saveDocument(nullptr); }), "");
    EXPECT_EQ(folder.read("New.txt"), "x");
    screen.type(u"y");
    EXPECT_EQ(states(), "New.txt 1 1 1");
    EXPECT_EQ(shown(opened("New.txt")->text()), "x");
}

TEST_F(DocumentFileTest, CopiesPlainTextWithoutFormats) {
    WRDocumentWindow* window = open("a.txt", "one");
    const auto copied = [&] {
        for (const SEL action : {"selectAll:"_sel, "copy:"_sel, "paste:"_sel})
            send(window->pageView(), action, id(nullptr));
        return shown(NSPasteboard::generalPasteboard()->types()->componentsJoinedByString(u" "_ns),
                     window->document()->hasFormats());
    };
    EXPECT_EQ(copied(), "NSStringPboardType 0");
    window->document()->setHasFormats(true);
    EXPECT_THAT(copied(), HasSubstr("NSRTFPboardType"));
}

// Those that are filled when they open, too: what fills them has to be kept.
TEST_F(DocumentFileTest, HasItemsInAllMenusOfFormats) {
    auto nib = NSNib::initWithContentsOfFile_bundle_error(
        NSString::ofUTF8(WRITER_PAGES "/../Windows/MainMenu.nib"), nullptr, nullptr);
    NSArray* kept = nullptr;
    ASSERT_TRUE(nib && nib->instantiateNibWithOwner_topLevelObjects(desktop, &kept));
    auto* main = static_cast<NSMenu*>(kept->objectAtIndex(0));
    NSMenu* format = main->itemWithTitle(u"_Format"_ns)->submenu();
    for (const auto& item : format->items())
        if (NSMenu* menu = item->submenu()) {
            menu->update();
            EXPECT_GT(menu->numberOfItems(), 0) << item->title();
        }
}

TEST_F(DocumentFileTest, AsksBeforeItCloses) {
    struct {
        NSString* button;
        bool isOpen;
        const char* content;
    } rows[] = {
        {u"_Cancel"_ns, true, "one"}, {u"_Don't Save"_ns, false, "one"}, {u"_Save"_ns, false, "xone"}};
    for (const auto& row : rows) {
        auto window = Retained<WRDocumentWindow>::retaining(open("a.txt", "one"));
        typeInto(window, u"x");
        EXPECT_THAT(doing([&] { window->window()->performClose(nullptr); }, {row.button}),
                    HasSubstr("Save the changes to \"a.txt\"?"));
        EXPECT_EQ(window->window()->isVisible(), row.isOpen) << row.button;
        EXPECT_EQ(folder.read("a.txt"), row.content) << row.button;
        if (row.isOpen) doing([&] { window->window()->performClose(nullptr); }, {u"_Don't Save"_ns});
    }
}

TEST_F(DocumentFileTest, AsksForEachDocumentBeforeItQuits) {
    WRDocumentWindow* first = open("a.txt", "one");
    WRDocumentWindow* second = open("b.txt", "two");
    open("c.txt", "three");
    typeInto(first, u"x");
    typeInto(second, u"y");
    const auto quit = [&] { EXPECT_EQ(desktop->applicationShouldTerminate(screen.app), NSTerminateCancel); };
    EXPECT_THAT(doing(quit, {u"_Don't Save"_ns, u"_Cancel"_ns}),
                AllOf(HasSubstr("a.txt"), HasSubstr("b.txt"), Not(HasSubstr("c.txt"))));
    EXPECT_TRUE(first->file()->isEdited() && second->file()->isEdited());
    doing([&] { screen.app->terminate(nullptr); }, {u"_Save"_ns, u"_Don't Save"_ns});
    EXPECT_EQ(folder.read("a.txt") + folder.read("b.txt"), "xonetwo");
}

TEST_F(DocumentFileTest, SavesAsAnotherKind) {
    WRDocumentWindow* window = front();
    EXPECT_EQ(window->window()->title()->toUTF8(), "Untitled");
    typeInto(window, u"Grüße");
    doing([&] { window->file()->saveDocument(nullptr); }, {u"Letter"_ns});
    EXPECT_EQ(shown(window->window()->title(), window->file()->isEdited()), "Letter.rtf 0");
    EXPECT_THAT(folder.read("Letter.rtf"), AllOf(StartsWith("{\\rtf1"), HasSubstr("\\paperw11906"),
                                                 ::testing::ContainsRegex("fs22.lang[0-9]+ Gr")))
        << "as it is seen";
    EXPECT_EQ(notice(window), "");
    const auto write = [&] {
        window->file()->writeToPath(NSString::ofUTF8(folder.path("Letter.txt")), nullptr);
    };
    doing(write, {u"_Save without Formats"_ns});
    EXPECT_EQ(folder.read("Letter.txt"), "Grüße");
    window->document()->setHasFormats(true);
    const auto saveText = [&] { window->file()->save(); };
    EXPECT_THAT(doing(saveText, {u"_Cancel"_ns}), HasSubstr("would lose the formats"));
    doing(saveText, {u"_Save as Rich text…"_ns, u"Second"_ns});
    EXPECT_EQ(window->document()->name()->toUTF8(), "Second.rtf");

    // Without the formats the window shows what the file holds.
    const auto look = [&] {
        NSTextStorage* text = window->pageView()->textStorage();
        auto* font = cast<NSFont>(text->attribute_atIndex_effectiveRange(NSFontAttributeName, 1, nullptr));
        const PageFrame frame = PageFrame::of(window->pageView()->pages()->settings());
        return shown(font->pointSize(), frame.left, window->document()->hasFormats(),
                     window->file()->isEdited());
    };
    window->pageView()->textStorage()->addAttribute_value_range(NSFontAttributeName,
                                                                NSFont::systemFontOfSize(40), {0, 5});
    window->changeSettings(NSDictionary::of({{WRLeftMarginKey, NSNumber::numberWithFloat(30)}}));
    doing(write, {u"_Save without Formats"_ns});
    EXPECT_EQ(look(), "11 71 0 0");
    undo(window);
    EXPECT_EQ(look(), "40 30 1 1");
    EXPECT_THAT(doing(write, {u"_Cancel"_ns}), HasSubstr("would lose the formats"));
    redo(window);
    EXPECT_EQ(look(), "11 71 0 0");
    EXPECT_EQ(doing(write), "");
    EXPECT_EQ(textOf(window), "Grüße");
}

// Names as they are when somebody types over the part of "Untitled.rtf" that is selected.
TEST_F(DocumentFileTest, TakesTheKindFromTheExtensionThatIsTyped) {
    const std::pair<NSString*, const char*> rows[] = {
        {u"letter.rtf.rtf"_ns, "letter.rtf"}, {u"letter.RTF.rtf"_ns, "letter.RTF"},
        {u"noteA.txt.rtf"_ns, "noteA.txt"},   {u"noteB.rtf"_ns, "noteB.rtf"},
        {u"noteC.txt"_ns, "noteC.txt"},       {u"v1.2.txt"_ns, "v1.2.txt"},
    };
    WRDocumentWindow* window = front();
    typeInto(window, u"x");
    for (const auto& [typed, name] : rows) {
        if (window->document()->hasFile()) std::filesystem::remove(window->document()->path()->toUTF8());
        doing([&] { window->file()->saveAs(nullptr); }, {typed});
        EXPECT_EQ(shown(window->document()->name()), name);
        EXPECT_EQ(folder.read(name).starts_with("{\\rtf"),
                  std::string(name).find("txt") == std::string::npos);
        window->document()->setHasFormats(false);
        window->document()->setSettings(nullptr);
    }
}

TEST_F(DocumentFileTest, StaysWhereItIsWhenItGetsAnotherName) {
    WRDocumentWindow* window = front();
    WRPageView* view = window->pageView();
    typeInto(window, u"x");
    view->insertText(FormatScope::numberedLines(300).get());
    screen.turn();
    view->scrollPoint({0, 1800});
    for (NSString* name : {u"First"_ns, u"Second"_ns}) {
        doing([&] { window->file()->saveAs(nullptr); }, {name});
        EXPECT_NEAR(NSMinY(view->visibleRect()), 1800, 1) << name;
    }
}

TEST_F(DocumentFileTest, KeepsWhatItCannotWrite) {
    WRDocumentWindow* window = open("sub/a.txt", "one");
    typeInto(window, u"x");
    const auto save = [&] { EXPECT_FALSE(window->file()->save()); };
    std::filesystem::remove_all(folder.path("sub"));
    EXPECT_THAT(doing(save, {u"_Cancel"_ns}), HasSubstr("could not be written"));
    EXPECT_TRUE(window->file()->isEdited());
    std::filesystem::create_directory(folder.path("sub"));
    EXPECT_TRUE(window->file()->save());
    EXPECT_EQ(folder.read("sub/a.txt"), "xone");

    struct {
        NSString* fidelity;
        NSString* button;
        NSString* name;  // in the panel that follows, if one does
        const char* problem;
    } rows[] = {{WRFidelityPart, u"_Save As…"_ns, u"c"_ns, "leaves out some of what is in the file"},
                {WRFidelityView, u"_OK"_ns, nullptr, "what it shows is not their content"}};
    for (const auto& row : rows) {
        NSString* path = NSString::ofUTF8(folder.write("part.md", "*text*"));
        PBProfile* reader =
            PBRegistry::sharedRegistry()->profileWithIdentifier(u"pelvor.writer.plain-text-reader"_ns);
        auto document = WRDocument::initWithPath_reader_answer(
            path, reader, NSDictionary::of({{WRTextKey, u"text"_ns}, {WRFidelityKey, row.fidelity}}));
        document->setFileIdentity(FileIdentity::ofFile(path));
        EXPECT_FALSE(desktop->showDocument_options(document, nullptr));
        WRDocumentWindow* shownIn = desktop->windowForPath(path);
        std::vector<NSString*> answers = {row.button};
        if (row.name) answers.push_back(row.name);
        EXPECT_THAT(doing([&] { shownIn->file()->save(); }, answers), HasSubstr(row.problem));
        EXPECT_EQ(folder.read("part.md"), "*text*");
        shownIn->window()->close();
    }
    EXPECT_THAT(folder.read("c.rtf"), HasSubstr("text"));

    WRDocumentWindow* old = open("b.txt", "caf\xE9 et th\xE9");  // read in a one-byte encoding
    typeInto(old, u"€Ω");
    doing([&] { EXPECT_FALSE(old->file()->save()); }, {u"_Cancel"_ns});
    EXPECT_TRUE(old->file()->isEdited());
    doing([&] { EXPECT_TRUE(old->file()->save()); }, {u"_Save in UTF-8"_ns});
    EXPECT_EQ(folder.read("b.txt"), "€Ωcafé et thé");
    EXPECT_EQ(old->document()->encodingName()->toUTF8(), "UTF-8");
}

TEST_F(DocumentFileTest, FollowsOtherProgramsThatWriteTheFile) {
    std::string lines;
    for (int i = 0; i < 300; ++i) lines += "line " + std::to_string(i) + "\n";
    WRDocumentWindow* window = open("a.txt", lines);
    const auto writeOutside = [&](const std::string& text) {
        folder.write("a.txt", text);
        window->file()->fileDidChange();
    };
    WRPageView* view = window->pageView();
    const NSUInteger place = window->document()->text()->rangeOfString(u"line 200"_ns).location;
    view->setSelectedRange({place, 8});
    view->scrollRangeToVisible({place, 8});
    screen.turn();
    const auto heightOfSelection = [&] {
        return NSMinY(view->caretRectForCharacterAtIndex(view->selectedRange().location)) -
               NSMinY(view->visibleRect());
    };
    const float before = heightOfSelection();
    writeOutside("new\nnew\n" + lines);
    EXPECT_EQ(textOf(window), "new\nnew\n" + lines);
    EXPECT_EQ(shown(window->file()->isEdited(), view->selectedRange()), shown(false, NSRange{place + 8, 8}));
    EXPECT_NEAR(heightOfSelection(), before, 1);

    screen.press(NSLeftArrowFunctionKey);
    screen.type(u"mine ");
    writeOutside("theirs\n");
    EXPECT_THAT(notice(window), HasSubstr("which was changed here, too"));
    EXPECT_THAT(textOf(window), HasSubstr("mine line 200"));
    EXPECT_EQ(window->notice()->buttons()->count(), 2u);
    choose(window, u"_Keep Mine"_ns);
    EXPECT_EQ(notice(window), "");
    const auto save = [&] { window->file()->save(); };
    EXPECT_EQ(doing(save), "") << "is asked once";
    EXPECT_THAT(folder.read("a.txt"), HasSubstr("mine line 200"));
    view->setSelectedRange({0, 0});
    screen.type(u"more ");
    writeOutside("theirs\n");
    choose(window, u"_Keep Mine"_ns);
    writeOutside("theirs\n\n");
    EXPECT_THAT(notice(window), HasSubstr("which was changed here, too"));
    EXPECT_THAT(doing(save, {u"_Cancel"_ns}), HasSubstr("Another program has changed"));
    EXPECT_EQ(folder.read("a.txt"), "theirs\n\n");
    writeOutside("theirs again\n");
    choose(window, u"_Reload"_ns);
    EXPECT_EQ(stateOf(window), "theirs again\n 0 0");
    undo(window);
    EXPECT_THAT(stateOf(window), AllOf(HasSubstr("mine line 200"), EndsWith(" 1 1")));
    writeOutside("theirs at last\n");
    EXPECT_THAT(doing([&] { EXPECT_TRUE(window->file()->save()); }, {u"_Save As…"_ns, u"other"_ns}),
                HasSubstr("Another program"));
    EXPECT_EQ(window->document()->name()->toUTF8() + folder.read("a.txt"), "other.txttheirs at last\n");
    EXPECT_TRUE(window->file()->writeToPath(NSString::ofUTF8(folder.path("a.txt")), nullptr));
    screen.press(NSLeftArrowFunctionKey);
    screen.type(u"!");
    folder.write("a.txt", "theirs once more\n");  // nobody has told yet
    doing(save, {u"_Replace"_ns});
    EXPECT_THAT(folder.read("a.txt"), HasSubstr("mine line 200"));

    std::filesystem::remove(folder.path("a.txt"));
    window->file()->fileDidChange();
    EXPECT_THAT(notice(window), HasSubstr("removed or renamed"));
    EXPECT_THAT(stateOf(window), EndsWith(" 1 1"));
    choose(window, u"_Save"_ns);
    EXPECT_THAT(folder.read("a.txt"), HasSubstr("mine line 200"));
    EXPECT_THAT(stateOf(window), EndsWith(" 0 0"));
}

TEST_F(DocumentFileTest, KeepsItsTextWhereTheFileTurnsIntoSomethingElse) {
    const std::string path = folder.path("a.txt");
    const auto expectTextKept = [&](const char* kind, const std::function<void()>& replace) {
        SCOPED_TRACE(kind);
        auto window = Retained<WRDocumentWindow>::retaining(open("a.txt", "one"));
        const auto change = [&](const std::function<void()>& action) {
            std::filesystem::remove(path);
            action();
            window->file()->fileDidChange();
        };
        change(replace);
        EXPECT_NE(notice(window), "");
        EXPECT_EQ(stateOf(window), "one 1 1");
        change([&] { folder.write("a.txt", "two"); });
        EXPECT_EQ(notice(window) + stateOf(window), "two 0 0");
        window->window()->close();
    };
    expectTextKept("folder", [&] { std::filesystem::create_directory(path); });
    expectTextKept("pipe", [&] { ::mkfifo(path.c_str(), 0600); });
    expectTextKept("circle of links", [&] { std::filesystem::create_symlink(path, path); });
}

TEST_F(DocumentFileTest, KeepsTheFormatsOfATextThatUndoingBringsBack) {
    WRDocumentWindow* window = open("a.rtf", "{\\rtf1\\paperw8000 one {\\b bold}}");
    const auto look = [&] { return textOf(window) + shown(NSWidth(window->pageView()->frameOfPage(0))); };
    folder.write("a.rtf", "{\\rtf1\\paperw6000 }");
    window->file()->fileDidChange();
    EXPECT_EQ(look(), "300");
    undo(window);
    EXPECT_EQ(look(), "one bold400");
    EXPECT_TRUE(window->document()->richText());
}

TEST_F(DocumentFileTest, OpensInTheEncodingThatTheUserChooses) {
    auto choices = WROpenChoices::create();
    EXPECT_FALSE(choices->encodingName());
    choices->encodingButton()->selectItemWithTitle(u"KOI8-R"_ns);
    NSString* path = NSString::ofUTF8(folder.write("a.txt", "\xC1\xC2"));
    desktop->openPath_encoding(path, choices->encodingName());
    WRDocumentWindow* window = desktop->windowForPath(path);
    EXPECT_EQ(textOf(window), "аб");
    const auto openAgain = [&] { desktop->openPath_encoding(path, u"windows-1252"_ns); };
    EXPECT_EQ(doing(openAgain), "");
    EXPECT_EQ(textOf(window), "ÁÂ");
    typeInto(window, u"x");
    EXPECT_THAT(doing(openAgain, {u"_Cancel"_ns}), HasSubstr("Revert"));
    EXPECT_EQ(textOf(window), "xÁÂ");
}

TEST_F(DocumentFileTest, RevertsInOneStep) {
    WRDocumentWindow* window = open("a.txt", "one two three\n");
    EXPECT_FALSE(window->file()->validateRevertDocumentToSaved(nullptr));
    typeInto(window, u"x");
    screen.press(NSRightArrowFunctionKey);
    screen.type(u"y");
    doing([&] { window->file()->revertDocumentToSaved(nullptr); }, {u"_Revert"_ns});
    EXPECT_EQ(stateOf(window), "one two three\n 0 0");
    undo(window);
    EXPECT_EQ(stateOf(window), "xoyne two three\n 1 1");
}

TEST_F(DocumentFileTest, HearsOfEachFileThatAnotherProgramWrites) {
    WRDocumentWindow* first = open("a.txt", "one");
    WRDocumentWindow* second = open("sub/b.txt", "two");
    folder.write("sub/b.txt", "two and more");
    EXPECT_TRUE(until([&] { return textOf(second) == "two and more"; }));
    first->window()->close();
    std::filesystem::remove(folder.path("sub/b.txt"));
    EXPECT_TRUE(until([&] { return second->notice(); }));
    EXPECT_THAT(notice(second), HasSubstr("removed or renamed"));
}

TEST_F(DocumentFileTest, MovesTheFileToTheTrash) {
    EnvironmentScope home("XDG_DATA_HOME", folder.path("data").c_str());
    auto window = Retained<WRDocumentWindow>::retaining(open("a.txt", "one"));
    const auto move = [&] { window->file()->moveDocumentToTrash(nullptr); };
    doing(move, {u"_Cancel"_ns});
    EXPECT_TRUE(window->window()->isVisible() && std::filesystem::exists(folder.path("a.txt")));
    doing(move, {u"_Move to Trash"_ns});
    EXPECT_FALSE(window->window()->isVisible() || std::filesystem::exists(folder.path("a.txt")));
}

TEST_F(DocumentFileTest, RemembersTheDocumentsThatWereOpen) {
    open("a.txt", "one");
    WRDocumentWindow* window = open("b.txt", "two");
    EXPECT_EQ(open("b.txt", "two"), window);
    auto menu = NSMenu::init();
    const auto titles = [&] {
        desktop->recentDocuments()->menuNeedsUpdate(menu);
        std::string names;
        for (const auto& item : menu->items()) names += item->title()->toUTF8() + " ";
        return names;
    };
    EXPECT_EQ(titles(), "b.txt a.txt  _Clear Menu ");
    open("sub/b.txt", "three");
    EXPECT_EQ(titles(), "b.txt – " + folder.path("sub") + " b.txt – " + folder.path().string() +
                            " a.txt  _Clear Menu ");
    std::filesystem::remove_all(folder.path("sub"));
    window->window()->close();
    titles();
    desktop->openRecentDocument(menu->itemAtIndex(0));
    EXPECT_EQ(textOf(front()), "two");
    desktop->clearRecentDocuments(nullptr);
    EXPECT_EQ(titles(), "_Clear Menu ");
}

TEST_F(DocumentFileTest, OpensFilesThatAreDroppedOnAWindow) {
    WRDocumentWindow* window = open("a.txt", "one");
    NSView* content = window->window()->contentView();
    for (const auto& [name, view] :
         {std::pair<const char*, NSView*>{"b c.txt", window->pageView()}, {"d.txt", content}}) {
        const std::string path = folder.write(name, "two");
        const std::string address =
            NSURL::fileURLWithPath(NSString::ofUTF8(path))->absoluteString()->toUTF8();
        screen.backend->setForeignSelection(BackendSelection::drag,
                                            {{"text/uri-list", address + "\r\n"}, {"text/plain", path}});
        window->show();
        screen.turn();
        EXPECT_TRUE(screen.backend->dragTo(screen.placeOf(view, {50, 5}))) << name;
        screen.turn();
        EXPECT_TRUE(screen.backend->drop());
        screen.wait(1);
        EXPECT_TRUE(desktop->windowForPath(NSString::ofUTF8(path))) << name;
        EXPECT_EQ(textOf(window), "one");
    }
}

// In all windows at once, and in the file a second later.
TEST_F(DocumentFileTest, KeepsPreferences) {
    const EnvironmentScope config("XDG_CONFIG_HOME", folder.path("config").c_str());
    const auto settings = [] { return NSUserDefaults::initWithDomainName(u"writer-test"_ns); };
    auto own = settings();
    NSUserDefaults::setStandardUserDefaults(own);
    WRDocumentWindow *first = open("a.txt", "a"), *second = open("b.txt", "b");
    const auto rulers = [&] {
        return shown(partOf<WRRuler>(first) != nullptr, partOf<WRRuler>(second) != nullptr);
    };
    EXPECT_EQ(rulers(), "1 1");
    desktop->orderFrontPreferences(nullptr);
    NSView* panel = screen.app->keyWindow()->contentView();
    EXPECT_TRUE(cast<NSPopUpButton>(static_cast<id>(screen.app->keyWindow()->firstResponder())));
    for (NSString* title : {u"_Show the ruler"_ns, u"_Mark misspelled words"_ns})
        buttonIn(panel, title)->performClick(nullptr);
    buttonIn(panel, [](NSButton* button) {
        auto* counts = cast<NSPopUpButton>(static_cast<id>(button));
        if (!counts || counts->indexOfItemWithTitle(localized(u"_None"_ns)) < 0) return false;
        counts->selectItemWithTitle(localized(u"_None"_ns));
        return counts->sendAction_to(counts->action(), counts->target());
    });
    EXPECT_EQ(rulers(), "0 0");
    EXPECT_EQ(desktop->recentDocuments()->paths()->count(), 0U);
    screen.wait(1.5);
    auto kept = settings();
    for (NSString* key :
         {WRShowsRulerPreference, WRMarksMisspellingsPreference, WRRecentDocumentCountPreference})
        EXPECT_EQ(shown(static_cast<bool>(kept->objectForKey(key)), kept->integerForKey(key)), "1 0")
            << shown(key);
    own->setBool_forKey(true, WRShowsRulerPreference);  // as the menu does it
    EXPECT_EQ(shown(rulers(), buttonIn(panel, u"_Show the ruler"_ns)->state()), "1 1 1");
}

TEST_F(DocumentFileTest, RecoversWhatACrashHasLeft) {
    const std::pair<const char*, const char*> rows[] = {{"a.txt", "they are not saved yet"},
                                                        {"b.txt", "which another program has changed since"},
                                                        {"c.txt", "which is not there any more"}};
    for (const auto& [name, text] : rows) typeInto(open(name, std::string(1, name[0])), u"typed ");
    WRDocumentWindow* undone = open("e.txt", "as in the file");
    typeInto(undone, u"typed ");
    const std::filesystem::path journals = folder.path("recovery");
    for (const bool isEdited : {true, false}) {
        if (!isEdited) undo(undone);
        EXPECT_TRUE(until([&] {
            std::error_code error;  // no folder yet
            const auto files = std::filesystem::directory_iterator(journals, error);
            return std::distance(begin(files), end(files)) == (isEdited ? 4 : 3);
        })) << (isEdited ? "kept" : "nothing is left to keep");
    }
    WRDocumentWindow* only = open("d.txt", "only copy");  // not edited, but its file goes
    std::filesystem::remove(folder.path("d.txt"));
    only->file()->fileDidChange();
    desktop->newDocument(nullptr);
    typeInto(front(), u"new");
    desktop->applicationDidLoseDisplay(nullptr);  // nobody can be asked
    for (id each : NSArray::arrayWithArray(screen.app->windows())) {
        auto* window = static_cast<NSWindow*>(each);
        window->setFrameTopLeftPoint({100, 1000});
        window->close();
    }
    folder.write("b.txt", "other");
    std::filesystem::remove(folder.path("c.txt"));
    start();
    std::set<std::pair<float, float>> corners;
    for (id window : screen.app->windows()) {
        const NSRect frame = static_cast<NSWindow*>(window)->frame();
        corners.emplace(NSMinX(frame), NSMaxY(frame));
    }
    EXPECT_EQ(corners.size(), 5U) << "none stands on another";
    auto opener = WRDocumentOpener::initWithProfiles(PBRegistry::sharedRegistry());
    WRDocument* wanted = opener->openDocumentAtPath_options(NSString::ofUTF8(folder.path("b.txt")),
                                                            NSDictionary::dictionary());
    desktop->showDocument_options(wanted, nullptr);
    EXPECT_EQ(front(), desktop->windowForPath(wanted->path())) << "what is asked for is in front";
    for (const auto& [name, text] : rows) {
        WRDocumentWindow* window = desktop->windowForPath(NSString::ofUTF8(folder.path(name)));
        ASSERT_TRUE(window) << name;
        EXPECT_EQ(stateOf(window), std::string("typed ") + name[0] + " 1 1");
        EXPECT_THAT(notice(window), HasSubstr(text));
        EXPECT_EQ(window->pageView()->selectedRange(), (NSRange{6, 0})) << "where the user was";
    }
    EXPECT_EQ(screen.app->windows()->count(), 5U) << "no empty document besides";
    only = desktop->windowForPath(NSString::ofUTF8(folder.path("d.txt")));
    ASSERT_TRUE(only);
    EXPECT_EQ(textOf(only), "only copy");
    open("f.txt", "another");
    EXPECT_EQ(screen.app->windows()->count(), 6U) << "nobody has asked about the document without a file";
}

}  // namespace
