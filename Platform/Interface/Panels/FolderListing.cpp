// SPDX-License-Identifier: Apache-2.0
#include "Interface/Panels/FolderListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <unicode/ucol.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "Foundation/NSArray.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/UserLanguages.h"
#include "Interface/Panels/PanelMessages.h"
#include "Runtime/AutoreleasePool.h"
#include "Shared/Descriptor.h"

namespace pelvor {
namespace {

// ICU's name for the user's first language.
std::string userLocale() {
    const std::string tag = static_cast<NSString*>(userLanguages()->objectAtIndex(0))->toUTF8();
    char name[ULOC_FULLNAME_CAPACITY] = "";
    UErrorCode error = U_ZERO_ERROR;
    uloc_forLanguageTag(tag.c_str(), name, sizeof name, nullptr, &error);
    return U_SUCCESS(error) ? name : "";
}

// Makes keys whose bytes are in the order of the names.
class NameOrder {
  public:
    NameOrder() {
        UErrorCode error = U_ZERO_ERROR;
        _collator.reset(ucol_open(userLocale().c_str(), &error));
        if (_collator) ucol_setAttribute(_collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &error);
    }

    std::string keyOf(NSString* name) {
        if (!_collator) return name->toUTF8();
        const NSUInteger length = name->length();
        _units.resize(length);
        name->getCharacters_range(_units.data(), {0, length});
        const int32_t size = ucol_getSortKey(_collator.get(), _units.data(), static_cast<int32_t>(length),
                                             _bytes, sizeof _bytes);
        return {reinterpret_cast<const char*>(_bytes),
                std::min(static_cast<std::size_t>(size), sizeof _bytes)};
    }

  private:
    struct Close {
        void operator()(UCollator* collator) const { ucol_close(collator); }
    };
    std::unique_ptr<UCollator, Close> _collator;
    std::u16string _units;
    std::uint8_t _bytes[4096];
};

bool isFolder(int folder, const dirent& entry) {
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
    struct stat status;
    return ::fstatat(folder, entry.d_name, &status, AT_NO_AUTOMOUNT) == 0 && S_ISDIR(status.st_mode);
}

const char* systemPathOf(NSString* path) {
    return NSFileManager::defaultManager()->fileSystemRepresentationWithPath(path);
}

// What is known of the entry without asking a server again.
bool look(NSString* path, struct statx& status) {
    const char* name = systemPathOf(path);
    return name && ::statx(AT_FDCWD, name, AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
                           STATX_MTIME | STATX_SIZE | STATX_TYPE, &status) == 0;
}

}  // namespace

// How the user's language writes dates and numbers.
class FolderListing::Formats {
  public:
    Formats() {
        const std::string locale = userLocale();
        UErrorCode error = U_ZERO_ERROR;
        _dates.reset(
            udat_open(UDAT_SHORT, UDAT_MEDIUM_RELATIVE, locale.c_str(), nullptr, -1, nullptr, 0, &error));
        error = U_ZERO_ERROR;
        _numbers.reset(unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &error));
    }

    NSString* dateText(double seconds) {
        UErrorCode error = U_ZERO_ERROR;
        UChar text[kRoom];
        return textOf(text, udat_format(_dates.get(), seconds * 1000, text, kRoom, nullptr, &error), error);
    }
    NSString* sizeText(double bytes) {
        if (bytes == 1) return panelText(u"_1 byte"_ns);
        NSString* const kUnits[] = {u"_%@ bytes"_ns, u"_%@ KB"_ns, u"_%@ MB"_ns, u"_%@ GB"_ns};
        std::size_t unit = 0;
        for (; bytes >= 999.5 && unit + 1 < std::size(kUnits); ++unit) bytes /= 1000;
        if (_numbers)
            unum_setAttribute(_numbers.get(), UNUM_MAX_FRACTION_DIGITS, unit > 0 && bytes < 9.95 ? 1 : 0);
        UErrorCode error = U_ZERO_ERROR;
        UChar text[kRoom];
        NSString* number =
            textOf(text, unum_formatDouble(_numbers.get(), bytes, text, kRoom, nullptr, &error), error);
        return NSString::stringWithFormat(panelText(kUnits[unit]), number);
    }

  private:
    static constexpr int kRoom = 128;
    static NSString* textOf(const UChar* text, int32_t length, UErrorCode error) {
        return U_SUCCESS(error) && length <= kRoom
                   ? NSString::stringWithCharacters_length(text, static_cast<NSUInteger>(length))
                   : u""_ns;
    }
    template <void (*close)(void**)>
    struct Close {
        void operator()(void** format) const { close(format); }
    };
    std::unique_ptr<UDateFormat, Close<udat_close>> _dates;
    std::unique_ptr<UNumberFormat, Close<unum_close>> _numbers;
};

FolderListing::FolderListing() : _formats(std::make_unique<Formats>()) {}
FolderListing::~FolderListing() = default;

bool FolderListing::read(NSString* folder, bool showsHidden, const std::function<bool(NSString*)>& shows) {
    const char* name = systemPathOf(folder);
    if (!name) return failWith(ENOENT);
    Descriptor opened = openedAt(AT_FDCWD, name, O_RDONLY | O_DIRECTORY);
    struct stat status;
    if (!opened || ::fstat(opened, &status) != 0) return false;
    const auto close = [](DIR* each) { ::closedir(each); };
    const std::unique_ptr<DIR, decltype(close)> stream(::fdopendir(opened), close);
    if (!stream) return false;
    const int number = opened.release();

    struct Found {
        Row row;
        std::string key;
    };
    std::vector<Found> found;
    NameOrder order;
    NSFileManager* files = NSFileManager::defaultManager();
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        const bool isHidden = entry->d_name[0] == '.';
        if (isHidden &&
            (!showsHidden || !std::strcmp(entry->d_name, ".") || !std::strcmp(entry->d_name, "..")))
            continue;
        const AutoreleasePool pool;
        NSString* text = files->stringWithFileSystemRepresentation_length(
            entry->d_name, static_cast<NSUInteger>(std::strlen(entry->d_name)));
        if (!text || (shows && !shows(folder->stringByAppendingPathComponent(text)))) continue;
        found.push_back(
            {{Retained<NSString>::retaining(text), {}, {}, isFolder(number, *entry)}, order.keyOf(text)});
        errno = 0;
    }
    if (errno != 0) return false;
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        return a.row.isFolder != b.row.isFolder ? a.row.isFolder : a.key < b.key;
    });
    _rows.clear();
    for (Found& each : found) _rows.push_back(std::move(each.row));
    _folder = folder->copy();
    _changeTime = status.st_mtim;
    return true;
}

bool FolderListing::hasChanged() {
    struct stat status;
    const char* name = _folder ? systemPathOf(_folder) : nullptr;
    return !name || ::stat(name, &status) != 0 || status.st_mtim.tv_sec != _changeTime.tv_sec ||
           status.st_mtim.tv_nsec != _changeTime.tv_nsec;
}

NSString* FolderListing::pathOfRow(std::size_t row) {
    return _folder->stringByAppendingPathComponent(_rows[row].name);
}

NSInteger FolderListing::rowOfName(NSString* name) {
    const auto found =
        std::find_if(_rows.begin(), _rows.end(), [&](const Row& row) { return row.name->isEqual(name); });
    return found == _rows.end() ? -1 : static_cast<NSInteger>(found - _rows.begin());
}

const FolderListing::Row& FolderListing::lookedAt(std::size_t index) {
    Row& row = _rows[index];
    if (row.change) return row;
    row.change = row.size = u""_ns->copy();
    struct statx status;
    if (!look(pathOfRow(index), status)) return row;
    row.change = _formats->dateText(static_cast<double>(status.stx_mtime.tv_sec))->copy();
    if (S_ISREG(status.stx_mode)) row.size = _formats->sizeText(static_cast<double>(status.stx_size))->copy();
    return row;
}

void FolderListing::insertRow(NSString* name) { _rows.insert(_rows.begin(), {name->copy(), {}, {}, true}); }

}  // namespace pelvor
