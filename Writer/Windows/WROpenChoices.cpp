// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WROpenChoices.h"

#include "Interface/NSOpenPanel.h"
#include "Interface/NSPopUpButton.h"
#include "Writer/LocalizedText.h"
#include "Writer/Windows/WRSaveChoices.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WROpenChoices, windowsLibrary) {}

WROpenChoices::~WROpenChoices() = default;

Retained<WROpenChoices> WROpenChoices::create() {
    auto self = make<WROpenChoices>();
    self->_view = WRSaveChoices::viewWithLines(1);
    self->_encodings = WRSaveChoices::addLine(self->_view, localized(u"_Encoding:"_ns), 0);
    self->_encodings->addItemWithTitle(localized(u"_Automatic"_ns));
    self->_encodings->addItemsWithTitles(WRSaveChoices::usualEncodings());
    return self;
}

void WROpenChoices::attachToPanel(NSOpenPanel* panel) { panel->setAccessoryView(_view); }

NSString* WROpenChoices::encodingName() {
    return _encodings->indexOfSelectedItem() > 0 ? _encodings->titleOfSelectedItem() : nullptr;
}

}  // namespace pelvor
