// SPDX-License-Identifier: Apache-2.0
#include "Writer/WriterLibrary.h"

#include "BaseLibrary.h"
#include "Writer/WRAbout.h"
#include "Writer/WRAboutLine.h"
#include "Writer/WRApplication.h"
#include "Writer/WRArguments.h"
#include "Writer/WRBoundaryScanner.h"
#include "Writer/WRDocument.h"
#include "Writer/WRDocumentCounter.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/WRDocumentSaver.h"
#include "Writer/WRFileSentry.h"
#include "Writer/WRLanguage.h"
#include "Writer/WRMainLoop.h"
#include "Writer/WRPlugInLoader.h"
#include "Writer/WRProfileListing.h"
#include "Writer/WRProgressLine.h"
#include "Writer/WRReport.h"
#include "Writer/WRUploader.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
constexpr Class* kClasses[] = {
    &WRAbout::classRecord,           &WRAboutLine::classRecord,       &WRApplication::classRecord,
    &WRArguments::classRecord,       &WRBoundaryScanner::classRecord, &WRDocument::classRecord,
    &WRDocumentCounter::classRecord, &WRDocumentOpener::classRecord,  &WRDocumentSaver::classRecord,
    &WRFileSentry::classRecord,      &WRLanguage::classRecord,        &WRMainLoop::classRecord,
    &WRPlugInLoader::classRecord,    &WRProfileListing::classRecord,  &WRProgressLine::classRecord,
    &WRReport::classRecord,          &WRUploader::classRecord,
};

}  // namespace

constinit Library writerLibrary{"Writer", kDependencies, kClasses, {}};

}  // namespace pelvor
