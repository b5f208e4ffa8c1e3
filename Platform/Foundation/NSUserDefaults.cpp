// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSUserDefaults.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Foundation/Files/DefaultsFile.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNull.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSProcessInfo.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSString-PropertyList.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"

namespace pelvor {

constinit NSString* const NSArgumentDomain = u"NSArgumentDomain"_ns;
constinit NSString* const NSRegistrationDomain = u"NSRegistrationDomain"_ns;
constinit NSString* const NSUserDefaultsDidChangeNotification = u"NSUserDefaultsDidChangeNotification"_ns;

PELVOR_DEFINE_CLASS(NSUserDefaults, foundationLibrary) {
    methods.classLevel<"standardUserDefaults", &NSUserDefaults::standardUserDefaults>();
    methods.classLevel<"setStandardUserDefaults:", &NSUserDefaults::setStandardUserDefaults>();
    methods.creator<"initWithDomainName:", &NSUserDefaults::initWithDomainName>();
    methods.creator<"initVolatile", &NSUserDefaults::initVolatile>();
    methods.classLevel<"settingsFromArguments:", &NSUserDefaults::settingsFromArguments>();
    methods.instance<"objectForKey:", &NSUserDefaults::objectForKey>();
    methods.instance<"stringForKey:", &NSUserDefaults::stringForKey>();
    methods.instance<"arrayForKey:", &NSUserDefaults::arrayForKey>();
    methods.instance<"stringArrayForKey:", &NSUserDefaults::stringArrayForKey>();
    methods.instance<"dictionaryForKey:", &NSUserDefaults::dictionaryForKey>();
    methods.instance<"dataForKey:", &NSUserDefaults::dataForKey>();
    methods.instance<"integerForKey:", &NSUserDefaults::integerForKey>();
    methods.instance<"floatForKey:", &NSUserDefaults::floatForKey>();
    methods.instance<"doubleForKey:", &NSUserDefaults::doubleForKey>();
    methods.instance<"boolForKey:", &NSUserDefaults::boolForKey>();
    methods.instance<"dictionaryRepresentation", &NSUserDefaults::dictionaryRepresentation>();
    methods.instance<"setObject:forKey:", &NSUserDefaults::setObject_forKey>();
    methods.instance<"setInteger:forKey:", &NSUserDefaults::setInteger_forKey>();
    methods.instance<"setFloat:forKey:", &NSUserDefaults::setFloat_forKey>();
    methods.instance<"setDouble:forKey:", &NSUserDefaults::setDouble_forKey>();
    methods.instance<"setBool:forKey:", &NSUserDefaults::setBool_forKey>();
    methods.instance<"removeObjectForKey:", &NSUserDefaults::removeObjectForKey>();
    methods.instance<"synchronize", &NSUserDefaults::synchronize>();
    methods.instance<"registerDefaults:", &NSUserDefaults::registerDefaults>();
    methods.instance<"setVolatileDomain:forName:", &NSUserDefaults::setVolatileDomain_forName>();
    methods.instance<"volatileDomainForName:", &NSUserDefaults::volatileDomainForName>();
    methods.instance<"removeVolatileDomainForName:", &NSUserDefaults::removeVolatileDomainForName>();
}

namespace {

// The program's settings, which the first use makes.
struct StandardDefaults {
    std::mutex mutex;
    Retained<NSUserDefaults> defaults;
};

StandardDefaults& standardDefaults() {
    static auto* const standard = new StandardDefaults;  // settings may be read until the very end
    return *standard;
}

void requireKey(NSString* key, NSString* operation) {
    if (!key) raiseException(NSInvalidArgumentException, u"%@ the key is null"_ns, operation);
}

// Returns an immutable copy. The copy must fit into the file, since a single setting that does not fit would
// prevent all others from being written.
Retained<Object> frozenCopy(id object, NSString* key) {
    id entry = NSDictionary::dictionaryWithObject_forKey(object, key);
    NSPropertyListError* error = nullptr;
    NSData* xml = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        entry, NSPropertyListXMLFormat_v1_0, 0, &error);
    if (!xml)
        raiseException(NSInvalidArgumentException, u"setObject:forKey: the object cannot be a setting: %@"_ns,
                       error);
    NSData* binary = NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        object, NSPropertyListBinaryFormat_v1_0, 0, nullptr);
    return Retained<Object>::retaining(NSPropertyListSerialization::propertyListWithData_options_format_error(
        binary, NSPropertyListImmutable, nullptr, nullptr));
}

}  // namespace

// The domains, guarded by one lock.
class DefaultsStore {
  public:
    DefaultsStore() : _settings(NSMutableDictionary::init()), _changes(NSMutableDictionary::init()) {}

    void useFile(const std::string& domain) { _file.emplace(domain); }

    Retained<Object> find(NSString* key) {
        Guard lock(_mutex);
        for (const VolatileDomain& domain : _volatileDomains)
            if (domain.rank < kRankOfFile)
                if (id object = domain.settings->objectForKey(key))
                    return Retained<Object>::retaining(object);
        load();
        if (id object = _settings->objectForKey(key)) return Retained<Object>::retaining(object);
        const VolatileDomain* registered = domainNamed(NSRegistrationDomain);
        return Retained<Object>::retaining(registered ? registered->settings->objectForKey(key) : nullptr);
    }

    Retained<NSMutableDictionary> all() {
        Guard lock(_mutex);
        load();
        const VolatileDomain* registered = domainNamed(NSRegistrationDomain);
        auto result =
            NSMutableDictionary::initWithDictionary(registered ? registered->settings.get() : nullptr);
        result->addEntriesFromDictionary(_settings);
        for (auto domain = _volatileDomains.rbegin(); domain != _volatileDomains.rend(); ++domain)
            if (domain->rank < kRankOfFile) result->addEntriesFromDictionary(domain->settings);
        return result;
    }

    // Returns the file's domain as it is now.
    Retained<NSDictionary> settings() {
        Guard lock(_mutex);
        load();
        return _settings->copy();
    }

    void set(Retained<Object> object, NSString* key) {
        Guard lock(_mutex);
        load();
        if (_file) _changes->setObject_forKey(object ? object.get() : NSNull::null(), key);
        if (object)
            _settings->setObject_forKey(object, key);
        else
            _settings->removeObjectForKey(key);
    }

    bool synchronize() {
        Guard lock(_mutex);
        if (!_file) return true;
        if (_changes->count() == 0) return refresh();
        if (!_file->makeFolder()) return _file->save(_settings);
        DefaultsFile::Lock others(*_file);
        if (!refresh()) return false;
        if (!_file->save(_settings)) return false;
        _changes->removeAllObjects();
        return true;
    }

    void setVolatile(NSDictionary* settings, NSString* name) {
        auto copy = settings->copy();
        Guard lock(_mutex);
        if (VolatileDomain* domain = domainNamed(name)) return std::swap(domain->settings, copy);
        VolatileDomain domain{rankOf(name), name->copy(), std::move(copy)};
        auto place = _volatileDomains.begin();
        while (place != _volatileDomains.end() && place->rank <= domain.rank) ++place;
        _volatileDomains.insert(place, std::move(domain));
    }

    Retained<NSDictionary> volatileNamed(NSString* name) {
        Guard lock(_mutex);
        const VolatileDomain* domain = domainNamed(name);
        return domain ? domain->settings : nullptr;
    }

    void removeVolatile(NSString* name) {
        Retained<NSDictionary> gone;  // let go last: objects that end with it may ask for settings
        Guard lock(_mutex);
        auto named = [&](const VolatileDomain& domain) { return domain.name->isEqual(name); };
        auto domain = std::find_if(_volatileDomains.begin(), _volatileDomains.end(), named);
        if (domain == _volatileDomains.end()) return;
        gone = std::move(domain->settings);
        _volatileDomains.erase(domain);
    }

  private:
    using Guard = std::lock_guard<std::recursive_mutex>;

    // Domains are looked up in the order of their ranks; the file's comes before the registered settings.
    enum Rank : std::uint8_t { kRankOfArguments, kRankOfOthers, kRankOfFile, kRankOfRegistration };
    struct VolatileDomain {
        Rank rank;
        Retained<NSString> name;
        Retained<NSDictionary> settings;
    };

    static Rank rankOf(NSString* name) {
        if (name->isEqualToString(NSArgumentDomain)) return kRankOfArguments;
        return name->isEqualToString(NSRegistrationDomain) ? kRankOfRegistration : kRankOfOthers;
    }

    VolatileDomain* domainNamed(NSString* name) {
        for (VolatileDomain& domain : _volatileDomains)
            if (domain.name->isEqualToString(name)) return &domain;
        return nullptr;
    }

    void load() {
        if (_isLoaded || !_file) return;
        _isLoaded = true;
        _file->load();
        merge();
    }

    // Takes over what other processes have written. A file that was damaged meanwhile changes nothing.
    bool refresh() {
        if (!_isLoaded || _file->hasChanged()) {
            _isLoaded = true;
            auto state = _file->load();
            if (state == DefaultsFile::State::read || state == DefaultsFile::State::missing) merge();
        }
        return _file->state() != DefaultsFile::State::unreadable;
    }

    // The file's settings with the changes that have not been written.
    void merge() {
        _settings = NSMutableDictionary::initWithDictionary(_file->content());
        for (auto [key, value] : _changes.get())
            if (value == NSNull::null())
                _settings->removeObjectForKey(key);
            else
                _settings->setObject_forKey(value, key);
    }

    std::recursive_mutex _mutex;  // recursive, since a sink of the log may ask for settings
    std::optional<DefaultsFile> _file;
    bool _isLoaded = false;
    Retained<NSMutableDictionary> _settings;
    Retained<NSMutableDictionary> _changes;  // not yet written; a null stands for a removal
    std::vector<VolatileDomain> _volatileDomains;
};

// MARK: Creation

NSUserDefaults::NSUserDefaults() : _store(std::make_unique<DefaultsStore>()) {}

NSUserDefaults::~NSUserDefaults() = default;

NSUserDefaults* NSUserDefaults::standardUserDefaults() {
    StandardDefaults& standard = standardDefaults();
    std::lock_guard lock(standard.mutex);
    if (!standard.defaults) {
        NSProcessInfo* process = NSProcessInfo::processInfo();
        standard.defaults = initWithDomainName(process->processName());
        NSDictionary* settings = settingsFromArguments(process->arguments());
        standard.defaults->setVolatileDomain_forName(settings, NSArgumentDomain);
    }
    return Retained<NSUserDefaults>(standard.defaults).autorelease();
}

void NSUserDefaults::setStandardUserDefaults(NSUserDefaults* defaults) {
    StandardDefaults& standard = standardDefaults();
    auto next = Retained<NSUserDefaults>::retaining(defaults);
    std::lock_guard lock(standard.mutex);
    std::swap(standard.defaults, next);
}

Retained<NSUserDefaults> NSUserDefaults::initWithDomainName(NSString* name, Class* cls) {
    std::string domain = name ? name->toUTF8() : "";
    constexpr std::string_view kForbidden("/\0", 2);
    if (domain.empty() || domain.size() > 200 || domain.find_first_of(kForbidden) != domain.npos)
        raiseException(NSInvalidArgumentException,
                       u"initWithDomainName: the name '%@' has to have 1 to 200 bytes without '/'"_ns, name);
    auto defaults = initVolatile(cls);
    defaults->_store->useFile(domain);
    return defaults;
}

Retained<NSUserDefaults> NSUserDefaults::initVolatile(Class* cls) { return make<NSUserDefaults>(cls); }

// MARK: Reading

id NSUserDefaults::objectForKey(NSString* key) { return key ? _store->find(key).autorelease() : nullptr; }

NSString* NSUserDefaults::stringForKey(NSString* key) {
    id object = objectForKey(key);
    if (auto* number = cast<NSNumber>(object)) return number->stringValue();
    return cast<NSString>(object);
}

NSArray* NSUserDefaults::arrayForKey(NSString* key) { return cast<NSArray>(objectForKey(key)); }

NSArray* NSUserDefaults::stringArrayForKey(NSString* key) {
    NSArray* array = arrayForKey(key);
    for (id object : array)
        if (!cast<NSString>(object)) return nullptr;
    return array;
}

NSDictionary* NSUserDefaults::dictionaryForKey(NSString* key) {
    return cast<NSDictionary>(objectForKey(key));
}

NSData* NSUserDefaults::dataForKey(NSString* key) { return cast<NSData>(objectForKey(key)); }

NSInteger NSUserDefaults::integerForKey(NSString* key) {
    id object = objectForKey(key);
    if (auto* number = cast<NSNumber>(object)) return number->intValue();
    auto* string = cast<NSString>(object);
    return string ? string->integerValue() : 0;
}

float NSUserDefaults::floatForKey(NSString* key) {
    id object = objectForKey(key);
    if (auto* number = cast<NSNumber>(object)) return number->floatValue();
    auto* string = cast<NSString>(object);
    return string ? string->floatValue() : 0;
}

double NSUserDefaults::doubleForKey(NSString* key) {
    id object = objectForKey(key);
    if (auto* number = cast<NSNumber>(object)) return number->doubleValue();
    auto* string = cast<NSString>(object);
    return string ? string->doubleValue() : 0;
}

bool NSUserDefaults::boolForKey(NSString* key) {
    id object = objectForKey(key);
    if (auto* number = cast<NSNumber>(object)) return number->boolValue();
    auto* string = cast<NSString>(object);
    return string && string->boolValue();
}

NSDictionary* NSUserDefaults::dictionaryRepresentation() { return _store->all().autorelease(); }

// MARK: Changing

void NSUserDefaults::setObject_forKey(id object, NSString* key) {
    requireKey(key, u"setObject:forKey:"_ns);
    change(object ? frozenCopy(object, key) : nullptr, key);
}

void NSUserDefaults::setInteger_forKey(NSInteger value, NSString* key) {
    requireKey(key, u"setInteger:forKey:"_ns);
    setObject_forKey(NSNumber::numberWithInt(value), key);
}

void NSUserDefaults::setFloat_forKey(float value, NSString* key) {
    requireKey(key, u"setFloat:forKey:"_ns);
    setObject_forKey(NSNumber::numberWithFloat(value), key);
}

void NSUserDefaults::setDouble_forKey(double value, NSString* key) {
    requireKey(key, u"setDouble:forKey:"_ns);
    setObject_forKey(NSNumber::numberWithDouble(value), key);
}

void NSUserDefaults::setBool_forKey(bool value, NSString* key) {
    requireKey(key, u"setBool:forKey:"_ns);
    setObject_forKey(NSNumber::numberWithBool(value), key);
}

void NSUserDefaults::removeObjectForKey(NSString* key) {
    requireKey(key, u"removeObjectForKey:"_ns);
    change(nullptr, key);
}

void NSUserDefaults::change(Retained<Object> object, NSString* key) {
    _store->set(std::move(object), key);
    NSNotificationCenter::defaultCenter()->postNotificationName_object(NSUserDefaultsDidChangeNotification,
                                                                       this);
}

bool NSUserDefaults::synchronize() {
    AutoreleasePool pool;
    auto before = _store->settings();
    bool isDone = _store->synchronize();
    if (!before->isEqual(_store->settings().get()))
        NSNotificationCenter::defaultCenter()->postNotificationName_object(
            NSUserDefaultsDidChangeNotification, this);
    return isDone;
}

// MARK: Other domains

void NSUserDefaults::registerDefaults(NSDictionary* settings) {
    if (!settings) throw NSException(NSInvalidArgumentException, "registerDefaults: the settings are null");
    auto merged = NSMutableDictionary::initWithDictionary(volatileDomainForName(NSRegistrationDomain));
    merged->addEntriesFromDictionary(settings);
    setVolatileDomain_forName(merged, NSRegistrationDomain);
}

void NSUserDefaults::setVolatileDomain_forName(NSDictionary* settings, NSString* name) {
    if (!settings || !name)
        throw NSException(NSInvalidArgumentException, std::string("setVolatileDomain:forName: the ") +
                                                          (settings ? "name is null" : "settings are null"));
    _store->setVolatile(settings, name);
}

NSDictionary* NSUserDefaults::volatileDomainForName(NSString* name) {
    return _store->volatileNamed(name).autorelease();
}

void NSUserDefaults::removeVolatileDomainForName(NSString* name) { _store->removeVolatile(name); }

// An argument that looks like a key is never a value, unless it is a negative number.
NSDictionary* NSUserDefaults::settingsFromArguments(NSArray* arguments) {
    auto settings = NSMutableDictionary::init();
    NSString* key = nullptr;
    for (id argument : arguments) {
        auto* text = cast<NSString>(argument);
        StringUnits units(text);
        bool isKey =
            units.size() > 1 && units[0] == '-' && units[1] != '-' && !(units[1] >= '0' && units[1] <= '9');
        if (key && !isKey) {
            bool looksLikeList = units.size() > 0 && (units[0] == '(' || units[0] == '{' || units[0] == '<');
            id list = looksLikeList ? propertyList(text) : nullptr;
            settings->setObject_forKey(list ? list : text, key);
        }
        key = isKey ? text->substringFromIndex(1) : nullptr;
    }
    return std::move(settings).autorelease();
}

}  // namespace pelvor
