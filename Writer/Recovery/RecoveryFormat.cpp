// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/RecoveryFormat.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "Foundation/NSDate.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSSet.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSFontDescriptor.h"
#include "Text/NSParagraphStyle.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextTab.h"

namespace pelvor {
namespace {

enum class RecordKind : std::uint32_t { origin = 1, attributes = 2, edit = 3 };

struct RecordHead {
    std::uint32_t length, kind, checksum;
};

struct EditHead {
    std::uint32_t location, removed, runCount;
};

struct StoredRun {
    std::uint32_t attributes, length;
};

constexpr NSString* kPath = u"path"_ns;
constexpr NSString* kReader = u"reader"_ns;
constexpr NSString* kAnswer = u"answer"_ns;
constexpr NSString* kInode = u"inode"_ns;
constexpr NSString* kSize = u"size"_ns;
constexpr NSString* kSeconds = u"seconds"_ns;
constexpr NSString* kNanoseconds = u"nanoseconds"_ns;

template <class T>
void append(std::string& bytes, const T& value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// Takes a value from the front; false if the bytes are too few.
template <class T>
bool take(std::string_view& bytes, T& value) {
    if (bytes.size() < sizeof value) return false;
    std::memcpy(&value, bytes.data(), sizeof value);
    bytes.remove_prefix(sizeof value);
    return true;
}

std::uint32_t checksumOf(RecordHead head, std::string_view content) {
    const std::string_view start(reinterpret_cast<const char*>(&head), offsetof(RecordHead, checksum));
    return recoveryChecksum(content, recoveryChecksum(start));
}

// The content stands at the end of the bytes, behind room for the head.
void completeRecord(std::string& bytes, std::size_t start, RecordKind kind) {
    const std::string_view content = std::string_view(bytes).substr(start + sizeof(RecordHead));
    RecordHead head{static_cast<std::uint32_t>(content.size()), static_cast<std::uint32_t>(kind), 0};
    head.checksum = checksumOf(head, content);
    std::memcpy(bytes.data() + start, &head, sizeof head);
}

std::string_view contentOf(NSData* data) { return {static_cast<const char*>(data->bytes()), data->length()}; }

void addRecord(std::string& bytes, RecordKind kind, NSData* content) {
    const std::size_t start = bytes.size();
    bytes.resize(start + sizeof(RecordHead));
    bytes.append(contentOf(content));
    completeRecord(bytes, start, kind);
}

// MARK: Archives

// The classes of the values of attributes and settings, besides those of property lists.
NSSet* archivedClasses() {
    static NSSet* const classes = [] {
        auto* found = NSMutableArray::array();
        for (Class* cls : {NSAttributedString::classObject(), NSColor::classObject(), NSFont::classObject(),
                           NSFontDescriptor::classObject(), NSParagraphStyle::classObject(),
                           NSTextAttachment::classObject(), NSTextTab::classObject()})
            found->addObject(cls);
        if (Class* languages = classNamed("WRLanguage")) found->addObject(languages);
        return NSSet::initWithArray(found).leak();
    }();
    return classes;
}

bool isArchived(id value) {
    if (cast<NSString>(value) || cast<NSValue>(value) || cast<NSData>(value) || cast<NSDate>(value) ||
        cast<NSArray>(value) || cast<NSDictionary>(value))
        return true;
    for (id cls : archivedClasses())
        if (value->isKindOfClass(asClass(cls))) return true;
    return false;
}

// Values of other classes, such as a plug-in may have put into a text, are left out.
Retained<NSData> archiveOf(NSDictionary* dictionary) {
    auto known = NSMutableDictionary::init();
    for (NSDictionaryEntry entry : dictionary) {
        if (isArchived(entry.value))
            known->setObject_forKey(entry.value, entry.key);
        else
            NSLog(u"recovery leaves out \"%@\": its value is of class %s"_ns, entry.key,
                  entry.value->isa()->publicName());
    }
    try {
        return Retained<NSData>::retaining(NSKeyedArchiver::archivedDataWithRootObject(known));
    } catch (const NSException& exception) {
        NSLog(u"recovery leaves out attributes: %s"_ns, exception.reason().c_str());
        return Retained<NSData>::retaining(
            NSKeyedArchiver::archivedDataWithRootObject(NSDictionary::dictionary()));
    }
}

// Null for bytes that are no archive of a dictionary whose keys are strings.
NSDictionary* dictionaryOf(std::string_view bytes) {
    NSString* error = nullptr;
    NSData* data = NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
    id object =
        NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(data, archivedClasses(), &error);
    auto* dictionary = cast<NSDictionary>(object);
    if (!dictionary) return nullptr;
    for (NSDictionaryEntry entry : dictionary)
        if (!cast<NSString>(entry.key)) return nullptr;
    return dictionary;
}

template <class Number>
Number numberIn(NSDictionary* dictionary, NSString* key) {
    auto* number = cast<NSNumber>(dictionary->objectForKey(key));
    return number ? static_cast<Number>(number->longLongValue()) : 0;
}

RecoveryOrigin originOf(NSDictionary* dictionary) {
    RecoveryOrigin origin;
    origin.path.set(cast<NSString>(dictionary->objectForKey(kPath)));
    origin.reader.set(cast<NSString>(dictionary->objectForKey(kReader)));
    origin.answer.set(cast<NSDictionary>(dictionary->objectForKey(kAnswer)));
    origin.file = {numberIn<std::uint64_t>(dictionary, kInode), numberIn<std::uint64_t>(dictionary, kSize),
                   numberIn<std::int64_t>(dictionary, kSeconds),
                   numberIn<std::int64_t>(dictionary, kNanoseconds)};
    return origin;
}

// MARK: Reading

// Reads the records of a file, one after the other.
class RecoveryReader {
  public:
    explicit RecoveryReader(std::string_view bytes) : _rest(bytes) {}

    std::optional<RecoveryContent> read(std::string& reason) {
        if (_rest.substr(0, kRecoverySignature.size()) != kRecoverySignature) {
            reason = "it is no recovery file, or one of another version of Writer";
            return {};
        }
        _rest.remove_prefix(kRecoverySignature.size());
        for (;;) {
            AutoreleasePool pool;
            if (!takeRecord()) break;
        }
        if (!_hasOrigin || !_content.text) {
            reason = "it ends, or is damaged, before the end of the text";
            return {};
        }
        return std::move(_content);
    }

  private:
    bool takeRecord() {
        RecordHead head;
        if (!take(_rest, head) || head.length > _rest.size()) return false;
        const std::string_view content = _rest.substr(0, head.length);
        _rest.remove_prefix(head.length);
        if (checksumOf(head, content) != head.checksum) return false;
        switch (static_cast<RecordKind>(head.kind)) {
            case RecordKind::origin:
                return takeOrigin(content);
            case RecordKind::attributes:
                return takeAttributes(content);
            case RecordKind::edit:
                return takeEdit(content);
        }
        return false;
    }

    bool takeOrigin(std::string_view content) {
        NSDictionary* dictionary = dictionaryOf(content);
        if (!dictionary) return false;
        _content.origin = originOf(dictionary);
        return _hasOrigin = true;
    }

    // The text is worth more than its attributes.
    bool takeAttributes(std::string_view content) {
        NSDictionary* dictionary = dictionaryOf(content);
        if (!dictionary) NSLog(u"recovery cannot read the attributes of some text"_ns);
        _attributes.push_back(Retained<NSDictionary>::retaining(dictionary));
        return true;
    }

    bool takeEdit(std::string_view content) {
        EditHead head;
        std::vector<AttributeRun> runs;
        if (!take(content, head) || !takeRuns(content, head.runCount, runs)) return false;
        const std::uint64_t added = runs.empty() ? 0 : NSMaxRange(runs.back().range);
        const std::uint64_t length = _content.text ? _content.text->length() : 0;
        if (content.size() != added * sizeof(unichar) || head.location > length ||
            head.removed > length - head.location)
            return false;
        std::vector<unichar> units(static_cast<std::size_t>(added));
        if (added > 0) std::memcpy(units.data(), content.data(), content.size());
        auto piece = NSAttributedString::initWithString_runs(
            NSString::stringWithCharacters_length(units.data(), static_cast<NSUInteger>(added)), runs);
        if (!_content.text) _content.text = NSMutableAttributedString::init();
        _content.text->replaceCharactersInRange_withAttributedString({head.location, head.removed}, piece);
        _content.place = head.location + piece->length();
        return true;
    }

    bool takeRuns(std::string_view& content, std::uint32_t count, std::vector<AttributeRun>& runs) {
        if (count > content.size() / sizeof(StoredRun)) return false;
        std::uint64_t place = 0;
        for (; count > 0; --count) {
            StoredRun run;
            take(content, run);
            if (run.attributes >= _attributes.size() || run.length == 0) return false;
            runs.push_back({{static_cast<NSUInteger>(place), run.length}, _attributes[run.attributes]});
            place += run.length;
            if (place * sizeof(unichar) > kLongestRecoveryFile) return false;
        }
        return true;
    }

    std::string_view _rest;
    RecoveryContent _content;
    bool _hasOrigin = false;
    std::vector<Retained<NSDictionary>> _attributes;
};

}  // namespace

// MARK: Origins

RecoveryOrigin RecoveryOrigin::of(NSString* path, NSString* reader, NSDictionary* answer) {
    RecoveryOrigin origin;
    origin.path.set(path);
    origin.reader.set(reader);
    origin.answer.set(answer);
    origin.file = FileIdentity::ofFile(path);
    return origin;
}

Retained<NSData> archivedOrigin(const RecoveryOrigin& origin) {
    auto dictionary = NSMutableDictionary::init();
    const auto put = [&](NSString* key, id value) {
        if (value) dictionary->setObject_forKey(value, key);
    };
    put(kPath, origin.path);
    put(kReader, origin.reader);
    if (origin.answer) put(kAnswer, dictionaryOf(contentOf(archiveOf(origin.answer).get())));
    put(kInode, NSNumber::numberWithUnsignedLongLong(origin.file.inode));
    put(kSize, NSNumber::numberWithUnsignedLongLong(origin.file.size));
    put(kSeconds, NSNumber::numberWithLongLong(origin.file.seconds));
    put(kNanoseconds, NSNumber::numberWithLongLong(origin.file.nanoseconds));
    return archiveOf(dictionary);
}

// MARK: Writing

std::uint32_t recoveryChecksum(std::string_view bytes, std::uint32_t before) {
    static constexpr auto kTable = [] {
        std::array<std::uint32_t, 256> table{};
        for (std::uint32_t i = 0; i < table.size(); ++i) {
            table[i] = i;
            for (int bit = 0; bit < 8; ++bit) table[i] = (table[i] >> 1) ^ (table[i] & 1 ? 0xEDB88320u : 0u);
        }
        return table;
    }();
    std::uint32_t sum = ~before;
    for (const char byte : bytes) sum = (sum >> 8) ^ kTable[(sum ^ static_cast<unsigned char>(byte)) & 0xFF];
    return ~sum;
}

std::uint32_t RecoveryAttributes::numberOf(NSDictionary* attributes, std::string& bytes) {
    const auto [place, isNew] = _numbers.try_emplace(attributes, static_cast<std::uint32_t>(_kept.size()));
    if (isNew) {
        AutoreleasePool pool;
        _kept.push_back(Retained<NSDictionary>::retaining(attributes));
        addRecord(bytes, RecordKind::attributes, archiveOf(attributes).get());
    }
    return place->second;
}

void addOriginRecord(std::string& bytes, NSData* origin) { addRecord(bytes, RecordKind::origin, origin); }

bool addEditRecord(std::string& bytes, RecoveryAttributes& attributes, NSAttributedString* text,
                   NSRange range, NSUInteger removed) {
    std::vector<StoredRun> runs;
    for (AttributeRun run : text->runsInRange(range))
        runs.push_back({attributes.numberOf(run.attributes, bytes), run.range.length});
    const std::size_t start = bytes.size();
    const std::uint64_t size =
        sizeof(EditHead) + runs.size() * sizeof(StoredRun) + std::uint64_t{range.length} * sizeof(unichar);
    if (size > kLongestRecoveryFile) {
        errno = EFBIG;
        return false;
    }
    bytes.reserve(start + sizeof(RecordHead) + static_cast<std::size_t>(size));
    bytes.resize(start + sizeof(RecordHead));
    append(bytes, EditHead{range.location, removed, static_cast<std::uint32_t>(runs.size())});
    for (const StoredRun& run : runs) append(bytes, run);
    NSString* string = text->string();
    unichar units[4096];
    for (NSUInteger place = range.location; place < NSMaxRange(range);) {
        const NSUInteger count = std::min<NSUInteger>(4096, NSMaxRange(range) - place);
        string->getCharacters_range(units, {place, count});
        bytes.append(reinterpret_cast<const char*>(units), count * sizeof(unichar));
        place += count;
    }
    completeRecord(bytes, start, RecordKind::edit);
    return true;
}

std::optional<RecoveryContent> readRecovery(std::string_view bytes, std::string& reason) {
    return RecoveryReader(bytes).read(reason);
}

}  // namespace pelvor
