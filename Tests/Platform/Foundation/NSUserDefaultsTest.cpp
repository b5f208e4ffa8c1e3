// SPDX-License-Identifier: Apache-2.0
// Tests of user defaults: domains, conversions, and the file with everything that can happen to it.
#include "Foundation/NSUserDefaults.h"

#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/Messages.h"
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

NSDictionary* dictionary(std::string_view text) { return cast<NSDictionary>(listOf(text)); }

struct UserDefaults : ::testing::Test {
    Retained<NSUserDefaults> defaults = NSUserDefaults::initVolatile();
};

TEST_F(UserDefaults, LookInTheirDomainsInOrder) {
    auto value = [](NSUserDefaults* each) { return shown(each->stringForKey(u"key"_ns)); };
    EXPECT_EQ(value(defaults), "(null)");
    expectSteps(defaults.get(),
                {"registerDefaults: {key=other;more=1;} -> other",
                 "registerDefaults: {key=registered;} -> registered", "setObject:forKey: 'set 'key -> set",
                 "setVolatileDomain:forName: {key=test;} 'Test -> test",
                 "setVolatileDomain:forName: {key=argument;} 'NSArgumentDomain -> argument"},
                value);
    EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(dictionary("{key = argument; more = 1;}")));
    expectSteps(defaults.get(),
                {"removeVolatileDomainForName: 'NSArgumentDomain -> test",
                 "removeVolatileDomainForName: 'Test -> set", "removeObjectForKey: 'key -> registered"},
                value);
    EXPECT_FALSE(defaults->volatileDomainForName(NSArgumentDomain) || defaults->objectForKey(nullptr));
}

TEST_F(UserDefaults, MayBeAskedWhileADomainEnds) {
    std::string found;
    {
        AutoreleasePool pool;
        auto ask = [&] { found += shown(defaults->stringForKey(u"key"_ns)) + " "; };
        auto last = Listener::doing([end = atEnd(ask)](id) {});
        for (NSString* name : {u"Gone"_ns, u"Replaced"_ns})
            defaults->setVolatileDomain_forName(NSDictionary::of({{u"key"_ns, last.get()}}), name);
    }
    defaults->setVolatileDomain_forName(dictionary("{key = kept;}"), u"Replaced"_ns);
    defaults->removeVolatileDomainForName(u"Gone"_ns);
    EXPECT_EQ(found, "kept ");
}

TEST_F(UserDefaults, ConvertNumbersAndTexts) {
    const std::pair<id, const char*> rows[] = {
        {NSNumber::numberWithInt(7), "7 7 1 7"},
        {NSNumber::numberWithDouble(2.5), "2 2.5 1 2.5"},
        {NSNumber::numberWithBool(true), "1 1 1 1"},
        {NSNumber::numberWithInt(0), "0 0 0 0"},
        {u"12.5 points"_ns, "12 12.5 1 12.5 points"},
        {u"YES"_ns, "0 0 1 YES"},
        {u"no"_ns, "0 0 0 no"},
        {listOf("(1)"), "0 0 0 (null)"},
        {nullptr, "0 0 0 (null)"},
    };
    NSString* key = u"key"_ns;
    for (auto [object, values] : rows) {
        defaults->setObject_forKey(object, key);
        EXPECT_EQ(shown(defaults->integerForKey(key), defaults->doubleForKey(key), defaults->boolForKey(key),
                        defaults->stringForKey(key)),
                  values);
        EXPECT_EQ(defaults->floatForKey(key), static_cast<float>(defaults->doubleForKey(key)));
    }
    defaults->setBool_forKey(true, key);
    EXPECT_TRUE(NSNumber::numberWithBool(true)->isEqual(defaults->objectForKey(key)));
}

TEST_F(UserDefaults, HandOutObjectsOfTheClassAskedForAndKeepCopies) {
    expectAll({"(a, (b)) -> 1 0 0 0", "(a) -> 1 1 0 0", "{} -> 0 0 1 0", "<00> -> 0 0 0 1"},
              [this](const std::string& list) {
                  NSString* key = u"key"_ns;
                  defaults->setObject_forKey(listOf(list), key);
                  return shown(!!defaults->arrayForKey(key), !!defaults->stringArrayForKey(key),
                               !!defaults->dictionaryForKey(key), !!defaults->dataForKey(key));
              });
    NSMutableArray* inner = NSMutableArray::of({u"a"_ns});
    defaults->setObject_forKey(NSArray::of({inner}), u"key"_ns);
    inner->addObject(u"b"_ns);
    EXPECT_TRUE(listOf("((a))")->isEqual(defaults->arrayForKey(u"key"_ns)));
}

TEST_F(UserDefaults, RefuseWhatAFileCannotHold) {
    for (auto [object, key] : {std::pair<id, NSString*>(NSNull::null(), u"key"_ns),
                               {NSString::of(u"\xD800"), u"key"_ns},
                               {u"x"_ns, NSString::of(u"\x01")},
                               {u"x"_ns, nullptr}})
        EXPECT_THROW(defaults->setObject_forKey(object, key), NSException) << object;
    EXPECT_THROW(defaults->removeObjectForKey(nullptr), NSException);
    EXPECT_THROW(defaults->registerDefaults(nullptr), NSException);
    EXPECT_THROW(defaults->setVolatileDomain_forName(nullptr, u"x"_ns), NSException);
    for (NSString* name : {u""_ns, u"../x"_ns, u"a/b"_ns, NSString::of(std::u16string(1, u'\0'))})
        EXPECT_THROW((void)NSUserDefaults::initWithDomainName(name), NSException) << name;
}

TEST_F(UserDefaults, ReadArguments) {
    auto* arguments =
        cast<NSArray>(listOf("(program, '-Zoom', '-5', file, '-A', '-B', '(a, b)', '--long', x, '-C', "
                             "'{broken', '-D', '', '-', '-E')"));
    EXPECT_TRUE(NSUserDefaults::settingsFromArguments(arguments)->isEqual(
        listOf("{Zoom = '-5'; B = (a, b); C = '{broken'; D = '';}")));
}

TEST_F(UserDefaults, OfTheProgramCanBeExchanged) {
    NSUserDefaults::setStandardUserDefaults(defaults);
    EXPECT_EQ(NSUserDefaults::standardUserDefaults(), defaults);
    EXPECT_EQ(send<id>(NSUserDefaults::classObject(), "standardUserDefaults"_sel), defaults.get());
    NSUserDefaults::setStandardUserDefaults(nullptr);
    EXPECT_NE(NSUserDefaults::standardUserDefaults(), defaults);
    NSUserDefaults::setStandardUserDefaults(nullptr);
}

TEST_F(UserDefaults, MayBeUsedOnManyThreads) {
    onThreads(4, [this](int number) {
        NSString* key = NSString::stringWithFormat(u"key%d"_ns, number % 2);
        for (int step = 0; step < 200; ++step) {
            defaults->setInteger_forKey(step, key);
            defaults->integerForKey(key);
            defaults->dictionaryRepresentation();
            defaults->registerDefaults(NSDictionary::of({{key, key}}));
        }
    });
    EXPECT_EQ(defaults->integerForKey(u"key0"_ns), 199);
}

// MARK: Files

class UserDefaultsFiles : public ::testing::Test {
  protected:
    static Retained<NSUserDefaults> open() { return NSUserDefaults::initWithDomainName(u"Test"_ns); }
    // Whether the setting could be written.
    static bool save(NSUserDefaults* defaults, NSString* key, NSString* value) {
        defaults->setObject_forKey(value, key);
        return defaults->synchronize();
    }
    // What a process started now would find.
    static std::string found(NSString* key) { return shown(open()->stringForKey(key)); }
    std::string keptAside(const char* number = "") {
        return folder.read(path.string() + ".damaged" + number);
    }

    BundleFolder folder;
    const fs::path config = folder.path() / "config";
    const fs::path path = config / "pelvor/Test.plist";
    EnvironmentScope configuration{"XDG_CONFIG_HOME", config.c_str()};
    LogLines log;
};

TEST_F(UserDefaultsFiles, KeepSettingsForTheUserAlone) {
    auto defaults = open();
    defaults->registerDefaults(dictionary("{a = b;}"));
    EXPECT_TRUE(defaults->synchronize() && !fs::exists(config));  // there is nothing to keep
    defaults->setObject_forKey(u"blue"_ns, u"colour"_ns);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"colour"_ns), "blue");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms{0600});
    EXPECT_EQ(fs::status(path.parent_path()).permissions(), fs::perms{0700});
    EXPECT_EQ(std::distance(fs::directory_iterator(path.parent_path()), {}), 1);
    EXPECT_TRUE(save(defaults, u"colour"_ns, nullptr));
    EXPECT_EQ(found(u"colour"_ns), "(null)");
    EXPECT_THAT(log.lines, IsEmpty());
    // Without such a folder, in that of the home.
    EnvironmentScope none("XDG_CONFIG_HOME", "relative/paths/do/not/count");
    EnvironmentScope home("HOME", folder.path().c_str());
    EXPECT_TRUE(save(open().get(), u"a"_ns, u"1"_ns));
    EXPECT_TRUE(fs::exists(folder.path() / ".config/pelvor/Test.plist"));
}

TEST_F(UserDefaultsFiles, JoinTheChangesOfSeveralProcesses) {
    auto one = open(), other = open();
    for (NSString* key : {u"a"_ns, u"b"_ns, u"gone"_ns}) one->setObject_forKey(u"1"_ns, key);
    for (NSString* key : {u"b"_ns, u"c"_ns}) other->setObject_forKey(u"2"_ns, key);
    other->removeObjectForKey(u"gone"_ns);
    for (auto* defaults : {one.get(), other.get(), one.get()}) EXPECT_TRUE(defaults->synchronize());
    for (auto* defaults : {one.get(), other.get()})
        EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(dictionary("{a = 1; b = 2; c = 2;}")));
}

TEST_F(UserDefaultsFiles, TellWhenSettingsChange) {
    auto one = open(), other = open();
    auto listener = Listener::to(NSUserDefaultsDidChangeNotification, one);
    one->setObject_forKey(u"1"_ns, u"a"_ns);
    EXPECT_EQ(listener->takeCount(), 1u);
    EXPECT_TRUE(one->synchronize());
    EXPECT_TRUE(save(other, u"a"_ns, nullptr));
    EXPECT_EQ(listener->takeCount(), 0u);
    EXPECT_TRUE(one->synchronize());
    EXPECT_EQ(listener->takeCount(), 1u);
}

TEST_F(UserDefaultsFiles, ThatAreDamagedAreKeptAside) {
    const std::string damages[] = {"<plist><dict><key>a</key>", "(no, dictionary)", ""};
    for (const std::string& damage : damages) {
        SCOPED_TRACE(damage);
        log.lines.clear();
        folder.write(path, damage);
        auto defaults = open();
        EXPECT_FALSE(defaults->objectForKey(u"a"_ns));
        EXPECT_THAT(log.lines, ElementsAre(HasSubstr("Test.plist are damaged")));
        EXPECT_TRUE(defaults->synchronize());
        EXPECT_EQ(folder.read(path), damage);
        EXPECT_TRUE(save(defaults, u"a"_ns, u"b"_ns));
        EXPECT_EQ(found(u"a"_ns), "b");
    }
    EXPECT_EQ(keptAside(), damages[0]);
    EXPECT_EQ(keptAside("-2"), damages[1]);
    EXPECT_TRUE(fs::exists(path.string() + ".damaged-3"));
}

TEST_F(UserDefaultsFiles, ThatAreDamagedMeanwhileLoseNothingAndThatAreTakenAwayAreMadeAnew) {
    auto defaults = open();
    EXPECT_TRUE(save(defaults, u"a"_ns, u"1"_ns));
    folder.write(path, "damage");
    EXPECT_TRUE(save(defaults, u"b"_ns, u"2"_ns));
    EXPECT_EQ(found(u"a"_ns) + found(u"b"_ns), "12");
    EXPECT_EQ(keptAside(), "damage");
    fs::remove(path);
    EXPECT_TRUE(save(defaults, u"b"_ns, u"3"_ns));
    EXPECT_EQ(found(u"a"_ns) + found(u"b"_ns), "(null)3");
}

TEST_F(UserDefaultsFiles, ThatCannotBeWrittenLeaveTheChangesForLaterAndLinksAreFollowed) {
    folder.write(config, "no folder");
    auto defaults = open();
    EXPECT_FALSE(save(defaults, u"a"_ns, u"1"_ns));
    EXPECT_THAT(log.lines, Contains(EndsWith("Test.plist: a part of the path is no folder")));
    fs::remove(config);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"a"_ns), "1");
    // What is no file is left alone.
    fs::remove(path);
    fs::create_directories(path);
    EXPECT_FALSE(save(open().get(), u"a"_ns, u"1"_ns));
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_THAT(log.lines, Contains(EndsWith("cannot be read: it is a folder")));
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(found(u"a"_ns), "(null)");
    EXPECT_THAT(log.lines.back(), EndsWith("cannot be read: it is no regular file"));
    // A link leads to the file.
    fs::remove(path);
    fs::create_symlink(folder.write("real", "{ a = 1; }"), path);
    EXPECT_TRUE(save(open().get(), u"b"_ns, u"2"_ns));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(found(u"a"_ns) + found(u"b"_ns), "12");
}

}  // namespace
