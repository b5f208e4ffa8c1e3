// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/WRRichTextReader.h"

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBUtil.h"
#include "Runtime/Message.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/RichTextAnswer.h"
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {
namespace {

// By RichTextProblem.
constexpr NSString* kProblems[] = {
    u"_The file ends at byte %@ inside a group; it was read up to there."_ns,
    u"_The document ends at byte %@; what follows was not read."_ns,
    u"_Groups are nested too deeply from byte %@ on; the inner ones count as part of the outer ones."_ns,
    u"_At byte %@ stands no character of the code page; such places: %u."_ns,
};

constexpr std::size_t kShownLeftOut = 12;

// "cellx, trowd"; "…" at the end if there are more.
NSString* shownNames(const std::vector<std::string>& names) {
    auto shown = NSMutableArray::init();
    for (const std::string& name : names) {
        if (shown->count() == kShownLeftOut) {
            shown->addObject(u"…"_ns);
            break;
        }
        shown->addObject(NSString::ofUTF8(name));
    }
    return shown->componentsJoinedByString(u", "_ns);
}

// What the user should know, in sentences; "" if there is nothing.
NSString* messageOf(const RichText& read, id reader) {
    auto lines = NSMutableArray::init();
    for (std::size_t i = 0; i < read.problems.size(); ++i) {
        const RichTextProblems& problems = read.problems[i];
        if (problems.count == 0) continue;
        NSNumber* place = NSNumber::numberWithUnsignedLongLong(problems.firstPlace);
        lines->addObject(NSString::stringWithFormat(_PBDoLocalize(kProblems[i], reader), place,
                                                    static_cast<NSUInteger>(problems.count)));
    }
    if (!read.leftOut.empty())
        lines->addObject(NSString::stringWithFormat(
            _PBDoLocalize(u"_Left out is what these control words say: %@."_ns, reader),
            shownNames(read.leftOut)));
    return lines->componentsJoinedByString(u"\n"_ns);
}

TextFileProgress progressOf(NSDictionary* options) {
    id observer = options ? options->objectForKey(WRProgressKey) : nullptr;
    if (!observer) return {};
    return [observer](std::uint64_t read, std::uint64_t length) {
        send<void>(observer, "readerDidRead:of:"_sel, static_cast<unsigned long long>(read),
                   static_cast<unsigned long long>(length));
    };
}

}  // namespace

PELVOR_DEFINE_CLASS(WRRichTextReader, richTextPlugIn) {
    methods.instance<"readDocumentAtPath:options:", &WRRichTextReader::readDocumentAtPath_options>();
}

NSDictionary* WRRichTextReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    const TextFileSource source(path->fileSystemRepresentation());
    if (!source.isOpen()) return unreadableAnswer(path, source);
    RichText read = readRichText(source, progressOf(options));
    if (read.isUnreadable) return unreadableAnswer(path, source);
    if (!read.isRichText)
        return errorAnswer(
            WRErrorRefused,
            NSString::stringWithFormat(_PBDoLocalize(u"_The document \"%@\" is no rich text."_ns, this),
                                       path->lastPathComponent()));
    const RichTextObjects objects = objectsOf(read);
    auto* answer = NSMutableDictionary::dictionaryWithDictionary(
        NSDictionary::of({{WRTextKey, objects.string},
                          {WRRichTextKey, objects.text},
                          {WRByteCountKey, NSNumber::numberWithUnsignedLongLong(source.length())}}));
    if (objects.settings) answer->setObject_forKey(objects.settings, WRDocumentSettingsKey);
    NSString* message = messageOf(read, this);
    if (message->length()) {
        answer->setObject_forKey(message, WRMessageKey);
        answer->setObject_forKey(WRFidelityPart, WRFidelityKey);
    }
    return answer;
}

}  // namespace pelvor
