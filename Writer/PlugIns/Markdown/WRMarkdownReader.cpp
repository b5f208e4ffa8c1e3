// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Markdown/WRMarkdownReader.h"

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/Markdown/MarkdownPlugIn.h"
#include "Writer/PlugIns/Markdown/MarkdownText.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRMarkdownReader, markdownPlugIn) {
    methods.instance<"readDocumentAtPath:options:", &WRMarkdownReader::readDocumentAtPath_options>();
}

NSDictionary* WRMarkdownReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    NSDictionary* answer = readTextFile(path, options);
    NSString* source = stringEntry(answer, WRTextKey);
    if (!source) return answer;
    auto* changed = NSMutableDictionary::dictionaryWithDictionary(answer);
    StringUnits units(source);
    changed->setObject_forKey(NSString::of(textOfMarkdown(units)), WRTextKey);
    return changed;
}

}  // namespace pelvor
