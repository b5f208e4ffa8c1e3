// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WindowsLibrary.h"

#include "BaseSpellCheckingLibrary.h"
#include "Writer/Pages/PagesLibrary.h"
#include "Writer/Recovery/RecoveryLibrary.h"
#include "Writer/Shortcuts/ShortcutsLibrary.h"
#include "Writer/Windows/WRBackgroundTask.h"
#include "Writer/Windows/WRCharactersPanel.h"
#include "Writer/Windows/WRColorMenu.h"
#include "Writer/Windows/WRColorPanel.h"
#include "Writer/Windows/WRColorSlider.h"
#include "Writer/Windows/WRDesktop.h"
#include "Writer/Windows/WRDocumentFile.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFileDropView.h"
#include "Writer/Windows/WRFindPanel.h"
#include "Writer/Windows/WRFontPalette.h"
#include "Writer/Windows/WRFormView.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRLanguageCommands.h"
#include "Writer/Windows/WRLanguageSearch.h"
#include "Writer/Windows/WRNoticeBar.h"
#include "Writer/Windows/WROpenChoices.h"
#include "Writer/Windows/WRPageSetupPanel.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WRPreferencesPanel.h"
#include "Writer/Windows/WRPrintPanel.h"
#include "Writer/Windows/WRProfilesPanel.h"
#include "Writer/Windows/WRRecentDocuments.h"
#include "Writer/Windows/WRRuler.h"
#include "Writer/Windows/WRRulerGuide.h"
#include "Writer/Windows/WRSaveChoices.h"
#include "Writer/Windows/WRShortcutsPanel.h"
#include "Writer/Windows/WRSpelling.h"
#include "Writer/Windows/WRSpellingMarks.h"
#include "Writer/Windows/WRStyleMenu.h"
#include "Writer/Windows/WRTablePanel.h"
#include "Writer/Windows/WRTextFinder.h"
#include "Writer/Windows/WRTextWork.h"
#include "Writer/Windows/WRWordCounter.h"
#include "Writer/Windows/WRZoomView.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseSpellCheckingLibrary, &pagesLibrary, &recoveryLibrary,
                                      &shortcutsLibrary};
// One a line, so that merges seldom meet.
// clang-format off
constexpr Class* kClasses[] = {
    &WRBackgroundTask::classRecord,
    &WRCharactersPanel::classRecord,
    &WRColorMenu::classRecord,
    &WRColorPanel::classRecord,
    &WRColorSlider::classRecord,
    &WRDesktop::classRecord,
    &WRDocumentFile::classRecord,
    &WRDocumentWindow::classRecord,
    &WRFileDropView::classRecord,
    &WRFindPanel::classRecord,
    &WRFontPalette::classRecord,
    &WRFormView::classRecord,
    &WRFormatCommands::classRecord,
    &WRLanguageCommands::classRecord,
    &WRLanguageMenu::classRecord,
    &WRLanguageSearch::classRecord,
    &WRNoticeBar::classRecord,
    &WROpenChoices::classRecord,
    &WRPageSetupPanel::classRecord,
    &WRPageView::classRecord,
    &WRPreferencesPanel::classRecord,
    &WRPrintPanel::classRecord,
    &WRPalette::classRecord, &WRProfilesPanel::classRecord,
    &WRRecentDocuments::classRecord,
    &WRRuler::classRecord,
    &WRRulerGuide::classRecord,
    &WRSaveChoices::classRecord,
    &WRShortcutsPanel::classRecord,
    &WRSpelling::classRecord,
    &WRSpellingMarks::classRecord,
    &WRStyleMenu::classRecord,
    &WRTablePanel::classRecord,
    &WRTextFinder::classRecord,
    &WRTextWork::classRecord,
    &WRWordCounter::classRecord,
    &WRZoomView::classRecord,
};
// clang-format on

}  // namespace

constinit Library windowsLibrary{"WriterWindows", kDependencies, kClasses, {}};

}  // namespace pelvor
