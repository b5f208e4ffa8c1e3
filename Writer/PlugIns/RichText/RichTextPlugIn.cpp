// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"

#include "Writer/Pages/PagesLibrary.h"
#include "Writer/PlugIns/RichText/RichTextPasteboard.h"
#include "Writer/PlugIns/RichText/WRByteScanner.h"
#include "Writer/PlugIns/RichText/WRRichTextReader.h"
#include "Writer/PlugIns/RichText/WRRichTextWriter.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&pagesLibrary};
constexpr Class* kClasses[] = {&WRByteScanner::classRecord, &WRRichTextReader::classRecord,
                               &WRRichTextWriter::classRecord};

constexpr const Category* kCategories[] = {&NSAttributedString_RichText_category};

}  // namespace

constinit Library richTextPlugIn{"RichText", kDependencies, kClasses, kCategories};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::richTextPlugIn)
