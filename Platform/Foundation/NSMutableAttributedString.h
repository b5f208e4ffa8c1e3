// SPDX-License-Identifier: Apache-2.0
// NSMutableAttributedString: a text with attributes that can change.
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSDictionary.h"

namespace pelvor {

class NSAttributeDictionary;
class NSMutableString;

/// A text with attributes that can change, in little time wherever and however long it is.
///
///     auto text = NSMutableAttributedString::initWithString(u"Dear Anna"_ns);
///     text->addAttribute_value_range(u"colour"_ns, u"red"_ns, {5, 4});
///     text->replaceCharactersInRange_withString({5, 4}, u"Berta"_ns);  // red, as "Anna" was
///     auto kept = text->copy();                                        // does not change with `text`
///
/// Text that comes without attributes takes those of the first unit that it replaces; where it replaces
/// nothing, those of the unit before it, or at the front those of the first unit; in an empty text none.
///
/// An operation that raises changes nothing, and one that would leave all attributes as they are does
/// nothing, so that observers hear nothing. What leaves the text is released when the text is already as it
/// will be. One thread at a time; copies may be read on other threads meanwhile.
class PELVOR_EXPORT NSMutableAttributedString : public NSAttributedString {
    PELVOR_CLASS(NSMutableAttributedString, NSAttributedString);
    PELVOR_INHERITED_CREATORS(init, initWithString, initWithString_attributes, initWithString_runs,
                              initWithAttributedString, initWithCoder);

  public:
    /// The text as a string through which the receiver is edited. It retains the receiver.
    NSMutableString* mutableString();

    // Changing the text

    void replaceCharactersInRange_withString(NSRange range, NSString* string);
    /// `other`, which may be the receiver, brings its attributes.
    void replaceCharactersInRange_withAttributedString(NSRange range, NSAttributedString* other);
    void insertAttributedString_atIndex(NSAttributedString* other, NSUInteger index);
    void appendAttributedString(NSAttributedString* other);
    void deleteCharactersInRange(NSRange range);
    void setAttributedString(NSAttributedString* other);

    // C++ only
    /// Puts the string, with these attributes or none for null, in place of the range.
    void replaceCharactersInRange_withString_attributes(NSRange range, NSString* string,
                                                        NSDictionary* attributes);

    // Changing attributes

    /// Puts the attributes in place of all those that the range has.
    void setAttributes_range(NSDictionary* attributes, NSRange range);
    void addAttribute_value_range(NSString* name, id value, NSRange range);
    /// Gives the range each of these attributes; other attributes stay.
    void addAttributes_range(NSDictionary* attributes, NSRange range);
    void removeAttribute_range(NSString* name, NSRange range);

    // C++ only
    /// Puts what the function makes of them, an owned dictionary or null for no attributes, in place of the
    /// attributes of every run of the range. The function is not called for every run with the same
    /// attributes, and must not change the text.
    ///
    ///     text->changeAttributesInRange(range, [](NSDictionary* old) { return Retained<NSDictionary>(…); });
    template <class Function>
    void changeAttributesInRange(NSRange range, Function function) {
        changeAttributes(
            range,
            [](NSDictionary* old, void* context) -> Retained<NSDictionary> {
                return (*static_cast<Function*>(context))(old);
            },
            &function, "changeAttributesInRange");
    }

    // Brackets around several edits, for subclasses with observers; here they do nothing.

    virtual void beginEditing() {}
    virtual void endEditing() {}

  protected:
    NSMutableAttributedString() = default;
    ~NSMutableAttributedString() = default;

    // What an edit changed; joined by "|".
    static constexpr unsigned kEditedAttributes = 1, kEditedCharacters = 2;
    /// Every edit ends with a call of this, for classes with observers: the mask tells what has changed, the
    /// range where, before the edit, and the last argument how much longer the text became.
    virtual void didEdit(unsigned mask, NSRange range, NSInteger changeInLength);

  private:
    using AttributeChange = Retained<NSDictionary> (*)(NSDictionary* old, void* context);
    void changeAttributes(NSRange range, AttributeChange change, void* context, const char* operation);
    // With the attributes of what is replaced if `attributes` is null.
    void replace(NSRange range, NSString* string, Retained<NSAttributeDictionary> attributes,
                 const char* operation);
    void replace(NSRange range, NSAttributedString* other, const char* operation);
};

}  // namespace pelvor
