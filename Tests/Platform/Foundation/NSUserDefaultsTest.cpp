// SPDX-License-Identifier: Apache-2.0
// Tests of user defaults: domains, conversions, and the file with everything that can happen to it.
#include "Foundation/NSUserDefaults.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNull.h"
#include "Platform/Foundation/EnvironmentScope.h"
#include "Platform/Foundation/PropertyListSamples.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {

extern Library defaultsTestLibrary;

/// Counts how often the settings that it observes say that they have changed.
class ChangeCounter : public NSObject {
    PELVOR_CLASS(ChangeCounter, NSObject);

  public:
    static Retained<ChangeCounter> observing(NSUserDefaults* defaults) {
        auto counter = make<ChangeCounter>();
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
            counter, "settingsChanged:"_sel, NSUserDefaultsDidChangeNotification, defaults);
        return counter;
    }
    void settingsChanged(NSNotification*) { ++_count; }
    int takeCount() { return std::exchange(_count, 0); }

  protected:
    ChangeCounter() = default;
    ~ChangeCounter() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

  private:
    int _count = 0;
};

PELVOR_DEFINE_CLASS(ChangeCounter, defaultsTestLibrary) {
    methods.instance<"settingsChanged:", &ChangeCounter::settingsChanged>();
}

namespace {
constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&ChangeCounter::classRecord};
}  // namespace

constinit Library defaultsTestLibrary{"NSUserDefaultsTest", kDependencies, kClasses, {}};

namespace {

using propertylists::sampleData;

class UserDefaults : public testing::Test {
  protected:
    AutoreleasePool pool;
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
    EXPECT_TRUE(defaults->arrayForKey(u"array"_ns));
    EXPECT_FALSE(defaults->stringArrayForKey(u"array"_ns));
    EXPECT_TRUE(defaults->stringArrayForKey(u"strings"_ns));
    EXPECT_TRUE(defaults->dictionaryForKey(u"dictionary"_ns));
    EXPECT_TRUE(defaults->dataForKey(u"data"_ns)->isEqual(sampleData(3)));
    EXPECT_FALSE(defaults->dictionaryForKey(u"array"_ns));
    EXPECT_FALSE(defaults->arrayForKey(u"dictionary"_ns));
    EXPECT_FALSE(defaults->dataForKey(u"strings"_ns));
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
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([this, i] {
            AutoreleasePool inner;
            NSString* key = NSString::stringWithFormat(u"key%d"_ns, i % 2);
            for (int step = 0; step < 200; ++step) {
                defaults->setInteger_forKey(step, key);
                defaults->integerForKey(key);
                defaults->dictionaryRepresentation();
                defaults->registerDefaults(NSDictionary::of({{key, key}}));
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(defaults->integerForKey(u"key0"_ns), 199);
}

// MARK: Files

class UserDefaultsFiles : public testing::Test {
  protected:
    UserDefaultsFiles()
        : folder(makeFolder()),
          path(folder / "config/pelvor/Test.plist"),
          configuration("XDG_CONFIG_HOME", (folder / "config").c_str()),
          sink([this](const LogEntry& entry) { (log += entry.text) += '\n'; }) {}
    ~UserDefaultsFiles() override { std::filesystem::remove_all(folder); }

    static std::string makeFolder() {
        char name[] = "/tmp/pelvor-defaults-XXXXXX";
        return mkdtemp(name);
    }
    static Retained<NSUserDefaults> open() { return NSUserDefaults::initWithDomainName(u"Test"_ns); }
    // What a process started now would find.
    static std::string found(NSString* key) {
        NSString* value = open()->stringForKey(key);
        return value ? value->toUTF8() : "nothing";
    }
    void writeFile(std::string_view content) {
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }
    static std::string contentOf(const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static mode_t rightsOf(const std::filesystem::path& file) {
        struct stat status {};
        stat(file.c_str(), &status);
        return status.st_mode & 0777;
    }
    std::size_t fileCount() {
        auto files = std::filesystem::directory_iterator(path.parent_path());
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    AutoreleasePool pool;
    const std::filesystem::path folder;
    const std::filesystem::path path;
    EnvironmentScope configuration;
    std::string log;
    LogSinkScope sink;
};

TEST_F(UserDefaultsFiles, KeepSettingsForTheUserAlone) {
    auto defaults = open();
    defaults->setObject_forKey(u"blue"_ns, u"colour"_ns);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"colour"_ns), "blue");
    EXPECT_EQ(rightsOf(path), 0600u);
    EXPECT_EQ(rightsOf(path.parent_path()), 0700u);
    EXPECT_EQ(fileCount(), 1u);
    defaults->removeObjectForKey(u"colour"_ns);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"colour"_ns), "nothing");
    EXPECT_EQ(log, "");
}

TEST_F(UserDefaultsFiles, AreNotMadeWithoutChanges) {
    auto defaults = open();
    defaults->registerDefaults(NSDictionary::of({{u"a"_ns, u"b"_ns}}));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_FALSE(std::filesystem::exists(folder / "config"));
    EXPECT_EQ(log, "");
}

TEST_F(UserDefaultsFiles, AreFoundInTheHomeFolderToo) {
    EnvironmentScope none("XDG_CONFIG_HOME", "relative/paths/do/not/count");
    EnvironmentScope home("HOME", folder.c_str());
    auto defaults = open();
    defaults->setBool_forKey(true, u"a"_ns);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_TRUE(std::filesystem::exists(folder / ".config/pelvor/Test.plist"));
}

TEST_F(UserDefaultsFiles, JoinTheChangesOfSeveralProcesses) {
    auto one = open(), other = open();
    one->setObject_forKey(u"1"_ns, u"a"_ns);
    one->setObject_forKey(u"1"_ns, u"b"_ns);
    other->setObject_forKey(u"2"_ns, u"b"_ns);
    other->setObject_forKey(u"2"_ns, u"c"_ns);
    EXPECT_TRUE(one->synchronize());
    EXPECT_TRUE(other->synchronize());
    EXPECT_TRUE(one->synchronize());
    for (auto* defaults : {one.get(), other.get()})
        EXPECT_TRUE(defaults->dictionaryRepresentation()->isEqual(
            NSDictionary::of({{u"a"_ns, u"1"_ns}, {u"b"_ns, u"2"_ns}, {u"c"_ns, u"2"_ns}})));
}

TEST_F(UserDefaultsFiles, TellWhenSettingsChange) {
    auto one = open(), other = open();
    auto counter = ChangeCounter::observing(one);
    one->setObject_forKey(u"1"_ns, u"a"_ns);
    EXPECT_EQ(counter->takeCount(), 1);
    EXPECT_TRUE(one->synchronize());
    EXPECT_EQ(counter->takeCount(), 0);
    other->removeObjectForKey(u"a"_ns);
    EXPECT_TRUE(other->synchronize());
    EXPECT_EQ(counter->takeCount(), 0);
    EXPECT_TRUE(one->synchronize());
    EXPECT_EQ(counter->takeCount(), 1);
}

TEST_F(UserDefaultsFiles, ThatAreDamagedAreKeptAside) {
    for (std::string_view damage : {"<plist><dict><key>a</key>", "(no, dictionary)", ""}) {
        SCOPED_TRACE(damage);
        log.clear();
        writeFile(damage);
        auto defaults = open();
        EXPECT_FALSE(defaults->objectForKey(u"a"_ns));
        EXPECT_NE(log.find("Test.plist are damaged"), std::string::npos) << log;
        EXPECT_TRUE(defaults->synchronize());
        EXPECT_EQ(contentOf(path), damage);
        defaults->setObject_forKey(u"b"_ns, u"a"_ns);
        EXPECT_TRUE(defaults->synchronize());
        EXPECT_EQ(found(u"a"_ns), "b");
    }
    EXPECT_EQ(contentOf(path.string() + ".damaged"), "<plist><dict><key>a</key>");
    EXPECT_EQ(contentOf(path.string() + ".damaged-2"), "(no, dictionary)");
    EXPECT_EQ(contentOf(path.string() + ".damaged-3"), "");
}

TEST_F(UserDefaultsFiles, ThatAreDamagedMeanwhileLoseNothing) {
    auto defaults = open();
    defaults->setObject_forKey(u"1"_ns, u"a"_ns);
    EXPECT_TRUE(defaults->synchronize());
    writeFile("damage");
    defaults->setObject_forKey(u"2"_ns, u"b"_ns);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"a"_ns), "1");
    EXPECT_EQ(found(u"b"_ns), "2");
    EXPECT_EQ(contentOf(path.string() + ".damaged"), "damage");
}

TEST_F(UserDefaultsFiles, ThatAreTakenAwayAreMadeAnew) {
    auto defaults = open();
    defaults->setObject_forKey(u"1"_ns, u"a"_ns);
    EXPECT_TRUE(defaults->synchronize());
    std::filesystem::remove(path);
    defaults->setObject_forKey(u"2"_ns, u"b"_ns);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"a"_ns), "nothing");
    EXPECT_EQ(found(u"b"_ns), "2");
}

TEST_F(UserDefaultsFiles, ThatCannotBeWrittenLeaveTheChangesForLater) {
    std::ofstream(folder / "config") << "no folder";
    auto defaults = open();
    defaults->setObject_forKey(u"1"_ns, u"a"_ns);
    EXPECT_FALSE(defaults->synchronize());
    EXPECT_NE(log.find("cannot be written"), std::string::npos) << log;
    std::filesystem::remove(folder / "config");
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(found(u"a"_ns), "1");
}

TEST_F(UserDefaultsFiles, ThatAreNoFilesAreLeftAlone) {
    std::filesystem::create_directories(path);
    auto defaults = open();
    defaults->setObject_forKey(u"1"_ns, u"a"_ns);
    EXPECT_FALSE(defaults->synchronize());
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_NE(log.find("cannot be read"), std::string::npos) << log;
}

TEST_F(UserDefaultsFiles, MayBeLinksToOtherFiles) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(folder / "real") << "{ a = 1; }";
    std::filesystem::create_symlink(folder / "real", path);
    auto defaults = open();
    defaults->setObject_forKey(u"2"_ns, u"b"_ns);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(found(u"a"_ns), "1");
    EXPECT_EQ(found(u"b"_ns), "2");
}

}  // namespace
}  // namespace pelvor
