// SPDX-License-Identifier: Apache-2.0
#include "EnvironmentScope.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSAlert.h"
#include "Interface/NSButton.h"
#include "Interface/NSOpenPanel.h"
#include "Interface/NSTableView.h"
#include "InterfaceScope.h"
#include "TemporaryFolder.h"

namespace {

extern Library filePanelsLibrary;

// A delegate of panels that hides and refuses names.
class FPDelegate : public NSObject {
    PELVOR_CLASS(FPDelegate, NSObject);

  public:
    bool panel_shouldShowFilename(id, NSString* path) { return !path->hasSuffix(u"a2.txt"_ns); }
    bool panel_isValidFilename(id, NSString* path) { return !path->hasSuffix(u"bad.txt"_ns); }
};

PELVOR_DEFINE_CLASS(FPDelegate, filePanelsLibrary) {
    methods.instance<"panel:shouldShowFilename:", &FPDelegate::panel_shouldShowFilename>();
    methods.instance<"panel:isValidFilename:", &FPDelegate::panel_isValidFilename>();
}

Library filePanelsLibrary{"FilePanelsTest", {}, kClassesOf<FPDelegate>, {}};

constexpr char16_t kDown[] = {NSDownArrowFunctionKey, 0};

class FilePanels : public testing::Test {
  protected:
    // Keys, or something else that happens.
    struct Step {
        Step(std::u16string keys) : keys(std::move(keys)) {}
        Step(const char16_t* keys) : keys(keys) {}
        template <class Task>
        requires std::is_invocable_v<Task> Step(Task task) : task(std::move(task)) {}
        std::u16string keys;
        std::function<void()> task;
    };

    FilePanels() {
        NSUserDefaults::setStandardUserDefaults(NSUserDefaults::initVolatile().get());
        for (const char* name : {"a10.txt", "a2.txt", "Éclair.rtf", ".hidden", "Sub/inner.txt"})
            folder.write("files/" + std::string(name), "text");
        std::filesystem::create_directory_symlink(folder.path("files/Sub"), folder.path("files/alias"));
    }
    ~FilePanels() override { NSUserDefaults::setStandardUserDefaults(nullptr); }

    std::u16string folderText(const std::string& name) {
        const std::string text = folder.path(name);
        return {text.begin(), text.end()};
    }
    NSString* path(const std::string& name) { return NSString::ofUTF8(folder.path("files/" + name)); }

    // Runs the panel in the folder, one step after the other, and cancels then. Returns whether the user
    // accepted.
    bool run(NSSavePanel* itsPanel, std::vector<Step> steps) {
        panel = itsPanel;
        if (!panel->directory()) panel->setDirectory(NSString::ofUTF8(folder.path("files")));
        std::size_t next = 0;
        NSInteger result = -1;
        auto user = Listener::doing([&](id) {
            if (next == steps.size()) return type(u"\x1b");
            const Step& step = steps[next++];
            step.task ? step.task() : type(step.keys);
        });
        auto timer = NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(0.25, user, "hear:"_sel,
                                                                                     nullptr, true);
        NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSModalPanelRunLoopMode);
        auto start = Listener::doing([&](id) {
            result = panel->runModal();
            screen.app->stop(nullptr);
        });
        performSelector_withObject_afterDelay(start, "hear:"_sel, nullptr, 0);
        screen.app->run();
        timer->invalidate();
        EXPECT_EQ(next, steps.size()) << "it ended early";
        EXPECT_FALSE(panel->isVisible());
        return result == NSOKButton;
    }
    void type(const std::u16string& keys, std::uint32_t modifiers = 0) {
        for (char16_t unit : keys) {
            BackendKey key;
            key.characters = key.charactersIgnoringModifiers = key.shortcutCharacters =
                std::u16string(1, unit);
            key.modifiers = modifiers;
            if (unit < 0x100) key.symbol = unit;
            key.code = unit & 0xFF;
            screen.backend->key(key);
        }
    }
    template <class T>
    static T* find(NSView* view, const std::function<bool(T*)>& matches) {
        for (id each : view->subviews()) {
            if (auto* found = cast<T>(each); found && matches(found)) return found;
            if (T* found = find<T>(static_cast<NSView*>(each), matches)) return found;
        }
        return nullptr;
    }
    NSTableView* table() {
        return find<NSTableView>(panel->contentView(), [](NSTableView*) { return true; });
    }
    std::string nameOfRow(NSInteger row) {
        return send<NSString*>(table()->dataSource(), "tableView:objectValueForTableColumn:row:"_sel, table(),
                               table()->columns()[0].get(), row)
            ->toUTF8();
    }
    // Names in the order of the rows; those that cannot be chosen in parentheses.
    std::string rows() {
        std::vector<std::string> names;
        for (NSInteger row = 0; row < table()->numberOfRows(); ++row)
            names.push_back(send<bool>(table()->delegate(), "tableView:shouldSelectRow:"_sel, table(), row)
                                ? nameOfRow(row)
                                : "(" + nameOfRow(row) + ")");
        return joined(names);
    }
    std::string selected() { return table()->selectedRow() < 0 ? "-" : nameOfRow(table()->selectedRow()); }
    // What an alert says that is open.
    std::string message() {
        NSWindow* window = screen.app->modalWindow();
        auto* button = find<NSButton>(window->contentView(), [](NSButton*) { return true; });
        auto* alert = window == panel ? nullptr : cast<NSAlert>(button->target());
        return alert ? alert->messageText()->toUTF8() : "";
    }
    Step expectRows(const char* expected) {
        return [=, this] { EXPECT_EQ(rows(), expected); };
    }
    Step expectSelected(const char* expected) {
        return [=, this] { EXPECT_EQ(selected(), expected); };
    }
    Step expectFolder(const std::string& name) {
        return [=, this] { EXPECT_EQ(panel->directory()->toUTF8(), folder.path(name)); };
    }
    Step expectMessage(const std::string& expected) {
        return [=, this] { EXPECT_EQ(message(), expected); };
    }
    Step press(NSString* title) {
        return [=, this] {
            NSView* contents = screen.app->modalWindow()->contentView();
            auto* button =
                find<NSButton>(contents, [&](NSButton* each) { return each->title()->isEqual(title); });
            ASSERT_TRUE(button);
            EXPECT_TRUE(button->isEnabled());
            button->performClick(nullptr);
        };
    }

    TemporaryFolder folder;
    EnvironmentScope home{"HOME", folder.path("home").c_str()}, config{"XDG_CONFIG_HOME", nullptr};
    LanguageScope language{"en"};
    InterfaceScope screen;
    Retained<NSSavePanel> save = Retained<NSSavePanel>::retaining(NSSavePanel::savePanel());
    Retained<NSOpenPanel> open = Retained<NSOpenPanel>::retaining(NSOpenPanel::openPanel());
    NSSavePanel* panel = nullptr;
};

TEST_F(FilePanels, ShowWhatCanBeChosen) {
    auto delegate = make<FPDelegate>();
    EXPECT_FALSE(run(
        open,
        {expectRows("alias, Sub, a2.txt, a10.txt, Éclair.rtf"), [&] { type(u"h", kBackendCommand); },
         expectRows("alias, Sub, .hidden, a2.txt, a10.txt, Éclair.rtf"), [&] { type(u"h", kBackendCommand); },
         [&] { open->setAllowedFileTypes(NSArray::of({u"TXT"_ns})); },
         expectRows("alias, Sub, a2.txt, a10.txt, (Éclair.rtf)"),
         [&] {
             open->setDelegate(delegate);
             open->validateVisibleColumns();
         },
         expectRows("alias, Sub, a10.txt, (Éclair.rtf)"),
         [&] {
             folder.write("files/b.txt", "");
             screen.app->modalWindow()->becomeKeyWindow();
         },
         expectRows("alias, Sub, a10.txt, b.txt, (Éclair.rtf)"),
         [&] {
             std::filesystem::remove_all(folder.path("files"));
             panel->becomeKeyWindow();
         },
         [&] { EXPECT_EQ(open->directory()->toUTF8(), folder.path().string()); }}));
    EXPECT_EQ(open->filenames()->count(), 0u);
    EXPECT_FALSE(open->filename());
}

TEST_F(FilePanels, SaveUnderANameThatIsCompleted) {
    save->setRequiredFileType(u"rtf"_ns);
    save->setNameFieldStringValue(u"Draft.rtf"_ns);
    EXPECT_TRUE(
        run(save, {u"Letter", [&] { EXPECT_EQ(save->nameFieldStringValue()->toUTF8(), "Letter.rtf"); },
                   [&] { save->setRequiredFileType(u"txt"_ns); },
                   [&] { EXPECT_EQ(save->nameFieldStringValue()->toUTF8(), "Letter.txt"); }, u"\r"}));
    EXPECT_EQ(save->filename()->toUTF8(), folder.path("files/Letter.txt"));
    EXPECT_EQ(NSUserDefaults::standardUserDefaults()->stringForKey(PelvorPanelFolder)->toUTF8(),
              folder.path("files"));
    // Without an extension of its own.
    save->setNameFieldStringValue(u"v1.2"_ns);
    EXPECT_TRUE(run(save, {u"\r"}));
    EXPECT_EQ(save->filename()->toUTF8(), folder.path("files/v1.2.txt"));
    // The next panel begins there.
    auto other = Retained<NSSavePanel>::retaining(NSSavePanel::savePanel());
    other->setDirectory(path("missing"));
    EXPECT_FALSE(run(other, {expectFolder("files"), expectRows("alias, Sub, a2.txt, a10.txt, Éclair.rtf")}));
    EXPECT_FALSE(other->filename());
}

TEST_F(FilePanels, AskBeforeTheyReplace) {
    save->setNameFieldStringValue(u"a2.txt"_ns);
    const std::string question = "“a2.txt” is in the folder “files” already. Do you want to replace it?";
    EXPECT_TRUE(run(save, {u"\r", expectMessage(question), u"\x1b", expectMessage(""), u"\r",
                           expectMessage(question), u"\r", expectMessage(""), u"\r", press(u"Replace"_ns)}));
    EXPECT_EQ(save->filename()->toUTF8(), folder.path("files/a2.txt"));
}

TEST_F(FilePanels, SayWhyANameCannotBeUsed) {
    const std::string longName(300, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"a/b", "The name “a/b” cannot be used: a name cannot contain a slash."},
        {longName, "The name “" + longName.substr(0, 80) + "…” cannot be used: its name is too long."},
        {"Sub", "The name “Sub” cannot be used: a folder has this name already."},
        {"/nowhere/x", "The folder “/nowhere” cannot be shown: the file does not exist."},
        {folder.path("files/a2.txt/x"), "The folder “" + folder.path("files/a2.txt") +
                                            "” cannot be shown: a part of the path is no folder."}};
    for (const auto& [name, expected] : cases) {
        save->setNameFieldStringValue(NSString::ofUTF8(name));
        EXPECT_FALSE(
            run(save, {u"\r", expectMessage(expected), u"\r", expectMessage(""), expectFolder("files")}));
    }
    save->setDelegate(make<FPDelegate>().autorelease());
    save->setNameFieldStringValue(u"bad.txt"_ns);
    EXPECT_FALSE(run(save, {u"\r", expectFolder("files")})) << "the delegate refuses it";
    if (geteuid() == 0) return;  // who may write everywhere
    std::filesystem::permissions(folder.path("files"), std::filesystem::perms{0555});
    save->setNameFieldStringValue(u"x.txt"_ns);
    EXPECT_FALSE(run(save, {u"\r",
                            expectMessage("Nothing can be saved in the folder “files”: permission was "
                                          "denied."),
                            u"\r"}));
}

TEST_F(FilePanels, GoWhereKeysLead) {
    EXPECT_TRUE(run(
        open, {u"s", expectSelected("Sub"), u"\r", expectFolder("files/Sub"), u"\x7f", expectSelected("Sub"),
               expectFolder("files"), u"a", expectSelected("a2.txt"), u"a", expectSelected("a10.txt"),
               [&] { screen.clock.advance(2); }, u"éc", expectSelected("Éclair.rtf"),
               // A path; Escape leaves its field alone.
               [&] { screen.clock.advance(2); }, u"/nonsense", u"\x1b", expectFolder("files"), u"/",
               folderText("files/Sub").substr(1), u"\r", expectFolder("files/Sub"), kDown, u"\r"}));
    EXPECT_EQ(open->filename()->toUTF8(), folder.path("files/Sub/inner.txt"));
    // The name stays while a path is typed, and a path may have a name at its end.
    save->setNameFieldStringValue(u"Letter"_ns);
    EXPECT_TRUE(run(save, {folderText("files/Sub"), u"\r", expectFolder("files/Sub"),
                           [&] { EXPECT_EQ(save->nameFieldStringValue()->toUTF8(), "Letter"); },
                           folderText("files/Memo"), u"\r"}));
    EXPECT_EQ(save->filename()->toUTF8(), folder.path("files/Memo"));
}

TEST_F(FilePanels, MakeFolders) {
    EXPECT_TRUE(
        run(save, {press(u"New Folder"_ns), expectSelected("-"), u"\x1b",
                   expectRows("alias, Sub, a2.txt, a10.txt, Éclair.rtf"), press(u"New Folder"_ns), u"Sub\r",
                   expectMessage("The folder “Sub” cannot be made: the file already exists."), u"\r",
                   press(u"New Folder"_ns), u"Mail\r", expectFolder("files/Mail"),
                   [&] { save->setNameFieldStringValue(u"x"_ns); }, press(u"Save"_ns)}));
    EXPECT_EQ(save->filename()->toUTF8(), folder.path("files/Mail/x"));
    EXPECT_FALSE(std::filesystem::exists(folder.path("files/New Folder")));
}

TEST_F(FilePanels, OpenSeveralFilesOrAFolder) {
    open->setAllowsMultipleSelection(true);
    EXPECT_TRUE(run(open, {[&] { table()->selectAll(nullptr); }, press(u"Open"_ns)}));
    EXPECT_EQ(open->filenames()->count(), 3u) << "without the folders";
    open->setCanChooseDirectories(true);
    open->setCanChooseFiles(false);
    EXPECT_TRUE(run(open, {expectRows("alias, Sub, (a2.txt), (a10.txt), (Éclair.rtf)"), press(u"Open"_ns)}));
    EXPECT_EQ(open->filename()->toUTF8(), folder.path("files"));
    EXPECT_TRUE(run(open, {u"S", press(u"Open"_ns)}));
    EXPECT_EQ(open->filename()->toUTF8(), folder.path("files/Sub"));
}

TEST_F(FilePanels, CancelWhereNobodyCanChoose) {
    LogLines log;
    EXPECT_EQ(open->runModalForDirectory_file_types(nullptr, u"a2.txt"_ns, nullptr), NSCancelButton);
    EXPECT_THAT(log.lines, testing::ElementsAre("Open: nobody can choose a file."));
}

}  // namespace
