// SPDX-License-Identifier: Apache-2.0
#include "Interface/KeyboardLayouts.h"

#include <thread>

#include "EnvironmentScope.h"
#include "Foundation/NSWorkspace.h"
#include "Interface/NSImage.h"
#include "InterfaceScope.h"
#include "TemporaryFolder.h"

namespace {

BackendLayout layout(const std::string& name, const std::string& language, std::uint32_t group = 0) {
    return {group, name, "", language, name.substr(0, 2), group == 0};
}

template <class T>
T property(KeyboardLayoutRef layout, KeyboardLayoutPropertyTag tag) {
    const void* value = nullptr;
    KLGetKeyboardLayoutProperty(layout, tag, &value);
    return (T)value;
}

class KeyboardLayouts : public testing::Test {
  protected:
    /// The reference of the only layout that the user has.
    KeyboardLayoutRef only(const BackendLayout& layout) {
        screen.backend->setLayouts({layout});
        KeyboardLayoutRef ref = nullptr;
        EXPECT_EQ(KLGetKeyboardLayoutAtIndex(0, &ref), noErr);
        return ref;
    }
    TemporaryFolder folder;
    EnvironmentScope shares{"XDG_DATA_DIRS", folder.path().c_str()};
    InterfaceScope screen;
};

TEST_F(KeyboardLayouts, KnowScriptsAndLanguages) {
    expectAll({"deu-DE -> 0 de-DE", "pol -> 29 pl", "vie -> 30 vi", "srp-RS -> 7 sr-RS", "srp-ME -> 0 sr-ME",
               "srp-Latn-RS -> 0 sr-Latn-RS", "zho-CN -> 25 zh-CN", "zho-TW -> 2 zh-TW", "jpn -> 1 ja",
               "kor -> 3 ko", "pan-PK -> 4 pa-PK", "pan-IN -> 10 pa-IN", "chr-US -> 126 chr-US",
               " -> 0 (null)", "a b -> 0 (null)"},
              [&](const std::string& language) {
                  const KeyboardLayoutRef ref = only(layout("for " + language, language));
                  return shown(property<std::intptr_t>(ref, kKLGroupIdentifier), keyboardLayoutLanguage(ref));
              });
}

TEST_F(KeyboardLayouts, AreNamedByTheUsersLanguage) {
    // The catalogue: five words, tables of keys and texts, and the texts.
    const std::string keys[] = {"Czech", "German", "Russian"},
                      texts[] = {"Tschechisch", "Deutsch", "Russisch"};
    std::vector<std::uint32_t> words{0x950412DE, 0, 3, 28, 52, 0, 0};
    std::string bytes;
    for (const auto* list : {&keys, &texts})
        for (const std::string& text : *list) {
            words.push_back(static_cast<std::uint32_t>(text.size()));
            words.push_back(static_cast<std::uint32_t>(76 + bytes.size()));
            bytes += text + '\0';
        }
    const std::string catalogue = std::string(reinterpret_cast<const char*>(words.data()), 76) + bytes;
    const std::string name = "locale/de/LC_MESSAGES/xkeyboard-config.mo";
    const LanguageScope german("de_AT:de");
    const auto shownName = [&](const char* english) {
        BackendLayout named = layout(std::string("x ") + english, "");
        named.displayName = english;
        return shown(property<NSString*>(only(named), kKLLocalizedName));
    };
    EXPECT_EQ(shownName("German"), "German");  // there is no catalogue
    for (std::size_t length = 0; length < catalogue.size(); ++length) {
        folder.write(name, catalogue.substr(0, length));  // broken, but nothing else happens
        const std::string text = shownName("German");
        EXPECT_TRUE(text == "German" || text == "Deutsch") << text;
    }
    folder.write(name, catalogue);
    expectAll({"Czech -> Tschechisch", "Russian -> Russisch", "Danish -> Danish", " -> (null)"},
              [&](const std::string& english) { return shownName(english.c_str()); });
    const LanguageScope english("en:de");
    EXPECT_EQ(shownName("German"), "German");
}

TEST_F(KeyboardLayouts, HaveReferencesIdentifiersAndIcons) {
    screen.backend->setLayouts({layout("us", "eng"), layout("de", "deu", 1), layout("de", "deu", 2)});
    NSInteger count = 0;
    EXPECT_EQ(KLGetKeyboardLayoutCount(&count), noErr);
    EXPECT_EQ(count, 2);
    KeyboardLayoutRef german = nullptr, other = nullptr;
    EXPECT_EQ(KLGetKeyboardLayoutAtIndex(1, &german), noErr);
    EXPECT_EQ(KLGetKeyboardLayoutAtIndex(2, &other), paramErr);
    const auto identifier = static_cast<std::int32_t>(property<std::intptr_t>(german, kKLIdentifier));
    EXPECT_EQ(identifier, 0x5C1CCEA2);  // stored by programs: it never changes

    // Still the same layout when it is not enabled, and known by its identifier.
    screen.backend->setLayouts({});
    EXPECT_EQ(KLGetKeyboardLayoutCount(&count), resNotFound);
    EXPECT_EQ(KLGetKeyboardLayoutWithIdentifier(identifier, &other), noErr);
    EXPECT_EQ(other, german);
    EXPECT_EQ(KLGetKeyboardLayoutWithIdentifier(0, &other), resNotFound);

    auto* icon = property<NSImage*>(german, kKLIcon);
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->size(), (NSSize{16, 16}));
    EXPECT_EQ(property<NSImage*>(german, kKLIcon), icon);
    EXPECT_FALSE(property<NSImage*>(only(layout("us", "eng")), kKLIcon)->data()->isEqual(icon->data()));
    EXPECT_EQ(property<NSImage*>(only({0, "nameless", "", "", "", true}), kKLIcon), nullptr);
}

TEST_F(KeyboardLayouts, TellWhatChanged) {
    const auto lists = Listener::to(NSKeyboardLayoutsDidChangeNotification);
    const auto currents = Listener::to(NSCurrentKeyboardLayoutDidChangeNotification);
    const auto told = [&] {
        screen.turn();
        return shown(lists->takeCount(), currents->takeCount());
    };
    screen.backend->setLayouts({layout("us", "eng"), layout("ru", "rus", 1), layout("ua", "ukr", 2)});
    EXPECT_EQ(told(), "0 0") << "nobody has asked";
    EXPECT_EQ(GetScriptManagerVariable(smKeyScript), smRoman);
    screen.backend->setLayout(2);
    screen.backend->setLayout(0);
    EXPECT_EQ(told(), "0 0") << "as before";
    KeyScript(smCyrillic | 0x80);
    EXPECT_EQ(GetScriptManagerVariable(smKeyScript), smCyrillic);
    EXPECT_EQ(told(), "0 1");
    screen.backend->setLayout(2);
    EXPECT_EQ(told(), "0 1");
    for (const std::int16_t code : {std::int16_t{smCyrillic}, std::int16_t{smGreek}, std::int16_t{-1}})
        KeyScript(code);
    EXPECT_EQ(told(), "0 0");
    screen.backend->setLayouts({layout("us", "eng")});
    EXPECT_EQ(told(), "1 1");
}

TEST_F(KeyboardLayouts, OpenTheirSettings) {
    const EnvironmentScope path("PATH", folder.path("bin").c_str());
    // A program that notes how it was called.
    const auto install = [&](const std::string& name) {
        const std::string script = "#!/bin/sh\necho \"${0##*/} $*\" >>" + folder.path("calls") + "\n";
        std::filesystem::permissions(folder.write("bin/" + name, script), std::filesystem::perms::owner_all);
    };
    const auto call = [&] {
        while (!folder.read("calls").ends_with('\n')) std::this_thread::yield();
        std::string text = folder.read("calls");
        std::filesystem::remove(folder.path("calls"));
        return text;
    };
    const EnvironmentScope desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    EXPECT_FALSE(openKeyboardSettings());
    for (const auto& [program, page] :
         {std::pair{"kcmshell5", " kcm_keyboard\n"}, {"gnome-control-center", " keyboard\n"}}) {
        install(program);
        EXPECT_TRUE(openKeyboardSettings());
        EXPECT_EQ(call(), std::string(program) + page);
    }
    NSString* file = NSString::ofUTF8(folder.write("a letter", ""));
    EXPECT_FALSE(NSWorkspace::sharedWorkspace()->openFile(file));
    install("xdg-open");
    EXPECT_TRUE(NSWorkspace::sharedWorkspace()->openFile(file));
    EXPECT_EQ(call(), "xdg-open " + file->toUTF8() + "\n");
    EXPECT_FALSE(NSWorkspace::sharedWorkspace()->openFile(u"/no/such/file"_ns));
}

}  // namespace
