// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/WRRecoveryJournal.h"

#include <algorithm>
#include <cerrno>
#include <chrono>

#include "Foundation/NSData.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/LocalizedText.h"
#include "Writer/Recovery/RecoveryFile.h"
#include "Writer/Recovery/RecoveryLibrary.h"

namespace pelvor {
namespace {

constexpr double kInterval = 1;        // seconds from a change to its writing
constexpr double kRetryInterval = 30;  // after writing has failed

// What the other thread writes.
struct Writing {
    std::shared_ptr<RecoveryFile> file;
    Retained<NSData> origin;
    Retained<NSAttributedString> text;
    bool isWhole;
    NSRange range;
    NSUInteger removed, place;

    int operator()() const noexcept {
        AutoreleasePool pool;
        try {
            errno = 0;
            const bool isWritten = isWhole ? file->writeText(origin, text, place)
                                           : file->writeEdit(origin, text, range, removed, place);
            return isWritten ? 0 : errno ? errno : EIO;
        } catch (const std::bad_alloc&) {
            return ENOMEM;
        } catch (...) {
            return EIO;
        }
    }
};

}  // namespace

PELVOR_DEFINE_CLASS(WRRecoveryJournal, recoveryLibrary) {
    methods.instance<"setTextStorage:", &WRRecoveryJournal::setTextStorage>();
    methods.instance<"textStorage:edited:range:changeInLength:invalidatedRange:",
                     &WRRecoveryJournal::textStorage_edited_range_changeInLength_invalidatedRange>();
    methods.instance<"writeChanges:", &WRRecoveryJournal::writeChanges>();
}

Retained<WRRecoveryJournal> WRRecoveryJournal::create(NSTextStorage* storage, RecoveryOrigin origin,
                                                      std::shared_ptr<RecoveryFile> file, NSUInteger place) {
    auto self = make<WRRecoveryJournal>(classObject());
    self->_origin = std::move(origin);
    self->_file = std::move(file);
    self->_place = place;
    storage->addLayoutManager(self);
    if (self->_file->isThere()) {
        self->_isChanged = true;
        self->writeChanges(nullptr);
    }
    return self;
}

WRRecoveryJournal::~WRRecoveryJournal() = default;

// MARK: Listening

void WRRecoveryJournal::setTextStorage(NSTextStorage* storage) {
    _storage = storage;
    if (!storage) writeIn(-1);
}

void WRRecoveryJournal::textStorage_edited_range_changeInLength_invalidatedRange(NSTextStorage*, unsigned,
                                                                                 NSRange range,
                                                                                 NSInteger changeInLength,
                                                                                 NSRange invalidated) {
    if (_countsEdit && !_countsEdit()) return;
    addChange(invalidated, changeInLength);
    _place = NSMaxRange(range);
    _isChanged = true;
    if (!_timer) writeIn(kInterval);
}

// All changes between two writings are one, from the first changed place to the last. The range is in the
// text as it is now.
void WRRecoveryJournal::addChange(NSRange range, NSInteger changeInLength) {
    const NSRange before{range.location, range.length - static_cast<NSUInteger>(changeInLength)};
    _changed = _changed.location == NSNotFound ? before : NSUnionRange(_changed, before);
    _changed.length += static_cast<NSUInteger>(changeInLength);
    _changeInLength += changeInLength;
}

// Between brackets the text holds changes that the storage has not told of.
bool WRRecoveryJournal::isTextSettled() {
    return _storage && !_storage->editedMask() && !_storage->hasUntoldChangesFor(this);
}

void WRRecoveryJournal::setOrigin(RecoveryOrigin origin) {
    _origin = std::move(origin);
    _archivedOrigin = nullptr;
    _isChanged = _isWholeDue = true;
    if (!_timer) writeIn(kInterval);
}

// MARK: Writing

// A negative time stops the timer. Without a storage there is nothing to write.
void WRRecoveryJournal::writeIn(double seconds) {
    if (_timer) _timer->invalidate();
    _timer = nullptr;
    if (seconds < 0 || !_storage) return;
    NSDate* date = NSDate::dateWithTimeIntervalSinceNow(seconds);
    _timer = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        date, 0, this, "writeChanges:"_sel, nullptr, false);
    NSRunLoop::currentRunLoop()->addTimer_forMode(_timer, NSRunLoopCommonModes);
}

void WRRecoveryJournal::writeChanges(NSTimer*) {
    writeIn(-1);
    using namespace std::chrono_literals;
    const bool isBusy = _writing.valid() && _writing.wait_for(0s) != std::future_status::ready;
    if (!isBusy) takeOutcome();
    if (!isBusy && !_timer && _isChanged && isTextSettled()) startWriting();
    if (!_timer && (_isChanged || _writing.valid())) writeIn(kInterval);
}

void WRRecoveryJournal::startWriting() {
    if (!_archivedOrigin) _archivedOrigin = archivedOrigin(_origin);
    _written = _storage->copy();
    const bool isWhole = _isWholeDue || _changed.location == NSNotFound;
    const NSUInteger removed = _changed.length - static_cast<NSUInteger>(_changeInLength);
    const NSUInteger place = std::min(_place, _written->length());
    Writing writing{_file, _archivedOrigin, _written, isWhole, _changed, removed, place};
    _isWholeDue = false;
    forgetChanges();
    try {
        _writing = std::async(std::launch::async, std::move(writing));
    } catch (const std::system_error& error) {  // no thread is to be had
        tellProblem(error.code().value());
    }
}

void WRRecoveryJournal::takeOutcome() {
    if (!_writing.valid()) return;
    const int code = _writing.get();
    _written = nullptr;
    if (code != 0) tellProblem(code);
}

// What is not on the disk now comes with the whole text.
void WRRecoveryJournal::tellProblem(int code) {
    _isChanged = _isWholeDue = true;
    writeIn(kRetryInterval);
    const auto handler = std::exchange(_problemHandler, nullptr);
    if (!handler) return;
    NSString* folder = NSString::ofUTF8(_file->folder());
    NSString* reason = NSFileError::errorWithCode_path_isWriting(code, folder, true)->localizedReason();
    handler(_origin.path
                ? localizedFormat(u"_What is typed in \"%@\" is not kept for the case of a crash: %@."_ns,
                                  _origin.path->lastPathComponent(), reason)
                : localizedFormat(u"_What is typed is not kept for the case of a crash: %@."_ns, reason));
}

bool WRRecoveryJournal::writeNow() {
    takeOutcome();
    if (_isChanged && isTextSettled()) startWriting();
    takeOutcome();
    return !_isChanged;
}

// MARK: Ending

void WRRecoveryJournal::forgetChanges() {
    _isChanged = false;
    _changed = {NSNotFound, 0};
    _changeInLength = 0;
}

void WRRecoveryJournal::documentIsInFile(RecoveryOrigin origin) {
    if (_writing.valid()) _writing.get();
    _written = nullptr;
    _file->remove();
    forgetChanges();
    writeIn(-1);
    _isWholeDue = true;
    _origin = std::move(origin);
    _archivedOrigin = nullptr;
}

void WRRecoveryJournal::stopListening() {
    auto kept = Retained<WRRecoveryJournal>::retaining(this);
    if (_storage) _storage->removeLayoutManager(this);
}

void WRRecoveryJournal::close() {
    documentIsInFile({});
    stopListening();
}

void WRRecoveryJournal::leave() {
    writeNow();
    stopListening();
    _file = std::make_shared<RecoveryFile>(_file->folder());  // gives up the lock of the old one
}

}  // namespace pelvor
