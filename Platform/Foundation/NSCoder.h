// SPDX-License-Identifier: Apache-2.0
// NSCoder: how objects write themselves under keys and are read again.
#pragma once

#include <cstdint>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSString;

/// What an object is given to encode or decode itself with. A class takes part by two methods:
///
///     void encodeWithCoder(NSCoder* coder);                                    // "encodeWithCoder:"
///     static Retained<PBLamp> initWithCoder(NSCoder* coder, Class* cls = …);   // "initWithCoder:"
///
/// Keys belong to the object that is being coded. Abstract: an operation that a coder does not have raises
/// NSInvalidArgumentException. One thread at a time.
class PELVOR_EXPORT NSCoder : public NSObject {
    PELVOR_CLASS(NSCoder, NSObject);

  public:
    virtual bool allowsKeyedCoding() { return false; }

    /// None may be encoded; it is read as none.
    virtual void encodeObject_forKey(id object, NSString* key);
    virtual void encodeBool_forKey(bool value, NSString* key);
    virtual void encodeInt64_forKey(std::int64_t value, NSString* key);
    virtual void encodeDouble_forKey(double value, NSString* key);
    virtual void encodeBytes_length_forKey(const void* bytes, NSUInteger length, NSString* key);
    void encodeInt_forKey(int value, NSString* key) { encodeInt64_forKey(value, key); }
    void encodeFloat_forKey(float value, NSString* key) { encodeDouble_forKey(value, key); }

    // Reading answers none, NO or 0 where there is no value for the key.

    virtual bool containsValueForKey(NSString* key);
    virtual id decodeObjectForKey(NSString* key);
    virtual bool decodeBoolForKey(NSString* key);
    virtual std::int64_t decodeInt64ForKey(NSString* key);
    virtual double decodeDoubleForKey(NSString* key);
    /// The bytes, valid as long as the coder; `length`, unless none, receives how many.
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
