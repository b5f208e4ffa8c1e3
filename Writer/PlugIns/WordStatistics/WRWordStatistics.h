// SPDX-License-Identifier: Apache-2.0
// WRWordStatistics: counts sentences and words and finds the most frequent ones.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;

/// Tells about the words of a document. It is not needed before there is one, so its bundle asks to be loaded
/// then; its set-up is done in the load-time hooks of its own cycle.
///
/// User default "WRFrequentWordCount": how many of the most frequent words are told, five by default.
class WRWordStatistics : public NSObject {
    PELVOR_CLASS(WRWordStatistics, NSObject);

  public:
    /// Makes the set of characters that end sentences.
    static void didLoad();
    /// Reads the user default.
    static void activateToolkit();

    NSDictionary* examineDocument(id document);

  protected:
    WRWordStatistics() = default;
    ~WRWordStatistics() = default;
};

}  // namespace pelvor
