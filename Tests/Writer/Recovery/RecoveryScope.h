// SPDX-License-Identifier: Apache-2.0
// RecoveryScope: a folder for recovery files and the journal of one text.
#pragma once

#include "Foundation/NSMutableAttributedString.h"
#include "Prelude.h"
#include "TemporaryFolder.h"
#include "Text/TextAttributes.h"
#include "Writer/Recovery/RecoveryFile.h"
#include "Writer/Recovery/RecoveryStore.h"
#include "Writer/Recovery/WRRecoveryJournal.h"

namespace pelvor {

/// A storage of the text with a journal, in a folder of its own.
struct RecoveryScope {
    explicit RecoveryScope(NSString* text = u"Dear Anna,\n"_ns)
        : storage(NSTextStorage::initWithString_attributes(text, nullptr)) {
        begin({}, store.newFile());
    }
    ~RecoveryScope() { journal->close(); }

    void begin(RecoveryOrigin origin, std::shared_ptr<RecoveryFile> file, NSUInteger place = 0) {
        journal = WRRecoveryJournal::create(storage, std::move(origin), std::move(file), place);
    }
    void type(NSString* text) { storage->replaceCharactersInRange_withString({storage->length(), 0}, text); }
    /// The names in the folder.
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(store.folder(), error))
            names.push_back(entry.path().filename());
        return names;
    }
    /// The plain texts that a Writer would find that starts now.
    std::vector<std::string> found() const {
        std::vector<std::string> texts;
        for (const AbandonedDocument& document : store.abandonedDocuments())
            texts.push_back(document.text->string()->toUTF8());
        return texts;
    }

    TemporaryFolder folder;
    RecoveryStore store{folder.path("state/recovery")};
    Retained<NSTextStorage> storage;
    Retained<WRRecoveryJournal> journal;
};

/// Changes a text in a random way, always in the same one for the same generator.
inline void changeRandomly(NSMutableAttributedString* text, std::mt19937& random) {
    const NSUInteger start = random() % (text->length() + 1);
    const NSRange range{start, std::min<NSUInteger>(random() % 30, text->length() - start)};
    if (random() % 4 == 0) {
        auto* number = NSNumber::numberWithInt(static_cast<int>(random() % 5));
        return text->addAttribute_value_range(NSKernAttributeName, number, range);
    }
    const std::u16string units(random() % 3 * 33, static_cast<unichar>(u'a' + random() % 26));
    text->replaceCharactersInRange_withString(range, NSString::of(units));
}

}  // namespace pelvor
