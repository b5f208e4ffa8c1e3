// SPDX-License-Identifier: Apache-2.0
#include <variant>

#include "EnvironmentScope.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSAlert.h"
#include "Interface/NSOpenPanel.h"
#include "Interface/NSTableView.h"
#include "ModalUser.h"
#include "TemporaryFolder.h"
#include "TestClasses.h"

namespace {

// What delegates show and allow.
bool isNoSecond(NSObject*, id, NSString* path) { return !path->hasSuffix(u"2.txt"_ns); }

constexpr char16_t kDown[] = {NSDownArrowFunctionKey, 0};

class FilePanels : public testing::Test {
  protected:
    // Keys (u""), a line of what the user sees then (""), or something else that happens.
    using Step = std::variant<std::u16string, std::string, std::function<void()>>;

    FilePanels() {
        NSUserDefaults::setStandardUserDefaults(NSUserDefaults::initVolatile().get());
        for (const char* name : {"a10.txt", "a2.txt", "Éclair.rtf", ".hidden", "Sub/inner.txt"})
            folder.write("files/" + std::string(name), "text");
        std::filesystem::create_directory_symlink(folder.path("files/Sub"), folder.path("files/alias"));
    }
    ~FilePanels() override { NSUserDefaults::setStandardUserDefaults(nullptr); }

    std::u16string typedPath(const std::string& name) {
        const std::string text = folder.path(name);
        return {text.begin(), text.end()};
    }
    void expectFile(const std::string& name) {
        EXPECT_EQ(shown(panel->filename()), folder.path("files/" + name));
    }
    // Runs the panel in the folder, one step after the other, and cancels then. Returns whether the user
    // accepted.
    bool run(NSSavePanel* itsPanel, std::vector<Step> steps) {
        panel = itsPanel;
        if (!panel->directory()) panel->setDirectory(NSString::ofUTF8(folder.path("files")));
        std::size_t next = 0;
        NSInteger result = -1;
        const auto user = [&] {
            if (next == steps.size()) return type(u"\x1b");
            const Step& step = steps[next++];
            if (auto* keys = std::get_if<std::u16string>(&step)) return type(*keys);
            if (auto* task = std::get_if<std::function<void()>>(&step)) return (*task)();
            EXPECT_THAT(seen(), HasSubstr("\n" + std::get<std::string>(step) + "\n"));
        };
        runWithUser(
            screen, [&] { result = panel->runModal(); }, user);
        EXPECT_EQ(next, steps.size()) << "it ended early";
        EXPECT_FALSE(panel->isVisible());
        return result == NSOKButton;
    }
    void type(const std::u16string& keys, std::uint32_t modifiers = 0) {
        for (char16_t unit : keys) {
            BackendKey key;
            key.characters = key.charactersIgnoringModifiers = std::u16string(1, unit);
            key.shortcutCharacters = key.characters;
            key.modifiers = modifiers;
            screen.backend->key(key);
        }
    }
    NSTableView* table() { return viewIn<NSTableView>(panel->contentView()); }
    std::string nameOfRow(NSInteger row) {
        return send<NSString*>(table()->dataSource(), "tableView:objectValueForTableColumn:row:"_sel, table(),
                               table()->columns()[0].get(), row)
            ->toUTF8();
    }
    // All that the user sees, a line each. Rows that cannot be chosen stand in parentheses.
    std::string seen() {
        std::vector<std::string> rows;
        for (NSInteger row = 0; row < table()->numberOfRows(); ++row)
            rows.push_back(send<bool>(table()->delegate(), "tableView:shouldSelectRow:"_sel, table(), row)
                               ? nameOfRow(row)
                               : "(" + nameOfRow(row) + ")");
        const NSInteger row = table()->selectedRow();
        const std::filesystem::path place(panel->directory()->toUTF8());
        auto* alert = cast<NSAlert>(viewIn<NSButton>(screen.app->modalWindow()->contentView())->target());
        return "\nin " + place.lexically_relative(folder.path()).string() + "\nrows " + joined(rows) +
               "\nselected " + (row < 0 ? "nothing" : nameOfRow(row)) + "\nname " +
               shown(panel->nameFieldStringValue()) + "\n" +
               (alert ? "alert " + alert->messageText()->toUTF8() : "no alert") + "\n";
    }
    Step press(NSString* title) {
        return [=, this] {
            NSButton* button = buttonIn(screen.app->modalWindow()->contentView(), title);
            ASSERT_TRUE(button && button->isEnabled());
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
    auto delegate = instanceOf(makeClass<"panel:shouldShowFilename:", &isNoSecond>("Hiding"));
    EXPECT_FALSE(run(
        open, {"rows alias, Sub, a2.txt, a10.txt, Éclair.rtf", [&] { type(u"h", kBackendCommand); },
               "rows alias, Sub, .hidden, a2.txt, a10.txt, Éclair.rtf", [&] { type(u"h", kBackendCommand); },
               [&] { open->setAllowedFileTypes(NSArray::of({u"TXT"_ns})); },
               "rows alias, Sub, a2.txt, a10.txt, (Éclair.rtf)",
               [&] {
                   open->setDelegate(delegate);
                   open->validateVisibleColumns();
               },
               "rows alias, Sub, a10.txt, (Éclair.rtf)",
               [&] {
                   folder.write("files/b.txt", "");
                   screen.app->modalWindow()->becomeKeyWindow();
               },
               "rows alias, Sub, a10.txt, b.txt, (Éclair.rtf)",
               [&] {
                   std::filesystem::remove_all(folder.path("files"));
                   panel->becomeKeyWindow();
               },
               "in ."}));
}

TEST_F(FilePanels, SaveUnderANameThatIsCompleted) {
    save->setRequiredFileType(u"rtf"_ns);
    save->setNameFieldStringValue(u"Draft.rtf"_ns);
    EXPECT_TRUE(run(save, {u"Letter", "name Letter.rtf", [&] { save->setRequiredFileType(u"txt"_ns); },
                           "name Letter.txt", u"\r"}));
    expectFile("Letter.txt");
    // Without an extension of its own.
    save->setNameFieldStringValue(u"v1.2"_ns);
    EXPECT_TRUE(run(save, {u"\r"}));
    expectFile("v1.2.txt");
    // The next panel begins in the folder that this one remembered.
    auto other = Retained<NSSavePanel>::retaining(NSSavePanel::savePanel());
    other->setDirectory(u"/no/such/folder"_ns);
    EXPECT_FALSE(run(other, {"in files"}));
}

TEST_F(FilePanels, AskBeforeTheyReplace) {
    save->setNameFieldStringValue(u"a2.txt"_ns);
    const std::string question =
        "alert “a2.txt” is in the folder “files” already. Do you want to replace it?";
    EXPECT_TRUE(run(save, {u"\r", question, u"\x1b", "no alert", u"\r", question, u"\r", "no alert", u"\r",
                           press(u"Replace"_ns)}));
    expectFile("a2.txt");
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
        EXPECT_FALSE(run(save, {u"\r", "alert " + expected, u"\r", "no alert", "in files"}));
    }
    auto delegate = instanceOf(makeClass<"panel:isValidFilename:", &isNoSecond>("Refusing"));
    save->setDelegate(delegate);
    save->setNameFieldStringValue(u"b2.txt"_ns);
    EXPECT_FALSE(run(save, {u"\r", "no alert"})) << "the delegate refuses it";
    if (geteuid() == 0) return;  // who may write everywhere
    std::filesystem::permissions(folder.path("files"), std::filesystem::perms{0555});
    save->setNameFieldStringValue(u"x.txt"_ns);
    const std::string refusal = "alert Nothing can be saved in the folder “files”: permission was denied.";
    EXPECT_FALSE(run(save, {u"\r", refusal, u"\r"}));
}

TEST_F(FilePanels, GoWhereKeysLead) {
    EXPECT_TRUE(run(open, {u"s", "selected Sub", u"\r", "in files/Sub", u"\x7f", "selected Sub", "in files",
                           u"a", "selected a2.txt", u"a", "selected a10.txt",
                           [&] { screen.clock.advance(2); }, u"éc", "selected Éclair.rtf",
                           // A path; Escape leaves its field alone.
                           [&] { screen.clock.advance(2); }, u"/nonsense", u"\x1b", "in files", u"/",
                           typedPath("files/Sub").substr(1), u"\r", "in files/Sub", kDown, u"\r"}));
    expectFile("Sub/inner.txt");
    // The name stays while a path is typed, and a path may have a name at its end.
    save->setNameFieldStringValue(u"Letter"_ns);
    EXPECT_TRUE(run(save, {typedPath("files/Sub"), u"\r", "in files/Sub", "name Letter",
                           typedPath("files/Memo"), u"\r"}));
    expectFile("Memo");
}

TEST_F(FilePanels, MakeFolders) {
    EXPECT_TRUE(run(save, {press(u"New Folder"_ns), "selected nothing", u"\x1b",
                           "rows alias, Sub, a2.txt, a10.txt, Éclair.rtf", press(u"New Folder"_ns), u"Sub\r",
                           "alert The folder “Sub” cannot be made: the file already exists.", u"\r",
                           press(u"New Folder"_ns), u"Mail\r", "in files/Mail",
                           [&] { save->setNameFieldStringValue(u"x"_ns); }, press(u"Save"_ns)}));
    expectFile("Mail/x");
    EXPECT_FALSE(std::filesystem::exists(folder.path("files/New Folder")));
}

TEST_F(FilePanels, OpenSeveralFilesOrAFolder) {
    open->setAllowsMultipleSelection(true);
    EXPECT_TRUE(run(open, {[&] { table()->selectAll(nullptr); }, press(u"Open"_ns)}));
    EXPECT_EQ(open->filenames()->count(), 3u) << "without the folders";
    open->setCanChooseDirectories(true);
    open->setCanChooseFiles(false);
    EXPECT_TRUE(run(open, {"rows alias, Sub, (a2.txt), (a10.txt), (Éclair.rtf)", press(u"Open"_ns)}));
    EXPECT_EQ(shown(open->filename()), folder.path("files"));
    EXPECT_TRUE(run(open, {u"S", press(u"Open"_ns)}));
    expectFile("Sub");
}

TEST_F(FilePanels, CancelWhereNobodyCanChoose) {
    LogLines log;
    EXPECT_EQ(open->runModalForDirectory_file_types(nullptr, u"a2.txt"_ns, nullptr), NSCancelButton);
    EXPECT_THAT(log.lines, testing::ElementsAre("Open: nobody can choose a file."));
}

}  // namespace
