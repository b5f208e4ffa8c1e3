// SPDX-License-Identifier: Apache-2.0
// NSCoder: how objects write themselves under keys and are read again.
#pragma once

#include <cstdint>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSString;

/// What an object writes its fields to and reads its fields from, each under a key. A class takes part by two
/// methods:
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
/// Each object has its own keys. Abstract: an operation that a coder does not implement raises
/// NSInvalidArgumentException; so does encoding with null as key. One thread at a time.
class PELVOR_EXPORT NSCoder : public NSObject {
    PELVOR_CLASS(NSCoder, NSObject);

  public:
    virtual bool allowsKeyedCoding() { return false; }

    /// The object may be null; it is then decoded as null.
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
    /// The bytes, valid as long as the coder. Their number is written to `length` unless that is null.
    virtual const void* decodeBytesForKey_returnedLength(NSString* key, NSUInteger* length);
    /// Keeps the low 32 bits.
    int decodeIntForKey(NSString* key) { return static_cast<int>(decodeInt64ForKey(key)); }
    float decodeFloatForKey(NSString* key) { return static_cast<float>(decodeDoubleForKey(key)); }

  protected:
    NSCoder() = default;
    ~NSCoder() = default;

    [[noreturn]] void raiseNotSupported(const char* operation);
};

}  // namespace pelvor
