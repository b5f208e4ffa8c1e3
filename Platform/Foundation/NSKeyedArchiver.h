// SPDX-License-Identifier: Apache-2.0
// NSKeyedArchiver: objects with their keys as a property list.
#pragma once

#include <unordered_map>
#include <vector>

#include "Foundation/NSCoder.h"
#include "Foundation/NSPropertyListSerialization.h"

namespace pelvor {

class NSData;
class NSMutableArray;
class NSMutableDictionary;

/// Writes objects, with the objects that they refer to, as a property list. An object is written once,
/// however many others refer to it.
///
///     NSData* data = NSKeyedArchiver::archivedDataWithRootObject(lamp);
///     NSString* error = nullptr;
///     NSSet* allowed = NSSet::of({PBLamp::classObject()});
///     id copy = NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(data, allowed, &error);
///
/// The property list is
///
///     { archiver = NSKeyedArchiver; version = 1; top = { key = reference }; objects = ( "", … ); }
///
/// An entry of `objects` is a string, number, date or data, or a dictionary of the object's `class` and its
/// `fields` or contents; a counted set lists a member as often as the set counts it. A reference is { object
/// = index }; index 0 stands for null. Values (NSValue) can be archived if their type has no pointers.
/// Encoding raises NSInvalidArgumentException for an object that refers to itself, directly or through other
/// objects, for objects that are nested deeper than property lists may be (PropertyListLimits.h), and for an
/// object of a class that cannot be archived (NSCoder.h). After such an exception, the archiver must not be
/// used again. One thread at a time.
class PELVOR_EXPORT NSKeyedArchiver : public NSCoder {
    PELVOR_CLASS(NSKeyedArchiver, NSCoder);
    PELVOR_CREATORS(init);

  public:
    /// Returns an archive of one object under the key "root", borrowed. The object may be null.
    static NSData* archivedDataWithRootObject(id object);
    static Retained<NSKeyedArchiver> init(Class* cls = classObject());

    /// Sets the format that `encodedData` writes. Without this call, `encodedData` writes the binary format.
    void setOutputFormat(NSPropertyListFormat format) { _format = format; }
    /// Returns the archive of what was encoded so far, borrowed. Raises NSInvalidArgumentException if the
    /// format cannot hold one of the objects.
    NSData* encodedData();

    bool allowsKeyedCoding() override { return true; }
    void encodeObject_forKey(id object, NSString* key) override;
    void encodeBool_forKey(bool value, NSString* key) override;
    void encodeInt64_forKey(std::int64_t value, NSString* key) override;
    void encodeDouble_forKey(double value, NSString* key) override;
    void encodeBytes_length_forKey(const void* bytes, NSUInteger length, NSString* key) override;

  protected:
    NSKeyedArchiver();
    ~NSKeyedArchiver();

  private:
    NSUInteger indexOf(id object);
    Retained<Object> entryFor(id object);
    Retained<Object> entryByCoding(id object);
    Retained<Object> listOf(const char* cls, id collection);
    id referencesTo(id collection);

    Retained<NSMutableDictionary> _top;
    Retained<NSMutableDictionary> _fields;  // of the object that is being encoded
    Retained<NSMutableArray> _entries;
    Retained<NSMutableArray> _encoded;  // keeps the addresses in `_indexes` taken
    std::unordered_map<Unretained<Object>, NSUInteger> _indexes;
    std::vector<bool> _isComplete;
    NSUInteger _depth = 0;
    NSPropertyListFormat _format = NSPropertyListBinaryFormat_v1_0;
};

}  // namespace pelvor
