// SPDX-License-Identifier: Apache-2.0
// NSTextTab: a tab stop.
#pragma once

#include "Foundation/NSDictionary.h"
#include "Text/TextAttributes.h"

namespace pelvor {

class NSCoder;

/// How the text behind a tab stands at the stop.
enum NSTextTabType : int {
    NSLeftTabStopType = 0,     ///< the text begins at the stop
    NSRightTabStopType = 1,    ///< the text ends at the stop
    NSCenterTabStopType = 2,   ///< the text's middle stands at the stop
    NSDecimalTabStopType = 3,  ///< the first column terminator stands at the stop
};

/// In a tab's options: the characters that end a column, an NSString of them or an NSCharacterSet. A right
/// tab with column terminators is a decimal tab.
extern PELVOR_EXPORT NSString* const NSTabColumnTerminatorsAttributeName;

/// An immutable tab stop: a place in a line, and how the text behind the tab character stands there.
///
///     auto price = NSTextTab::initWithType_location(NSDecimalTabStopType, 300);
///     style->addTabStop(price);             // 12.50 and 7.25 stand with their points below each other
///
/// A tab has a type and an alignment that say the same in two ways: a tab made from a type has the alignment
/// that matches it, a tab made from an alignment the type. Of a decimal tab these are the right alignment and
/// the option of column terminators, a full stop unless others were given. Any thread.
class PELVOR_EXPORT NSTextTab : public NSObject {
    PELVOR_CLASS(NSTextTab, NSObject);
    PELVOR_CREATORS(initWithType_location, initWithTextAlignment_location_options, initWithCoder);

  public:
    /// The location is in points from the leading edge of the line, as NSParagraphStyle has it, not from an
    /// indent.
    static Retained<NSTextTab> initWithType_location(NSTextTabType type, float location,
                                                     Class* cls = classObject());
    /// Null as options stands for none. Justified and natural tabs are left tabs.
    static Retained<NSTextTab> initWithTextAlignment_location_options(NSTextAlignment alignment,
                                                                      float location, NSDictionary* options,
                                                                      Class* cls = classObject());
    static Retained<NSTextTab> initWithCoder(NSCoder* coder, Class* cls = classObject());

    float location() { return _location; }
    NSTextTabType tabStopType() { return _type; }
    NSTextAlignment alignment() { return _alignment; }
    /// Never null.
    NSDictionary* options() { return _options; }

    void encodeWithCoder(NSCoder* coder);
    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// "28R": the location with L, R, C or D for the type.
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSTextTab> copy() { return cast<NSTextTab>(copyWithZone(nullptr)); }

  protected:
    NSTextTab() = default;
    ~NSTextTab() = default;

  private:
    float _location = 0;
    NSTextTabType _type = NSLeftTabStopType;
    NSTextAlignment _alignment = NSLeftTextAlignment;
    Retained<NSDictionary> _options;
};

}  // namespace pelvor
