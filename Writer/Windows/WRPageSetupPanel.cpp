// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPageSetupPanel.h"

#include <algorithm>
#include <cmath>

#include "Foundation/LocalizedNumbers.h"
#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSScanner.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSTextField.h"
#include "Writer/LocalizedText.h"
#include "Writer/Pages/PageDocument.h"
#include "Writer/Pages/PageLines.h"
#include "Writer/Pages/StyleSheet.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/Windows/WRFormView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr float kPointsPerMillimetre = 72 / 25.4F;
constexpr NSString* kTitle = u"{title}"_ns;  // the header of somebody who writes none
enum Orientation : NSInteger { kPortrait, kLandscape };

// The place of the paper in the list of those with names, either way round; that of "Other" if it has none.
NSUInteger indexOfPaper(NSSize paper) {
    NSArray* names = StyleSheet::paperNames();
    NSUInteger i = 0;
    for (; i < names->count(); ++i) {
        const NSSize size = StyleSheet::paperSizeNamed(static_cast<NSString*>(names->objectAtIndex(i)));
        if (std::abs(size.width - std::min(paper.width, paper.height)) < 1 &&
            std::abs(size.height - std::max(paper.width, paper.height)) < 1)
            break;
    }
    return i;
}

NSArray* paperTitles(bool hasOther) {
    auto* titles = NSMutableArray::array();
    for (id name : StyleSheet::paperNames())
        titles->addObject(static_cast<NSString*>(name)->capitalizedString());
    if (hasOther) titles->addObject(localized(u"_Other paper"_ns));
    return titles;
}

// A length as the user writes it; below 0 if that is none.
float lengthOf(NSString* text) {
    auto scanner = NSScanner::scannerWithString(plainNumber(text));
    float length = 0;
    return scanner->scanFloat(&length) && scanner->isAtEnd() ? length : -1;
}

}  // namespace

WRPageSetupPanel::~WRPageSetupPanel() = default;

PELVOR_DEFINE_CLASS(WRPageSetupPanel, windowsLibrary) {
    methods.instance<"runModal", &WRPageSetupPanel::runModal>();
    methods.instance<"window", &WRPageSetupPanel::window>();
    methods.instance<"headerDidChange:", &WRPageSetupPanel::headerDidChange>();
    methods.instance<"accept:", &WRPageSetupPanel::accept>();
    methods.instance<"cancel:", &WRPageSetupPanel::cancel>();
}

Retained<WRPageSetupPanel> WRPageSetupPanel::create(NSDictionary* settings, const StyleSheet& sheet,
                                                    std::function<bool(NSDictionary*)> apply) {
    auto self = make<WRPageSetupPanel>();
    self->_apply = std::move(apply);
    self->_settings.set(settings);
    self->_header.set(attributesOfLine(sheet, u"header"_ns));
    self->_footer.set(attributesOfLine(sheet, u"footer"_ns));
    self->makePanel();
    return self;
}

void WRPageSetupPanel::makePanel() {
    constexpr float kFieldWidth = 160;
    const PageFrame frame = PageFrame::of(_settings);
    _width = frame.paper.width;
    _height = frame.paper.height;
    const NSUInteger paper = indexOfPaper(frame.paper);
    auto form = WRFormView::create(this, kFieldWidth);
    _paper.set(form->addPopUp(localized(u"_Paper:"_ns),
                              paperTitles(paper == StyleSheet::paperNames()->count()), {}));
    _shownPaper = static_cast<NSInteger>(paper);
    _paper->selectItemAtIndex(_shownPaper);
    _orientation.set(form->addPopUp(localized(u"_Orientation:"_ns),
                                    NSArray::of({localized(u"_Portrait"_ns), localized(u"_Landscape"_ns)}),
                                    {}));
    _orientation->setTag(kOrientationTag);
    _orientation->selectItemAtIndex(shownOrientation());
    const struct {
        NSString *key, *label;
        float length;
    } kMargins[] = {{WRLeftMarginKey, u"_Left margin in mm:"_ns, frame.left},
                    {WRRightMarginKey, u"_Right margin in mm:"_ns, frame.right},
                    {WRTopMarginKey, u"_Top margin in mm:"_ns, frame.top},
                    {WRBottomMarginKey, u"_Bottom margin in mm:"_ns, frame.bottom}};
    for (std::size_t i = 0; i < std::size(kMargins); ++i) {
        const auto& [key, label, length] = kMargins[i];
        NSString* shown = localizedNumber(
            NSString::stringWithFormat(u"%.1f"_ns, static_cast<double>(length / kPointsPerMillimetre)));
        NSTextField* field = form->addField(localized(label));
        field->setStringValue(shown);
        _margins[i] = {key, Retained<NSTextField>::retaining(field), Retained<NSString>::retaining(shown)};
    }
    addLines(form);
    _message.set(form->addMessage());
    form->addButton(localized(u"_OK"_ns), "accept:"_sel)->setKeyEquivalent(u"\r"_ns);
    form->addButton(localized(u"_Cancel"_ns), "cancel:"_sel)->setKeyEquivalent(u"\x1b"_ns);
    _panel = form->panelWithTitle(localized(u"_Page Setup"_ns));
    _panel->setInitialFirstResponder(_margins[0].field);
}

NSAttributedString* WRPageSetupPanel::shownLine(NSString* key) {
    return cast<NSAttributedString>(_settings->objectForKey(key));
}

// The text that stands for the document's name is shown as that name.
void WRPageSetupPanel::addLines(WRFormView* form) {
    NSString* text = textOfLine(shownLine(WRHeaderKey));
    _hasHeader.set(form->addCheckBox(localized(u"_Header on each page"_ns)));
    _hasHeader->setState(text->length() > 0);
    _hasHeader->setTarget(this);
    _hasHeader->setAction("headerDidChange:"_sel);
    _headerText.set(form->addField(localized(u"_Text of the header:"_ns)));
    _headerText->setStringValue(text->isEqualToString(kTitle) ? u""_ns : text);
    if (auto* title = cast<NSString>(_settings->objectForKey(WRTitleKey)))
        cast<NSTextFieldCell>(_headerText->cell())->setPlaceholderString(title);
    _hasPageNumber.set(form->addCheckBox(localized(u"_Page number at the foot of each page"_ns)));
    _hasPageNumber->setState(hasPageNumber(shownLine(WRFooterKey)));
    headerDidChange(nullptr);
}

void WRPageSetupPanel::headerDidChange(id) { _headerText->setEnabled(_hasHeader->state() != 0); }

void WRPageSetupPanel::runModal() {
    const auto alive = Retained<WRPageSetupPanel>::retaining(this);
    NSApplication::sharedApplication()->runModalForWindow(_panel);
    _panel->orderOut(nullptr);
}

// Null if a margin is no length. What is shown may be rounded, so only what was changed counts.
NSDictionary* WRPageSetupPanel::chosenSettings() {
    auto* settings = NSMutableDictionary::dictionary();
    const auto set = [&](NSString* key, float length) {
        settings->setObject_forKey(NSNumber::numberWithFloat(length), key);
    };
    NSArray* names = StyleSheet::paperNames();
    const auto index = static_cast<NSUInteger>(_paper->indexOfSelectedItem());
    NSSize paper{std::min(_width, _height), std::max(_width, _height)};
    if (index < names->count())
        paper = StyleSheet::paperSizeNamed(static_cast<NSString*>(names->objectAtIndex(index)));
    if (_orientation->indexOfSelectedItem() == kLandscape) std::swap(paper.width, paper.height);
    if (_paper->indexOfSelectedItem() != _shownPaper ||
        _orientation->indexOfSelectedItem() != shownOrientation()) {
        set(WRPageWidthKey, paper.width);
        set(WRPageHeightKey, paper.height);
    }
    for (const Margin& margin : _margins) {
        const float length = lengthOf(margin.field->stringValue());
        if (!(length >= 0)) return nullptr;
        if (!margin.field->stringValue()->isEqualToString(margin.shown))
            set(margin.key, length * kPointsPerMillimetre);
    }
    setLines(settings);
    return settings;
}

// What the user has not touched keeps its formats.
void WRPageSetupPanel::setLines(NSMutableDictionary* settings) {
    NSString* text = u""_ns;
    if (_hasHeader->state())
        text = _headerText->stringValue()->length() ? _headerText->stringValue() : kTitle;
    NSAttributedString* header = shownLine(WRHeaderKey);
    if (!text->isEqualToString(textOfLine(header)))
        settings->setObject_forKey(lineWithText(text, _header, text->length() ? header : nullptr).get(),
                                   WRHeaderKey);
    NSAttributedString* footer = shownLine(WRFooterKey);
    const bool isNumbered = _hasPageNumber->state() != 0;
    if (isNumbered != hasPageNumber(footer))
        settings->setObject_forKey(
            (isNumbered ? footerWithPageNumber(footer, _footer) : footerWithoutPageNumber(footer)).get(),
            WRFooterKey);
}

void WRPageSetupPanel::accept(id) {
    NSDictionary* settings = chosenSettings();
    if (!settings)
        return _message->setStringValue(localized(u"_A margin is a number of millimetres, such as 25."_ns));
    if (!_apply(settings))
        return _message->setStringValue(
            localized(u"_The margins, or the header and the footer, leave no room for text on the page."_ns));
    cancel(nullptr);
}

void WRPageSetupPanel::cancel(id) {
    NSApplication* application = NSApplication::sharedApplication();
    if (application->modalWindow() == _panel) application->stopModal();
    _panel->orderOut(nullptr);
}

}  // namespace pelvor
