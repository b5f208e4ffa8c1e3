// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextAnswer.h"

#include <unordered_map>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/FormatAttributes.h"

namespace pelvor {

NSString* const kPageNumberKeys[] = {WRPageWidthKey, WRPageHeightKey,   WRLeftMarginKey,  WRRightMarginKey,
                                     WRTopMarginKey, WRBottomMarginKey, WRHeaderPlaceKey, WRFooterPlaceKey};
NSString* const kDocumentFieldKeys[] = {WRTitleKey, WRAuthorKey, WRSubjectKey, WRKeywordsKey, WRCommentKey};

namespace {

// Turns texts with numbers of formats into texts with attributes.
class RichTextObjectMaker {
  public:
    explicit RichTextObjectMaker(const RichText& read) : _read(read), _formats(read.tables) {}

    Retained<NSAttributedString> textOf(RichTextBuilder& builder, NSString* string) {
        std::vector<AttributeRun> runs;
        const auto& marked = builder.runs();
        for (std::size_t i = 0; i < marked.size(); ++i) {
            const std::size_t end = i + 1 < marked.size() ? marked[i + 1].start : string->length();
            NSDictionary* attributes = attributesOf(marked[i]);
            const NSRange range{static_cast<NSUInteger>(marked[i].start),
                                static_cast<NSUInteger>(end - marked[i].start)};
            if (range.length == 0) continue;
            if (!runs.empty() && runs.back().attributes == attributes)
                runs.back().range.length += range.length;
            else
                runs.push_back({range, attributes});
        }
        return NSAttributedString::initWithString_runs(string, runs);
    }

  private:
    NSDictionary* attributesOf(const RichTextBuilder::Run& run) {
        auto& attributes = _attributes[std::uint64_t{run.paragraph} << 32 | run.character];
        if (!attributes)
            attributes =
                _formats.attributesOf(_read.characters[run.character], _read.paragraphs[run.paragraph]);
        return attributes;
    }

    const RichText& _read;
    FormatAttributes _formats;
    std::unordered_map<std::uint64_t, Retained<NSDictionary>> _attributes;
};

}  // namespace

RichTextObjects objectsOf(RichText& read) {
    RichTextObjectMaker maker(read);
    auto settings = NSMutableDictionary::init();
    for (std::size_t i = 0; i < read.pageNumbers.size(); ++i)
        if (read.pageNumbers[i] >= 0)
            settings->setObject_forKey(
                NSNumber::numberWithFloat(static_cast<float>(read.pageNumbers[i]) / 20), kPageNumberKeys[i]);
    for (std::size_t i = 0; i < read.fields.size(); ++i)
        if (!read.fields[i].empty())
            settings->setObject_forKey(NSString::of(read.fields[i]), kDocumentFieldKeys[i]);
    if (read.header.length())
        settings->setObject_forKey(maker.textOf(read.header, read.header.takeString()).get(), WRHeaderKey);
    if (read.footer.length())
        settings->setObject_forKey(maker.textOf(read.footer, read.footer.takeString()).get(), WRFooterKey);
    RichTextObjects objects;
    objects.string.set(read.body.takeString());
    objects.text = maker.textOf(read.body, objects.string);
    if (settings->count()) objects.settings = std::move(settings);
    return objects;
}

}  // namespace pelvor
