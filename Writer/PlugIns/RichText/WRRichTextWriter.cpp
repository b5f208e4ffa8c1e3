// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/WRRichTextWriter.h"

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSStringEncoding.h"
#include "PBUtil.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/RichTextMarkup.h"
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRRichTextWriter, richTextPlugIn) {
    methods.instance<"writeText:toPath:options:", &WRRichTextWriter::writeText_toPath_options>();
}

NSDictionary* WRRichTextWriter::writeText_toPath_options(NSString* text, NSString* path,
                                                         NSDictionary* options) {
    NSString* named = stringEntry(options, WREncodingKey);
    if (named && encodingForName(named->toUTF8()) != NSASCIIStringEncoding)
        return errorAnswer(
            WRErrorEncoding,
            _PBDoLocalize(u"_Rich text is written in the encoding \"us-ascii\" only."_ns, this));
    auto rich = Retained<NSAttributedString>::retaining(
        cast<NSAttributedString>(options ? options->objectForKey(WRRichTextKey) : nullptr));
    if (!rich) rich = NSAttributedString::initWithString(text);
    auto* settings = cast<NSDictionary>(options ? options->objectForKey(WRDocumentSettingsKey) : nullptr);
    const RichTextMarkup markup = markupOfRichText(rich, settings, path->lastPathComponent());
    NSDictionary* answer = writeTextFile(markup.bytes, u"us-ascii"_ns, path);
    if (markup.leftOut.empty() || answer->objectForKey(WRErrorKey)) return answer;
    auto names = NSMutableArray::init();
    for (const std::u16string& name : markup.leftOut) names->addObject(NSString::of(name));
    auto* changed = NSMutableDictionary::dictionaryWithDictionary(answer);
    changed->setObject_forKey(
        NSString::stringWithFormat(_PBDoLocalize(u"_Rich text has no room for these formats: %@."_ns, this),
                                   names->componentsJoinedByString(u", "_ns)),
        WRMessageKey);
    return changed;
}

}  // namespace pelvor
