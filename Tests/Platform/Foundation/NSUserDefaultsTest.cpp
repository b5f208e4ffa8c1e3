// SPDX-License-Identifier: Apache-2.0
// Tests of user defaults: domains, conversions, and the file with everything that can happen to it.
#include "Foundation/NSUserDefaults.h"

#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/EnvironmentScope.h"
#include "Platform/Foundation/PropertyListSamples.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

using propertylists::sampleData;

struct UserDefaults : ::testing::Test {
    Retained<NSUserDefaults> defaults = NSUserDefaults::initVolatile();
};

TEST_F(UserDefaults, LookInTheirDomainsInOrder) {
    auto setting = [](NSString* value) { return NSDictionary::of({{u"key"_ns, value}}); };
    auto value = [this] { return defaults->stringForKey(u"key"_ns); };
    EXPECT_FALSE(value());
    defaults->registerDefaults(setting(u"registered"_ns));
    EXPECT_TRUE(value()->isEqual(u"registered"_ns));
    defaults->setObject_forKey(u"set"_ns, u"key"_ns);
    EXPECT_TRUE(value()->isEqual(u"set"_ns));
    defaults->setVolatileDomain_forName(setting(u"test"_ns), u"Test"_ns);
    EXPECT_TRUE(value()->isEqual(u"test"_ns));
    defaults->setVolatileDomain_forName(setting(u"argument"_ns), NSArgumentDomain);
    EXPECT_TRUE(value()->isEqual(u"argument"_ns));
    EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(setting(u"argument"_ns)));

    defaults->removeVolatileDomainForName(NSArgumentDomain);
    EXPECT_FALSE(defaults->volatileDomainForName(NSArgumentDomain));
    defaults->removeVolatileDomainForName(u"Test"_ns);
    EXPECT_TRUE(value()->isEqual(u"set"_ns));
    defaults->removeObjectForKey(u"key"_ns);
    EXPECT_TRUE(value()->isEqual(u"registered"_ns));
    EXPECT_FALSE(defaults->objectForKey(nullptr));
}

TEST_F(UserDefaults, AddToWhatIsRegistered) {
    defaults->registerDefaults(NSDictionary::of({{u"a"_ns, u"1"_ns}, {u"b"_ns, u"1"_ns}}));
    defaults->registerDefaults(NSDictionary::of({{u"b"_ns, u"2"_ns}}));
    defaults->setObject_forKey(u"3"_ns, u"c"_ns);
    EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(
        NSDictionary::of({{u"a"_ns, u"1"_ns}, {u"b"_ns, u"2"_ns}, {u"c"_ns, u"3"_ns}})));
}

TEST_F(UserDefaults, ConvertNumbersAndTexts) {
    struct {
        id object;
        NSInteger integer;
        double real;
        bool boolean;
        NSString* string;
    } const rows[] = {
        {NSNumber::numberWithInt(7), 7, 7, true, u"7"_ns},
        {NSNumber::numberWithDouble(2.5), 2, 2.5, true, u"2.5"_ns},
        {NSNumber::numberWithBool(true), 1, 1, true, u"1"_ns},
        {NSNumber::numberWithInt(0), 0, 0, false, u"0"_ns},
        {u"12.5 points"_ns, 12, 12.5, true, u"12.5 points"_ns},
        {u"YES"_ns, 0, 0, true, u"YES"_ns},
        {u"no"_ns, 0, 0, false, u"no"_ns},
        {NSArray::of({u"1"_ns}), 0, 0, false, nullptr},
    };
    for (const auto& row : rows) {
        defaults->setObject_forKey(row.object, u"key"_ns);
        EXPECT_EQ(defaults->integerForKey(u"key"_ns), row.integer) << row.object;
        EXPECT_EQ(defaults->doubleForKey(u"key"_ns), row.real) << row.object;
        EXPECT_EQ(defaults->floatForKey(u"key"_ns), static_cast<float>(row.real)) << row.object;
        EXPECT_EQ(defaults->boolForKey(u"key"_ns), row.boolean) << row.object;
        NSString* string = defaults->stringForKey(u"key"_ns);
        EXPECT_TRUE(row.string ? row.string->isEqual(string) : !string) << row.object;
    }
    EXPECT_EQ(defaults->integerForKey(u"other"_ns), 0);
    EXPECT_FALSE(defaults->boolForKey(u"other"_ns));
}

TEST_F(UserDefaults, HandOutObjectsOfTheClassAskedFor) {
    defaults->setObject_forKey(NSArray::of({u"a"_ns, NSNumber::numberWithInt(1)}), u"array"_ns);
    defaults->setObject_forKey(NSArray::of({u"a"_ns}), u"strings"_ns);
    defaults->setObject_forKey(NSDictionary::dictionary(), u"dictionary"_ns);
    defaults->setObject_forKey(sampleData(3), u"data"_ns);
    EXPECT_TRUE(defaults->arrayForKey(u"array"_ns) && !defaults->stringArrayForKey(u"array"_ns));
    EXPECT_TRUE(defaults->stringArrayForKey(u"strings"_ns) && !defaults->dataForKey(u"strings"_ns));
    EXPECT_TRUE(defaults->dictionaryForKey(u"dictionary"_ns) && !defaults->arrayForKey(u"dictionary"_ns));
    EXPECT_TRUE(defaults->dataForKey(u"data"_ns)->isEqual(sampleData(3)));
    EXPECT_FALSE(defaults->dictionaryForKey(u"data"_ns));
}

TEST_F(UserDefaults, KeepACopyOfWhatIsSet) {
    NSMutableArray* array = NSMutableArray::of({NSMutableArray::of({u"a"_ns})});
    defaults->setObject_forKey(array, u"key"_ns);
    static_cast<NSMutableArray*>(array->objectAtIndex(0))->addObject(u"b"_ns);
    EXPECT_TRUE(NSArray::of({NSArray::of({u"a"_ns})})->isEqual(defaults->arrayForKey(u"key"_ns)));
    defaults->setObject_forKey(nullptr, u"key"_ns);
    EXPECT_FALSE(defaults->objectForKey(u"key"_ns));
}

TEST_F(UserDefaults, RefuseWhatAFileCannotHold) {
    EXPECT_THROW(defaults->setObject_forKey(NSNull::null(), u"key"_ns), NSException);
    EXPECT_THROW(defaults->setObject_forKey(NSString::of(u"\xD800"), u"key"_ns), NSException);
    EXPECT_THROW(defaults->setObject_forKey(u"x"_ns, NSString::of(u"\x01")), NSException);
    EXPECT_THROW(defaults->setObject_forKey(u"x"_ns, nullptr), NSException);
    EXPECT_THROW(defaults->removeObjectForKey(nullptr), NSException);
    EXPECT_THROW(defaults->registerDefaults(nullptr), NSException);
    EXPECT_THROW(defaults->setVolatileDomain_forName(nullptr, u"x"_ns), NSException);
    for (NSString* name : {u""_ns, u"../x"_ns, u"a/b"_ns, NSString::of(std::u16string(1, u'\0'))})
        EXPECT_THROW((void)NSUserDefaults::initWithDomainName(name), NSException) << name;
}

TEST_F(UserDefaults, ReadArguments) {
    NSArray* arguments =
        NSArray::of({u"program"_ns, u"-Zoom"_ns, u"-5"_ns, u"file"_ns, u"-A"_ns, u"-B"_ns, u"(a, b)"_ns,
                     u"--long"_ns, u"x"_ns, u"-C"_ns, u"{broken"_ns, u"-D"_ns, u""_ns, u"-"_ns, u"-E"_ns});
    EXPECT_TRUE(NSUserDefaults::settingsFromArguments(arguments)->isEqual(
        NSDictionary::of({{u"Zoom"_ns, u"-5"_ns},
                          {u"B"_ns, NSArray::of({u"a"_ns, u"b"_ns})},
                          {u"C"_ns, u"{broken"_ns},
                          {u"D"_ns, u""_ns}})));
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
    static std::string found(NSString* key) {
        NSString* value = open()->stringForKey(key);
        return value ? value->toUTF8() : "nothing";
    }
    std::string keptAside(const char* number = "") { return contentOf(path.string() + ".damaged" + number); }

    BundleFolder folder;
    const fs::path config = folder.path() / "config";
    const fs::path path = config / "pelvor/Test.plist";
    EnvironmentScope configuration{"XDG_CONFIG_HOME", config.c_str()};
    LogLines log;
};

TEST_F(UserDefaultsFiles, KeepSettingsForTheUserAlone) {
    auto defaults = open();
    defaults->setObject_forKey(u"blue"_ns, u"colour"_ns);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"colour"_ns), "blue");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms{0600});
    EXPECT_EQ(fs::status(path.parent_path()).permissions(), fs::perms{0700});
    EXPECT_EQ(std::distance(fs::directory_iterator(path.parent_path()), {}), 1);
    EXPECT_TRUE(save(defaults, u"colour"_ns, nullptr));
    EXPECT_EQ(found(u"colour"_ns), "nothing");
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(UserDefaultsFiles, AreNotMadeWithoutChanges) {
    auto defaults = open();
    defaults->registerDefaults(NSDictionary::of({{u"a"_ns, u"b"_ns}}));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_FALSE(fs::exists(config));
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(UserDefaultsFiles, AreFoundInTheHomeFolderToo) {
    EnvironmentScope none("XDG_CONFIG_HOME", "relative/paths/do/not/count");
    EnvironmentScope home("HOME", folder.path().c_str());
    auto defaults = open();
    defaults->setBool_forKey(true, u"a"_ns);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_TRUE(fs::exists(folder.path() / ".config/pelvor/Test.plist"));
}

TEST_F(UserDefaultsFiles, JoinTheChangesOfSeveralProcesses) {
    auto one = open(), other = open();
    one->setObject_forKey(u"1"_ns, u"a"_ns);
    one->setObject_forKey(u"1"_ns, u"b"_ns);
    other->setObject_forKey(u"2"_ns, u"b"_ns);
    other->setObject_forKey(u"2"_ns, u"c"_ns);
    for (auto* defaults : {one.get(), other.get(), one.get()}) EXPECT_TRUE(defaults->synchronize());
    for (auto* defaults : {one.get(), other.get()})
        EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(
            NSDictionary::of({{u"a"_ns, u"1"_ns}, {u"b"_ns, u"2"_ns}, {u"c"_ns, u"2"_ns}})));
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
        EXPECT_EQ(contentOf(path), damage);
        EXPECT_TRUE(save(defaults, u"a"_ns, u"b"_ns));
        EXPECT_EQ(found(u"a"_ns), "b");
    }
    EXPECT_EQ(keptAside(), damages[0]);
    EXPECT_EQ(keptAside("-2"), damages[1]);
    EXPECT_TRUE(fs::exists(path.string() + ".damaged-3"));
}

TEST_F(UserDefaultsFiles, ThatAreDamagedMeanwhileLoseNothing) {
    auto defaults = open();
    EXPECT_TRUE(save(defaults, u"a"_ns, u"1"_ns));
    folder.write(path, "damage");
    EXPECT_TRUE(save(defaults, u"b"_ns, u"2"_ns));
    EXPECT_EQ(found(u"a"_ns) + found(u"b"_ns), "12");
    EXPECT_EQ(keptAside(), "damage");
}

TEST_F(UserDefaultsFiles, ThatAreTakenAwayAreMadeAnew) {
    auto defaults = open();
    EXPECT_TRUE(save(defaults, u"a"_ns, u"1"_ns));
    fs::remove(path);
    EXPECT_TRUE(save(defaults, u"b"_ns, u"2"_ns));
    EXPECT_EQ(found(u"a"_ns), "nothing");
    EXPECT_EQ(found(u"b"_ns), "2");
}

TEST_F(UserDefaultsFiles, ThatCannotBeWrittenLeaveTheChangesForLater) {
    folder.write(config, "no folder");
    auto defaults = open();
    EXPECT_FALSE(save(defaults, u"a"_ns, u"1"_ns));
    EXPECT_THAT(log.lines, Contains(HasSubstr("cannot be written")));
    fs::remove(config);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"a"_ns), "1");
}

TEST_F(UserDefaultsFiles, ThatAreNoFilesAreLeftAlone) {
    fs::create_directories(path);
    EXPECT_FALSE(save(open().get(), u"a"_ns, u"1"_ns));
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_THAT(log.lines, Contains(HasSubstr("cannot be read")));
}

TEST_F(UserDefaultsFiles, MayBeLinksToOtherFiles) {
    fs::create_directories(path.parent_path());
    fs::create_symlink(folder.write("real", "{ a = 1; }"), path);
    EXPECT_TRUE(save(open().get(), u"b"_ns, u"2"_ns));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_EQ(found(u"a"_ns) + found(u"b"_ns), "12");
}

}  // namespace
}  // namespace pelvor::testing
