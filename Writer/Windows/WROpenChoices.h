// SPDX-License-Identifier: Apache-2.0
// WROpenChoices: in which encoding documents are read.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSOpenPanel;
class NSPopUpButton;
class NSView;

/// The part of an open panel that lets the user choose the encoding of texts. Main thread.
class WROpenChoices : public NSObject {
    PELVOR_CLASS(WROpenChoices, NSObject);

  public:
    // C++ only
    static Retained<WROpenChoices> create();
    void attachToPanel(NSOpenPanel* panel);
    /// Null where it is to be found out.
    NSString* encodingName();
    NSPopUpButton* encodingButton() { return _encodings; }

  protected:
    WROpenChoices() = default;
    ~WROpenChoices();

  private:
    Retained<NSView> _view;
    Retained<NSPopUpButton> _encodings;
};

}  // namespace pelvor
