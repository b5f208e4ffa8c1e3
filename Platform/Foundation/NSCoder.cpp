// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSCoder.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSCoder, foundationLibrary) {
    methods.instance<"allowsKeyedCoding", &NSCoder::allowsKeyedCoding>();
    methods.instance<"encodeObject:forKey:", &NSCoder::encodeObject_forKey>();
    methods.instance<"encodeBool:forKey:", &NSCoder::encodeBool_forKey>();
    methods.instance<"encodeInt64:forKey:", &NSCoder::encodeInt64_forKey>();
    methods.instance<"encodeDouble:forKey:", &NSCoder::encodeDouble_forKey>();
    methods.instance<"encodeBytes:length:forKey:", &NSCoder::encodeBytes_length_forKey>();
    methods.instance<"encodeInt:forKey:", &NSCoder::encodeInt_forKey>();
    methods.instance<"encodeFloat:forKey:", &NSCoder::encodeFloat_forKey>();
    methods.instance<"containsValueForKey:", &NSCoder::containsValueForKey>();
    methods.instance<"decodeObjectForKey:", &NSCoder::decodeObjectForKey>();
    methods.instance<"decodeBoolForKey:", &NSCoder::decodeBoolForKey>();
    methods.instance<"decodeInt64ForKey:", &NSCoder::decodeInt64ForKey>();
    methods.instance<"decodeDoubleForKey:", &NSCoder::decodeDoubleForKey>();
    methods.instance<"decodeBytesForKey:returnedLength:", &NSCoder::decodeBytesForKey_returnedLength>();
    methods.instance<"decodeIntForKey:", &NSCoder::decodeIntForKey>();
    methods.instance<"decodeFloatForKey:", &NSCoder::decodeFloatForKey>();
}

void NSCoder::raiseNotSupported(const char* operation) {
    raiseException(NSInvalidArgumentException, u"a coder of class %s does not implement %s"_ns,
                   isa()->publicName(), operation);
}

void NSCoder::encodeObject_forKey(id, NSString*) { raiseNotSupported("encodeObject:forKey:"); }
void NSCoder::encodeBool_forKey(bool, NSString*) { raiseNotSupported("encodeBool:forKey:"); }
void NSCoder::encodeInt64_forKey(std::int64_t, NSString*) { raiseNotSupported("encodeInt64:forKey:"); }
void NSCoder::encodeDouble_forKey(double, NSString*) { raiseNotSupported("encodeDouble:forKey:"); }
void NSCoder::encodeBytes_length_forKey(const void*, NSUInteger, NSString*) {
    raiseNotSupported("encodeBytes:length:forKey:");
}

void NSCoder::encodeInt_forKey(int value, NSString* key) {
    requireArgument(key, "encodeInt:forKey:", "the key");
    encodeInt64_forKey(value, key);
}

void NSCoder::encodeFloat_forKey(float value, NSString* key) {
    requireArgument(key, "encodeFloat:forKey:", "the key");
    encodeDouble_forKey(value, key);
}

bool NSCoder::containsValueForKey(NSString*) { raiseNotSupported("containsValueForKey:"); }
id NSCoder::decodeObjectForKey(NSString*) { raiseNotSupported("decodeObjectForKey:"); }
bool NSCoder::decodeBoolForKey(NSString*) { raiseNotSupported("decodeBoolForKey:"); }
std::int64_t NSCoder::decodeInt64ForKey(NSString*) { raiseNotSupported("decodeInt64ForKey:"); }
double NSCoder::decodeDoubleForKey(NSString*) { raiseNotSupported("decodeDoubleForKey:"); }
const void* NSCoder::decodeBytesForKey_returnedLength(NSString*, NSUInteger*) {
    raiseNotSupported("decodeBytesForKey:returnedLength:");
}

}  // namespace pelvor
