// SPDX-License-Identifier: Apache-2.0
// TKDesk: what the two hosts have in common, and no toolkit knows.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSNotification;
extern Library deskLibrary;

/// Tells a toolkit what to put into its menu, and counts the words of a text while the toolkit has nothing
/// else to do.
class TKDesk : public NSObject {
    PELVOR_CLASS(TKDesk, NSObject);

  public:
    /// Starts the library, which reads the declarations of the program's bundle.
    static Retained<TKDesk> create();

    /// Called with the titles when the registry has other ones, and once at the start.
    std::function<void(const std::vector<std::string>& titles)> showTitles;
    /// Called after each paragraph.
    std::function<void(unsigned words, bool isDone)> showCount;

    void start();
    /// The idle message: counts one paragraph.
    void countParagraph();
    void profilesDidChange(NSNotification* notification);

  protected:
    TKDesk() = default;
    ~TKDesk();

  private:
    Retained<NSArray> _paragraphs;
    unsigned _counted = 0;
    unsigned _words = 0;
};

}  // namespace pelvor
