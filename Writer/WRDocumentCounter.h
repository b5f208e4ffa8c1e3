// SPDX-License-Identifier: Apache-2.0
// WRDocumentCounter: counts a document while the program has nothing else to do.
#pragma once

#include <optional>

#include "Foundation/NSNotification.h"
#include "Writer/TextMeasure.h"

namespace pelvor {

class PBDelayedActionTimer;
class PBIdleQueue;
class PBObserverSet;
class WRDocument;

/// Posted by the counter when its count is whole.
inline constexpr NSString* WRDocumentDidCountNotification = u"WRDocumentDidCountNotification"_ns;

/// Counts the words, paragraphs and code points of a document, a slice at each idle moment of the main loop.
/// When the document changes, the counter begins anew, a moment after the last of a burst of changes.
///
///     auto counter = WRDocumentCounter::initWithDocument(document);
///     counter->observers()->addObserver(window);
///     counter->start();
///
/// Observers are sent, with the counter, `counterDidAdvance:` after a slice and `counterDidFinish:` when the
/// count is whole, if they have these methods; then the notification above is posted. `invalidate` must be
/// called before the counter can end. Main thread, after the load-time hooks ran.
class WRDocumentCounter : public NSObject {
    PELVOR_CLASS(WRDocumentCounter, NSObject);
    PELVOR_CREATORS(initWithDocument);

  public:
    static Retained<WRDocumentCounter> initWithDocument(WRDocument* document, Class* cls = classObject());

    /// Begins the count anew, at the next idle moment.
    void start();
    /// Whether there is some counting still to be done, now or in a moment, because the document has changed.
    bool isCounting();
    /// How much was counted since the last start, in UTF-16 units.
    NSUInteger position() { return _text ? _text->position() : 0; }
    /// The count as far as it has come.
    const TextCount& count() { return _count; }
    WRDocument* document() { return _document; }
    PBObserverSet* observers() { return _observers; }
    /// Ends the counting for good.
    void invalidate();

    /// The messages of the notification centre, the timer and the idle queue.
    void documentDidChange(NSNotification* notification);
    void changesAreOver(PBDelayedActionTimer* timer);
    void countSlice();

  protected:
    WRDocumentCounter() = default;
    ~WRDocumentCounter();

  private:
    void finish();

    Retained<WRDocument> _document;
    Retained<PBObserverSet> _observers;
    Retained<PBIdleQueue> _queue;
    Retained<PBDelayedActionTimer> _timer;
    std::optional<TextCounter> _text;  // has a value in the middle of a count only
    TextCount _count;
};

}  // namespace pelvor
