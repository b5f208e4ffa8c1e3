// SPDX-License-Identifier: Apache-2.0
// NSMutableCharacterSet: a set of code points that can be changed.
#pragma once

#include "Foundation/NSCharacterSet.h"

namespace pelvor {

/// A set of code points that can be changed:
///
///     auto wordCharacters = NSCharacterSet::letterCharacterSet()->mutableCopy();
///     wordCharacters->addCharactersInString(u"'-"_ns);
///
/// One thread at a time.
class PELVOR_EXPORT NSMutableCharacterSet : public NSCharacterSet {
    PELVOR_CLASS(NSMutableCharacterSet, NSCharacterSet);
    PELVOR_CREATORS(init);
    PELVOR_INHERITED_CREATORS(characterSet, characterSetWithCharactersInString, characterSetWithRange,
                              characterSetWithBitmapRepresentation, initWithCharactersInString, initWithRange,
                              initWithBitmapRepresentation);

  public:
    static Retained<NSMutableCharacterSet> init(Class* cls = classObject());

    /// These raise NSInvalidArgumentException for a range that reaches beyond U+10FFFF.
    void addCharactersInRange(NSRange range);
    void removeCharactersInRange(NSRange range);
    void addCharactersInString(NSString* string);
    void removeCharactersInString(NSString* string);
    void formUnionWithCharacterSet(NSCharacterSet* other);
    void formIntersectionWithCharacterSet(NSCharacterSet* other);
    void invert();

    Retained<Object> copyWithZone(void* zone) override;

  protected:
    NSMutableCharacterSet() = default;
    ~NSMutableCharacterSet() = default;
};

}  // namespace pelvor
