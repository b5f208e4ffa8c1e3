// SPDX-License-Identifier: Apache-2.0
// Reads any bytes as rich text. What is written of the text is read again without loss, and is equal.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/RichText/Pictures.h"
#include "Writer/PlugIns/RichText/RichTextAnswer.h"
#include "Writer/PlugIns/RichText/RichTextMarkup.h"

namespace pelvor {
namespace {

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

// A text without its attachments, which are equal to themselves only, and their pictures.
struct TextContent {
    Retained<NSMutableAttributedString> text;
    std::vector<PictureEntry> pictures;

    explicit TextContent(NSAttributedString* whole) {
        if (!whole) return;
        text = whole->mutableCopy();
        for (AttributeRun run : whole->runs()) {
            id attachment = run.attributes->objectForKey(NSAttachmentAttributeName);
            if (attachment)
                require(getPicture(attachment, pictures.emplace_back()), "an attachment without a picture");
        }
        text->removeAttribute_range(NSAttachmentAttributeName, {0, text->length()});
    }
    bool hasOtherEnds() const {
        if (!text) return false;
        const StringUnits units(text->string());
        return units.view().find_first_of(u"\r\u2029") != std::u16string_view::npos;
    }
    bool operator==(const TextContent& other) const {
        const auto isSame = [](const PictureEntry& one, const PictureEntry& another) {
            return one.type == another.type && one.size == another.size && one.bytes == another.bytes;
        };
        return (text ? other.text && text->isEqualToAttributedString(other.text) : !other.text) &&
               std::equal(pictures.begin(), pictures.end(), other.pictures.begin(), other.pictures.end(),
                          isSame);
    }
};

struct Content {
    TextContent body, header, footer;
    Retained<NSMutableDictionary> otherSettings;

    explicit Content(const RichTextObjects& objects)
        : body(objects.text),
          header(part(objects, WRHeaderKey)),
          footer(part(objects, WRFooterKey)),
          otherSettings(NSMutableDictionary::init()) {
        if (objects.settings) otherSettings->addEntriesFromDictionary(objects.settings);
        otherSettings->removeObjectForKey(WRHeaderKey);
        otherSettings->removeObjectForKey(WRFooterKey);
    }
    bool operator==(const Content& other) const {
        return body == other.body && header == other.header && footer == other.footer &&
               otherSettings->isEqual(other.otherSettings);
    }
    // Every paragraph end is written as a line feed.
    bool hasOtherEnds() const {
        return body.hasOtherEnds() || header.hasOtherEnds() || footer.hasOtherEnds();
    }
    static NSAttributedString* part(const RichTextObjects& objects, NSString* key) {
        return objects.settings ? cast<NSAttributedString>(objects.settings->objectForKey(key)) : nullptr;
    }
};

// Runs cover the text, and the formats that they name are there.
void checkRuns(const RichText& read) {
    for (const RichTextBuilder* builder : {&read.body, &read.header, &read.footer}) {
        const RichTextBuilder::Run* last = nullptr;
        for (const RichTextBuilder::Run& run : builder->runs()) {
            require(last ? run.start >= last->start : run.start == 0, "runs out of order");
            require(run.character < read.characters.size() && run.paragraph < read.paragraphs.size(),
                    "an unknown format");

            last = &run;
        }
        require(builder->length() == 0 || !builder->runs().empty(), "text without runs");
    }
}

RichTextObjects readAgain(const RichTextObjects& objects) {
    const RichTextMarkup markup = markupOfRichText(objects.text, objects.settings);
    require(markup.leftOut.empty(), "something was not written");
    RichText read = readRichText(TextFileSource(std::string_view(markup.bytes)));
    require(read.isRichText && read.leftOut.empty(), "something was not read again");
    for (const RichTextProblems& problems : read.problems)
        require(problems.count == 0, "what was written is broken");
    return objectsOf(read);
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace pelvor;
    AutoreleasePool pool;
    RichText read = readRichText(TextFileSource(std::string_view(reinterpret_cast<const char*>(data), size)));
    if (!read.isRichText) return 0;
    checkRuns(read);
    const RichTextObjects first = objectsOf(read);
    const RichTextObjects second = readAgain(first);
    const Content content(first);
    if (!content.hasOtherEnds()) require(content == Content(second), "another text was read again");
    require(Content(second) == Content(readAgain(second)), "another text was read the second time");
    return 0;
}
