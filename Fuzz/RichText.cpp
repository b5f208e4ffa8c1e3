// SPDX-License-Identifier: Apache-2.0
// Reads any bytes as rich text. What is written of the text is read again without loss, and is equal.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Foundation/NSMutableAttributedString.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/TextAttributes.h"
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

// The attributes without pictures, whose attachments are equal to themselves only, and the pictures.
struct Content {
    Retained<NSMutableAttributedString> text;
    std::vector<PictureEntry> pictures;
    Retained<NSDictionary> settings;

    explicit Content(const RichTextObjects& objects)
        : text(objects.text->mutableCopy()), settings(objects.settings) {
        for (AttributeRun run : objects.text->runs()) {
            id attachment = run.attributes->objectForKey(NSAttachmentAttributeName);
            if (attachment)
                require(getPicture(attachment, pictures.emplace_back()), "an attachment without a picture");
        }
        text->removeAttribute_range(NSAttachmentAttributeName, {0, text->length()});
    }
    bool operator==(const Content& other) const {
        if (!text->isEqualToAttributedString(other.text) || pictures.size() != other.pictures.size())
            return false;
        for (std::size_t i = 0; i < pictures.size(); ++i)
            if (pictures[i].type != other.pictures[i].type || !(pictures[i].size == other.pictures[i].size) ||
                pictures[i].bytes != other.pictures[i].bytes)
                return false;
        return settings ? settings->isEqual(other.settings) : !other.settings;
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
    // Every paragraph end becomes a line feed.
    const StringUnits units(first.text->string());
    const bool hasOtherEnds = units.view().find_first_of(u"\r\u2029") != std::u16string_view::npos;
    if (!hasOtherEnds && !first.settings)
        require(Content(first) == Content(second), "another text was read again");
    require(Content(second) == Content(readAgain(second)), "another text was read the second time");
    return 0;
}
