// SPDX-License-Identifier: Apache-2.0
// NSCoder: how objects write themselves under keys and are read again.
#pragma once

#include <cstdint>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSString;

/// An object writes its fields to a coder, and reads them from a coder, each field under a key. A class that
/// can be archived has two methods:
///
///     void PBLamp::encodeWithCoder(NSCoder* coder) {                                  // "encodeWithCoder:"
///         coder->encodeObject_forKey(_colour, u"colour"_ns);
///         coder->encodeInt_forKey(_level, u"level"_ns);
///     }
///     Retained<PBLamp> PBLamp::initWithCoder(NSCoder* coder, Class* cls) {            // "initWithCoder:"
///         auto lamp = make<PBLamp>(cls);
///         lamp->_colour.set(cast<NSString>(coder->decodeObjectForKey(u"colour"_ns)));
///         lamp->_level = coder->decodeIntForKey(u"level"_ns);
///         return lamp;
///     }
///
/// Each object has keys of its own. The class is abstract: an operation that a coder does not implement
/// raises NSInvalidArgumentException, and so does encoding under a null key. NSKeyedArchiver.h shows how a
/// host writes and reads an archive. One thread at a time.
class PELVOR_EXPORT NSCoder : public NSObject {
    PELVOR_CLASS(NSCoder, NSObject);

  public:
    virtual bool allowsKeyedCoding() { return false; }

    /// The object may be null; decoding then returns null.
    virtual void encodeObject_forKey(id object, NSString* key);
    virtual void encodeBool_forKey(bool value, NSString* key);
    virtual void encodeInt64_forKey(std::int64_t value, NSString* key);
    virtual void encodeDouble_forKey(double value, NSString* key);
    virtual void encodeBytes_length_forKey(const void* bytes, NSUInteger length, NSString* key);
    void encodeInt_forKey(int value, NSString* key);
    void encodeFloat_forKey(float value, NSString* key);

    // Decoding returns null, false or 0 if there is no value for the key.

    virtual bool containsValueForKey(NSString* key);
    virtual id decodeObjectForKey(NSString* key);
    virtual bool decodeBoolForKey(NSString* key);
    virtual std::int64_t decodeInt64ForKey(NSString* key);
    virtual double decodeDoubleForKey(NSString* key);
    /// The bytes, which are valid as long as the coder exists. Their number is written to `length`, unless
    /// `length` is null.
    virtual const void* decodeBytesForKey_returnedLength(NSString* key, NSUInteger* length);
    /// Returns the low 32 bits of the integer.
    int decodeIntForKey(NSString* key) { return static_cast<int>(decodeInt64ForKey(key)); }
    float decodeFloatForKey(NSString* key) { return static_cast<float>(decodeDoubleForKey(key)); }

  protected:
    NSCoder() = default;
    ~NSCoder() = default;

    [[noreturn]] void raiseNotSupported(const char* operation);
};

}  // namespace pelvor
