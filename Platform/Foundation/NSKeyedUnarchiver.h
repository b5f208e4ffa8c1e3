// SPDX-License-Identifier: Apache-2.0
// NSKeyedUnarchiver: objects from keyed archives, of allowed classes only.
#pragma once

#include <string>
#include <vector>

#include "Foundation/NSCoder.h"

namespace pelvor {

class NSArray;
class NSData;
class NSDictionary;
class NSSet;

/// Reads what NSKeyedArchiver wrote. Archives may come from anywhere: only objects of property lists, sets
/// and plain values, and classes that the caller allows with their subclasses are made. What is wrong with
/// an archive is told by `error`; from then on everything reads as none or 0. Nothing raises on account of
/// it, an exception of an object's `initWithCoder:` included. Objects, once made, are kept until the
/// unarchiver goes. The bounds of property lists hold.
class PELVOR_EXPORT NSKeyedUnarchiver : public NSCoder {
    PELVOR_CLASS(NSKeyedUnarchiver, NSCoder);
    PELVOR_CREATORS(initForReadingWithData_allowedClasses);

  public:
    /// The object under the key "root", borrowed. None, with a reason in `error` unless that is none, for a
    /// bad archive. `allowedClasses` are class records; may be none.
    static id unarchivedObjectWithData_allowedClasses_error(NSData* data, NSSet* allowedClasses,
                                                            NSString** error);
    /// Never none: of a bad archive `error` tells.
    static Retained<NSKeyedUnarchiver> initForReadingWithData_allowedClasses(NSData* data,
                                                                             NSSet* allowedClasses,
                                                                             Class* cls = classObject());

    /// The first thing that was wrong, borrowed; none so far.
    NSString* error();

    bool allowsKeyedCoding() override { return true; }
    bool containsValueForKey(NSString* key) override;
    id decodeObjectForKey(NSString* key) override;
    bool decodeBoolForKey(NSString* key) override;
    std::int64_t decodeInt64ForKey(NSString* key) override;
    double decodeDoubleForKey(NSString* key) override;
    const void* decodeBytesForKey_returnedLength(NSString* key, NSUInteger* length) override;

  protected:
    NSKeyedUnarchiver();
    ~NSKeyedUnarchiver();

  private:
    enum class State : std::uint8_t { waiting, running, made };
    struct Slot {
        Retained<Object> object;
        State state = State::waiting;
        std::uint64_t size = 0;  // with all that it refers to, as often as it does
    };

    void read(NSData* data);
    std::nullptr_t fail(std::string reason);
    id numberForKey(NSString* key);
    id objectAt(id index);
    void makeObject(NSUInteger index);
    Retained<Object> objectFor(id entry);
    Retained<Object> collectionFor(NSString* cls, NSDictionary* entry);
    Retained<Object> mutableLeafFor(NSString* cls, id value);
    Retained<Object> valueFor(NSDictionary* entry);
    Retained<Object> codedObjectFor(NSString* cls, NSDictionary* entry);
    bool isAllowed(Class* cls);
    bool readObjects(id references, std::vector<Object*>& objects);

    Retained<NSSet> _allowed;
    Retained<NSDictionary> _fields;  // of the object that is being decoded
    Retained<NSArray> _entries;
    std::vector<Slot> _slots;
    std::uint64_t _size = 0;
    std::uint32_t _depth = 0;
    std::string _error;
};

}  // namespace pelvor
