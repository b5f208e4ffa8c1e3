// SPDX-License-Identifier: Apache-2.0
// WRReport: the lines that Writer prints.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// Text in sections, made line by line. What would do something to a terminal other than showing text, such
/// as controls out of a document, is replaced.
class WRReport : public NSObject {
    PELVOR_CLASS(WRReport, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRReport> init(Class* cls = classObject());

    /// Begins a section, after an empty line.
    void addHeading(NSString* text);
    /// Adds a line to the section.
    void addLine(NSString* text);
    /// Adds "label: value" to the section. The value is a string or an object with a description.
    void addLabel_value(NSString* label, id value);

    /// What was added since the last call. Borrowed.
    NSString* takeText();

    /// The text with U+FFFD for each control and each mark that changes the direction of what follows.
    static NSString* printableText(NSString* text);

  protected:
    WRReport() = default;
    ~WRReport() = default;

  private:
    std::u16string _text;
    bool _isBegun = false;
};

}  // namespace pelvor
