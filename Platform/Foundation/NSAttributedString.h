// SPDX-License-Identifier: Apache-2.0
// NSAttributedString: an immutable text whose stretches have attributes.
#pragma once

#include <iterator>
#include <span>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class AttributeRuns;
class NSAttributedText;
struct AttributeRun;
class NSCoder;
class NSDictionary;
class NSMutableAttributedString;
class NSString;

/// A text, each of whose units has attributes: a dictionary from names to objects. Positions and lengths
/// count UTF-16 units.
///
///     NSDictionary* marked = NSDictionary::of({{u"colour"_ns, u"red"_ns}});
///     auto title = NSAttributedString::initWithString_attributes(u"Arrival"_ns, marked);
///     NSRange run;
///     id colour = title->attribute_atIndex_effectiveRange(u"colour"_ns, 3, &run);  // "red", {0, 7}
///
/// The text falls into runs: stretches, as long as possible, over which all attributes are equal. Equal
/// attributes are one dictionary object wherever they are used, so a comparison of pointers compares them. An
/// attribute's value is retained and must not change in what it is equal to; of two equal values either may
/// be kept. Names are copied.
///
/// A text of any length can be searched for a position, cut and copied in little time, and copies share what
/// is the same. What the operations return is borrowed: dictionaries and values are valid as long as their
/// text has them. Immutable attributed strings may be used on any thread, as far as their values may.
///
/// These rules hold for every operation: an index or a range that is not inside the text raises
/// NSRangeException, and a null argument NSInvalidArgumentException, except for null as attributes, which
/// stands for no attributes, and for null as address of a range, which is then not wanted.
class PELVOR_EXPORT NSAttributedString : public NSObject {
    PELVOR_CLASS(NSAttributedString, NSObject);
    PELVOR_CREATORS(init, initWithString, initWithString_attributes, initWithString_runs,
                    initWithAttributedString, initWithCoder);

  public:
    // Creation

    static Retained<NSAttributedString> init(Class* cls = classObject());
    /// A text without attributes.
    static Retained<NSAttributedString> initWithString(NSString* string, Class* cls = classObject());
    static Retained<NSAttributedString> initWithString_attributes(NSString* string, NSDictionary* attributes,
                                                                  Class* cls = classObject());
    static Retained<NSAttributedString> initWithAttributedString(NSAttributedString* other,
                                                                 Class* cls = classObject());

    // C++ only
    /// A text with its attributes at once, much faster than run by run. The runs follow each other from the
    /// front of the text to its end; null stands for no attributes. Raises NSInvalidArgumentException if they
    /// do not.
    static Retained<NSAttributedString> initWithString_runs(NSString* string,
                                                            std::span<const AttributeRun> runs,
                                                            Class* cls = classObject());

    // The text

    /// The plain text, which changes with the attributed string if that is mutable; copy it to keep it.
    NSString* string();
    NSUInteger length();

    // Attributes. An index is below the length. `effectiveRange` becomes the run that holds the index.

    /// Never null.
    NSDictionary* attributesAtIndex_effectiveRange(NSUInteger index, NSRange* effectiveRange);
    /// `longestRange` becomes the stretch around the index, inside the limit, over which all attributes are
    /// equal: the run as far as it lies in the limit.
    NSDictionary* attributesAtIndex_longestEffectiveRange_inRange(NSUInteger index, NSRange* longestRange,
                                                                  NSRange limit);
    /// The value of the attribute, or null.
    id attribute_atIndex_effectiveRange(NSString* name, NSUInteger index, NSRange* effectiveRange);
    /// `longestRange` becomes the stretch around the index, inside the limit, over which the attribute's
    /// value stays equal, whatever the other attributes do.
    id attribute_atIndex_longestEffectiveRange_inRange(NSString* name, NSUInteger index,
                                                       NSRange* longestRange, NSRange limit);

    // C++ only
    /// The runs of a range, clipped to it:
    ///
    ///     for (AttributeRun run : text->runsInRange({10, 90})) draw(run.range, run.attributes);
    ///
    /// The text must not change during the walk.
    AttributeRuns runsInRange(NSRange range);
    /// The runs of the whole text.
    AttributeRuns runs();

    // Parts and comparisons

    NSAttributedString* attributedSubstringFromRange(NSRange range);
    /// Whether text and attributes are equal. False for null.
    bool isEqualToAttributedString(NSAttributedString* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// The text, with the attributes of each run behind it: "plain{\n}marked{\n    colour = red;\n}".
    NSString* description() override;
    /// An immutable copy; of a mutable text it takes no time, and shares what stays the same.
    Retained<NSAttributedString> copy();
    Retained<NSMutableAttributedString> mutableCopy();
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;

    void encodeWithCoder(NSCoder* coder);
    /// Raises NSInvalidArgumentException if the archive holds no attributed string.
    static Retained<NSAttributedString> initWithCoder(NSCoder* coder, Class* cls = classObject());

  protected:
    NSAttributedString();
    ~NSAttributedString();

    Retained<NSAttributedText> _content;

  private:
    friend class NSMutableAttributedString;
};

/// Units with equal attributes. The dictionary is borrowed and never null.
struct AttributeRun {
    NSRange range;
    Unretained<NSDictionary> attributes;
};

/// What `NSAttributedString::runsInRange` returns, for range-for loops.
class PELVOR_EXPORT AttributeRuns {
  public:
    class Iterator {
      public:
        Iterator(NSAttributedText* text, NSRange range) : _text(text), _rest(range) { fetch(); }
        AttributeRun operator*() const { return _run; }
        Iterator& operator++() {
            fetch();
            return *this;
        }
        bool operator==(std::default_sentinel_t) const { return !_run.attributes; }

      private:
        void fetch() { _run = _rest.length > 0 ? takeRun(_text, _rest) : AttributeRun{{}, nullptr}; }

        Unretained<NSAttributedText> _text;
        NSRange _rest;
        AttributeRun _run{};
    };

    AttributeRuns(NSAttributedText* text, NSRange range) : _text(text), _range(range) {}
    Iterator begin() const { return {_text, _range}; }
    std::default_sentinel_t end() const { return {}; }

  private:
    static AttributeRun takeRun(NSAttributedText* text, NSRange& rest);

    Unretained<NSAttributedText> _text;
    NSRange _range;
};

}  // namespace pelvor
