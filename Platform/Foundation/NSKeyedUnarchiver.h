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

/// Reads archives that NSKeyedArchiver wrote:
///
///     auto reader = NSKeyedUnarchiver::initForReadingWithData_allowedClasses(
///         data, NSSet::of({PBLamp::classObject()}));
///     auto* lamp = cast<PBLamp>(reader->decodeObjectForKey(u"root"_ns));
///     if (!lamp) NSLog(u"%@"_ns, reader->error());
///
/// An archive may come from anywhere, so the unarchiver makes only objects of property lists, sets, plain
/// values, and objects of the classes that the caller allows and of their subclasses. Whatever an archive
/// holds, no operation raises: after a fault in the archive, and after an exception of an object's
/// `initWithCoder:`, `error` tells what is wrong, and every other operation returns null, false or 0. A value
/// of another kind than the operation asks for is a fault, too. Decoded objects are borrowed; the unarchiver
/// retains them until it ends. The limits of property lists hold (PropertyListLimits.h). One thread at a
/// time.
class PELVOR_EXPORT NSKeyedUnarchiver : public NSCoder {
    PELVOR_CLASS(NSKeyedUnarchiver, NSCoder);
    PELVOR_CREATORS(initForReadingWithData_allowedClasses);

  public:
    /// Returns the object under the key "root", borrowed. For a bad archive and for null data, returns null.
    /// Unless `error` is null, writes the reason to `error`, or null if the archive is good. The members of
    /// `allowedClasses` are class records; a null set allows what an empty set allows.
    static id unarchivedObjectWithData_allowedClasses_error(NSData* data, NSSet* allowedClasses,
                                                            NSString** error);
    /// Makes an unarchiver; never returns null. For a bad archive and for null data, the unarchiver's `error`
    /// tells the reason.
    static Retained<NSKeyedUnarchiver> initForReadingWithData_allowedClasses(NSData* data,
                                                                             NSSet* allowedClasses,
                                                                             Class* cls = classObject());

    /// The first fault that was found in the archive, borrowed; null if none of the calls so far found one.
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
