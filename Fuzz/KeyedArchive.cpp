// SPDX-License-Identifier: Apache-2.0
// Keyed archives: any bytes make objects of the allowed classes or an error; objects come back equal.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSSet.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyListLimits.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

class FuzzParcel : public NSObject {
    PELVOR_CLASS(FuzzParcel, NSObject);

  public:
    static Retained<FuzzParcel> initWithCoder(NSCoder* coder, Class* cls = classObject()) {
        auto parcel = make<FuzzParcel>(cls);
        parcel->fragile = coder->decodeBoolForKey(u"fragile"_ns);
        parcel->count = coder->decodeInt64ForKey(u"count"_ns);
        parcel->inside.set(coder->decodeObjectForKey(u"inside"_ns));
        NSUInteger length = 0;
        auto* bytes = static_cast<const char*>(coder->decodeBytesForKey_returnedLength(u"mark"_ns, &length));
        parcel->mark.assign(bytes ? bytes : "", length);
        if (parcel->mark == "throw") throw NSException(NSGenericException, "thrown");
        return parcel;
    }
    void encodeWithCoder(NSCoder* coder) {
        coder->encodeBool_forKey(fragile, u"fragile"_ns);
        coder->encodeInt64_forKey(count, u"count"_ns);
        coder->encodeObject_forKey(inside, u"inside"_ns);
        coder->encodeBytes_length_forKey(mark.data(), static_cast<NSUInteger>(mark.size()), u"mark"_ns);
    }
    bool isEqual(id other) override {
        auto* parcel = cast<FuzzParcel>(other);
        if (!parcel || fragile != parcel->fragile || count != parcel->count || mark != parcel->mark)
            return false;
        return inside == parcel->inside || (inside && inside->isEqual(parcel->inside));
    }
    std::uintptr_t hash() override { return static_cast<std::uintptr_t>(count); }

    bool fragile = false;
    std::int64_t count = 0;
    Retained<Object> inside;
    std::string mark;
};

// Never allowed.
class FuzzStranger : public NSObject {
    PELVOR_CLASS(FuzzStranger, NSObject);

  public:
    static Retained<FuzzStranger> initWithCoder(NSCoder*, Class* = classObject()) {
        require(false, "an object of a class that is not allowed was made");
        return nullptr;
    }
};

constexpr Library* kNeeded[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&FuzzParcel::classRecord, &FuzzStranger::classRecord};
constinit Library parcels{"Parcels", kNeeded, kClasses, {}};
PELVOR_DEFINE_CLASS(FuzzParcel, parcels) {
    methods.classLevel<"initWithCoder:", &FuzzParcel::initWithCoder>();
    methods.instance<"encodeWithCoder:", &FuzzParcel::encodeWithCoder>();
}
PELVOR_DEFINE_CLASS(FuzzStranger, parcels) {
    methods.classLevel<"initWithCoder:", &FuzzStranger::initWithCoder>();
}

NSData* archived(id object, NSPropertyListFormat format) {
    auto archiver = NSKeyedArchiver::init();
    archiver->setOutputFormat(format);
    archiver->encodeObject_forKey(object, u"root"_ns);
    return archiver->encodedData();
}

id restored(NSData* data, NSString** error) {
    return NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(
        data, NSSet::of({FuzzParcel::classObject()}), error);
}

constexpr std::size_t kMostObjects = 500;

// Objects from the front of the bytes, which may hold others again.
struct Maker {
    Maker(const std::uint8_t* bytes, std::size_t count) : data(bytes), size(count) {}

    const std::uint8_t* data;
    std::size_t size;
    NSMutableArray* made = NSMutableArray::array();
    std::vector<std::size_t> sizes;
    std::size_t spent = 0;  // objects, each as often as it is referred to

    std::uint8_t next() { return size ? (--size, *data++) : std::uint8_t{0}; }
    std::string text() {
        std::size_t length = std::min<std::size_t>(next() % 16, size);
        std::string result(reinterpret_cast<const char*>(data), length);
        data += length;
        size -= length;
        return result;
    }
    id object(unsigned depth) {
        std::size_t before = spent++;
        id result = spent > kMostObjects ? static_cast<id>(u"last"_ns) : another(depth);
        made->addObject(result);
        sizes.push_back(spent - before);
        return result;
    }
    id another(unsigned depth) {
        unsigned kind = next();
        if (depth == 0) kind %= 6;
        switch (kind % 10) {
            case 0:
                return NSNumber::numberWithLongLong(static_cast<long long>(next() * 0x0102030405060708u));
            case 1:
                return NSNumber::numberWithDouble(next() / 7.0);
            case 2:
                return NSString::ofUTF8(text());
            case 3: {
                std::string bytes = text();
                return NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
            }
            case 4:
                return NSValue::valueWithRange({next() * 0x01010101u, next()});
            case 5: {
                if (sizes.empty()) return u"first"_ns;
                std::size_t index = next() % sizes.size();
                spent += sizes[index];
                return made->objectAtIndex(static_cast<NSUInteger>(index));
            }
            case 6:
                return parcel(depth);
            case 7: {
                NSMutableDictionary* dictionary = NSMutableDictionary::dictionary();
                for (unsigned count = next() % 5; count > 0; --count)
                    dictionary->setObject_forKey(object(depth - 1), NSString::ofUTF8(text()));
                return dictionary;
            }
            default: {
                NSMutableArray* array = NSMutableArray::array();
                for (unsigned count = next() % 5; count > 0; --count) array->addObject(object(depth - 1));
                return kind % 10 == 8 ? static_cast<id>(array) : NSSet::initWithArray(array).autorelease();
            }
        }
    }
    id parcel(unsigned depth) {
        auto parcel = make<FuzzParcel>();
        parcel->fragile = next() & 1;
        parcel->count = next() - 100;
        parcel->inside.set(next() & 1 ? object(depth - 1) : nullptr);
        parcel->mark = text();
        if (parcel->mark == "throw") parcel->mark.clear();
        return std::move(parcel).autorelease();
    }
};

void checkReturn(id object, NSPropertyListFormat format) {
    NSString* error = nullptr;
    id again = restored(archived(object, format), &error);
    require(!error, "an archive that was written is refused");
    require(again && again->isEqual(object), "an object comes back as another");
}

bool isExpected(id object) {
    return cast<NSString>(object) || cast<NSValue>(object) || cast<NSData>(object) || cast<NSDate>(object) ||
           cast<NSArray>(object) || cast<NSSet>(object) || cast<NSDictionary>(object) ||
           cast<FuzzParcel>(object);
}

void run(const std::uint8_t* data, std::size_t size) {
    setPropertyListLimits({64, 2000});
    if (data[0] == '#') {
        id object = Maker(data + 1, size - 1).object(6);
        checkReturn(object, NSPropertyListBinaryFormat_v1_0);
        return;
    }
    NSString* error = nullptr;
    id object = restored(NSData::dataWithBytes_length(data, static_cast<NSUInteger>(size)), &error);
    require(!object || (!error && isExpected(object)), "an unexpected object");
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool isRegistered = (pelvor::registerLibrary(pelvor::parcels), true);
    pelvor::AutoreleasePool pool;
    if (isRegistered && size) pelvor::run(data, std::min<std::size_t>(size, 20000));
    return 0;
}
