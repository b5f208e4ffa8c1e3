// SPDX-License-Identifier: Apache-2.0
// NSURL: the address of a resource.
#pragma once

#include <memory>

#include "Foundation/NSString.h"

namespace pelvor {

class NSNumber;
struct URLParts;

/// The address of a resource, by the rules of RFC 3986: absolute, "https://example.com/a?b", or relative to a
/// base.
///
///     NSURL* list = NSURL::URLWithString(u"https://example.com/updates/list.plist"_ns);
///     NSURL* notes = NSURL::URLWithString_relativeToURL(u"../notes.html"_ns, list);
///     notes->absoluteString();  // https://example.com/notes.html
///     NSURL* file = NSURL::fileURLWithPath(u"/home/anna/A letter.txt"_ns);
///     file->absoluteString();  // file:///home/anna/A%20letter.txt
///
/// Texts with characters that a URL may not contain, such as blanks and letters that are not ASCII, are
/// refused; `stringByAddingPercentEscapesUsingEncoding` escapes them. Immutable. Any thread.
class PELVOR_EXPORT NSURL : public NSObject {
    PELVOR_CLASS(NSURL, NSObject);
    PELVOR_CREATORS(URLWithString, URLWithString_relativeToURL, fileURLWithPath, initWithString,
                    initWithString_relativeToURL, initFileURLWithPath);

  public:
    // Creation. Operations whose names begin with "init" return owned URLs, the others borrowed ones. A null
    // text or path raises NSInvalidArgumentException.

    /// Returns null if the text is no URL and no relative reference.
    static NSURL* URLWithString(NSString* text, Class* cls = classObject());
    /// Returns the URL that the text means where it stands in the document `base`; null if the text is no URL
    /// and no relative reference. A null base stands for none.
    static NSURL* URLWithString_relativeToURL(NSString* text, NSURL* base, Class* cls = classObject());
    /// Returns the URL of a file. A relative path begins at the working folder of the process.
    static NSURL* fileURLWithPath(NSString* path, Class* cls = classObject());
    static Retained<NSURL> initWithString(NSString* text, Class* cls = classObject());
    static Retained<NSURL> initWithString_relativeToURL(NSString* text, NSURL* base,
                                                        Class* cls = classObject());
    static Retained<NSURL> initFileURLWithPath(NSString* path, Class* cls = classObject());

    /// Returns the whole URL, resolved against the base.
    NSString* absoluteString() { return _absolute; }
    /// Returns the text that the URL was made from.
    NSString* relativeString() { return _relative; }
    /// Returns the base; null if the URL was made without one.
    NSURL* baseURL() { return _base; }
    /// Returns a URL without a base; the receiver if it has none.
    NSURL* absoluteURL();

    // Components of the whole URL; null if the URL does not have the component. In user, password, host and
    // path, escapes are replaced by the characters that they stand for; such a component is null, too, if its
    // bytes are not UTF-8.

    /// In lower case: "https".
    NSString* scheme();
    NSString* user();
    NSString* password();
    /// An IPv6 address is in its brackets.
    NSString* host();
    NSNumber* port();
    /// Without a slash at its end: "/updates". Empty if there is no path, "/" for the root.
    NSString* path();
    /// Query and fragment keep their escapes.
    NSString* query();
    NSString* fragment();
    /// What follows the scheme and its colon; the whole text if there is no scheme.
    NSString* resourceSpecifier();
    /// Returns whether the scheme is "file".
    bool isFileURL();

    /// URLs are equal if their absolute texts are.
    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSURL> copy() { return cast<NSURL>(copyWithZone(nullptr)); }

  protected:
    NSURL();
    ~NSURL();

  private:
    Retained<NSString> _relative;
    Retained<NSURL> _base;
    Retained<NSString> _absolute;
    std::string _text;                 // _absolute in ASCII
    std::unique_ptr<URLParts> _parts;  // of _text
};

}  // namespace pelvor
