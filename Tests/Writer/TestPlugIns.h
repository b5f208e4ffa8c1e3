// SPDX-License-Identifier: Apache-2.0
// Readers, writers and services that do what a test needs, and profiles for them.
#pragma once

#include <initializer_list>

#include "PBRegistry.h"

namespace pelvor {

/// Answers the path as the text.
class WRTestPathReader : public NSObject {
    PELVOR_CLASS(WRTestPathReader, NSObject);

  public:
    NSDictionary* readDocumentAtPath_options(NSString* path, NSDictionary* options);
};

/// Answers as the path's last component without extension says: "refused", "encoding", "nothing", "odd" (a
/// text that is a number), "throw", or, for the rest, none.
class WRTestReader : public NSObject {
    PELVOR_CLASS(WRTestReader, NSObject);

  public:
    NSDictionary* readDocumentAtPath_options(NSString* path, NSDictionary* options);
};

/// Remembers the text and the options.
class WRTestWriter : public NSObject {
    PELVOR_CLASS(WRTestWriter, NSObject);

  public:
    NSDictionary* writeText_toPath_options(NSString* text, NSString* path, NSDictionary* options);
    static Retained<NSString> writtenText;
};

/// Writes down what the counter of a document told it.
class WRTestObserver : public NSObject {
    PELVOR_CLASS(WRTestObserver, NSObject);

  public:
    void counterDidAdvance(id counter) { told += "advanced "; }
    void counterDidFinish(id counter) { told += "finished "; }
    void didCount(id notification) { told += "posted "; }
    std::string told;
};

extern Library testPlugIns;

/// Adds a profile to the registry. The document types may be none; an order of 0 is left out.
PBProfile* addProfile(PBRegistry* registry, const char* identifier, NSString* type,
                      std::initializer_list<const char*> documentTypes, int order,
                      const char* className = "WRTestPathReader");

}  // namespace pelvor
