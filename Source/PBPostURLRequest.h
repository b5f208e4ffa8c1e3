// SPDX-License-Identifier: Apache-2.0
// PBPostURLRequest: a request that sends values and files as a form.
#pragma once

#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableURLRequest.h"

namespace pelvor {

/// A request that is filled, part by part, with a body of the type multipart/form-data:
///
///     auto request = PBPostURLRequest::initWithURL(url);
///     request->postValue_forKey(u"anna"_ns, u"user"_ns);
///     request->postContentsOfFile_forKey(path, u"letter"_ns);  // false if the file cannot be read
///     request->finalizePost();                                 // POST, with the body and its type
///     auto connection = NSURLConnection::initWithRequest_delegate(request, delegate);
///
/// All lines of the body end with a single line feed, and the closing line has no end:
///
///     --PELVOR-1-804289383-BOUND
///     Content-Disposition: form-data; name="user"
///
///     anna
///     --PELVOR-1-804289383-BOUND
///     Content-Disposition: form-data; name="letter"; filename="letter.txt"
///     Content-Transfer-Encoding: base64
///     Content-Type: application/octet-stream
///
///     RGVhciBCZWF0YSwK
///     --PELVOR-1-804289383-BOUND--
///
/// A server that follows RFC 7578 to the letter wants CR LF; docs/uploads.md says what others do with this
/// form. Nothing is escaped, and no value or file is searched for the boundary.
///
/// After `finalizePost` nothing can be added: operations that add a part do nothing. Text is sent as UTF-8.
/// One thread.
class PELVOR_EXPORT PBPostURLRequest : public NSMutableURLRequest {
    PELVOR_CLASS(PBPostURLRequest, NSMutableURLRequest);
    PELVOR_CREATORS(requestWithURL, requestWithURL_cachePolicy_timeoutInterval, initWithURL,
                    initWithURL_cachePolicy_timeoutInterval);

  public:
    /// Returns a new text to divide parts with: "PELVOR-1-804289383-BOUND", of a number that counts the calls
    /// from 1 and a random one. A subclass that has an operation of this name in its method table divides
    /// parts with its own texts.
    static NSString* uniquePartBoundary();

    /// These return requests with an empty body and a boundary from the `uniquePartBoundary` of the class.
    static PBPostURLRequest* requestWithURL(NSURL* url, Class* cls = classObject());
    static PBPostURLRequest* requestWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                        NSURLRequestCachePolicy policy,
                                                                        NSTimeInterval timeout,
                                                                        Class* cls = classObject());
    static Retained<PBPostURLRequest> initWithURL(NSURL* url, Class* cls = classObject());
    static Retained<PBPostURLRequest> initWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                              NSURLRequestCachePolicy policy,
                                                                              NSTimeInterval timeout,
                                                                              Class* cls = classObject());

    /// Write the boundary's line in front of a part, and the end of the line behind it. Between the two a
    /// caller appends a part of his own, head and all, to `body`.
    void beginPostPart();
    void endPostPart();
    /// Adds a part with the value's description.
    void postValue_forKey(id value, NSString* key);
    /// Adds a part for each entry, in the order of the dictionary.
    void postDictionary(NSDictionary* dictionary);
    /// Adds the file, in Base64. Returns false, with the reason in `errno`, if the file cannot be read.
    bool postContentsOfFile_forKey(NSString* path, NSString* key);
    /// Adds the file, in Base64 or as it is. Returns false, with the reason in `errno`, if the file cannot be
    /// read; for the rest see `postData_asFile_forKey_isEncode`.
    bool postContentsOfFile_forKey_isEncode(NSString* path, NSString* key, bool isEncode);
    /// Adds the data as a file of that name, in Base64 (lines of 76 characters) or as it is. Of a path, the
    /// last component counts; its characters that are not ASCII are replaced. Returns false and adds nothing
    /// if null data is to be encoded, and if the body would have more than 2^32 - 1 bytes.
    virtual bool postData_asFile_forKey_isEncode(NSData* data, NSString* file, NSString* key, bool isEncode);
    /// Closes the body, makes it the request's and the request a POST, and adds the field Content-Type.
    void finalizePost();

    // C++ only
    /// Returns the body that is built; null after `finalizePost`.
    NSMutableData* body() { return _pbPostData; }

  protected:
    PBPostURLRequest();
    ~PBPostURLRequest();

  private:
    void appendText(NSString* text);
    bool beginFile(NSString* file, NSString* key, bool isEncode, std::uint64_t length);

    Retained<NSMutableData> _pbPostData;
    Retained<NSString> _pbPostBoundary;
};

}  // namespace pelvor
