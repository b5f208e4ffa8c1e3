// SPDX-License-Identifier: Apache-2.0
// NSAttributedText: what an attributed string consists of; for Foundation's own sources.
#pragma once

#include "Foundation/AttributedStrings/RunTree.h"
#include "Foundation/AttributedStrings/TextTree.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableString.h"

namespace pelvor {

/// The text of an attributed string with its runs. For users it is the string's plain text, which changes
/// with it.
class NSAttributedText final : public NSString {
    PELVOR_CLASS(NSAttributedText, NSString);

  public:
    NSUInteger length() override { return text.length(); }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return text.contiguousUnits(); }
    /// A long text is not copied before one of the two changes.
    Retained<Object> copyWithZone(void* zone) override;

    TextTree text;
    RunTree runs;  // as long as the text

  protected:
    NSAttributedText() = default;
    ~NSAttributedText() = default;
};

/// The text of a mutable attributed string as a string through which it is edited.
class NSAttributedMutableString final : public NSMutableString {
    PELVOR_CLASS(NSAttributedMutableString, NSMutableString);

  public:
    static NSMutableString* create(NSMutableAttributedString* owner);

    NSUInteger length() override { return _owner->length(); }
    unichar characterAtIndex(NSUInteger index) override { return _owner->string()->characterAtIndex(index); }
    void getCharacters_range(unichar* buffer, NSRange range) override {
        _owner->string()->getCharacters_range(buffer, range);
    }
    const unichar* contiguousCharacters() override { return _owner->string()->contiguousCharacters(); }
    void replaceCharactersInRange_withString(NSRange range, NSString* string) override {
        _owner->replaceCharactersInRange_withString(range, string);
    }
    Retained<Object> copyWithZone(void* zone) override { return _owner->string()->copyWithZone(zone); }

  protected:
    NSAttributedMutableString() = default;
    ~NSAttributedMutableString() = default;

  private:
    Retained<NSMutableAttributedString> _owner;
};

}  // namespace pelvor
