// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRUploader.h"

#include "Foundation/NSFileError.h"
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSURLConnection.h"
#include "Foundation/NSURLError.h"
#include "PBPostURLRequest.h"
#include "Writer/LocalizedText.h"
#include "Writer/WRProgressLine.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRUploader, writerLibrary) {
    methods.creator<"initWithProgress:", &WRUploader::initWithProgress>();
    methods.instance<"uploadFile:toAddress:", &WRUploader::uploadFile_toAddress>();
    methods.instance<"connection:didSendBodyData:totalBytesWritten:totalBytesExpectedToWrite:",
                     &WRUploader::connection_didSendBodyData_totalBytesWritten_totalBytesExpectedToWrite>();
    methods.instance<"connection:didReceiveResponse:", &WRUploader::connection_didReceiveResponse>();
    methods.instance<"connection:didFailWithError:", &WRUploader::connection_didFailWithError>();
    methods.instance<"connectionDidFinishLoading:", &WRUploader::connectionDidFinishLoading>();
}

WRUploader::~WRUploader() = default;

Retained<WRUploader> WRUploader::initWithProgress(WRProgressLine* progress, Class* cls) {
    auto self = make<WRUploader>(cls);
    self->_progress.set(progress);
    return self;
}

NSString* WRUploader::uploadFile_toAddress(NSString* path, NSString* address) {
    auto problem = [&](NSString* reason) {
        return localizedFormat(u"_The document \"%@\" cannot be sent to \"%@\": %@."_ns, path, address,
                               reason);
    };
    auto request = PBPostURLRequest::initWithURL(NSURL::URLWithString(address));
    if (!request->postContentsOfFile_forKey_isEncode(path, u"document"_ns, false))
        return problem(NSFileError::lastReadErrorAtPath(path)->localizedReason());
    request->finalizePost();
    _isOver = false;
    _reason = nullptr;
    auto connection = NSURLConnection::initWithRequest_delegate(request, this);
    while (!_isOver) NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    _progress->clear();
    return _reason ? problem(_reason) : nullptr;
}

void WRUploader::connection_didSendBodyData_totalBytesWritten_totalBytesExpectedToWrite(NSURLConnection*,
                                                                                        long long,
                                                                                        long long sent,
                                                                                        long long length) {
    _progress->showTask_done_of(localized(u"_Uploading"_ns), static_cast<unsigned long long>(sent),
                                static_cast<unsigned long long>(length));
}

void WRUploader::connection_didReceiveResponse(NSURLConnection*, NSURLResponse* response) {
    const auto status = static_cast<int>(cast<NSHTTPURLResponse>(response)->statusCode());
    if (status / 100 != 2)
        _reason.set(localizedFormat(u"_the server refused it with the status %d"_ns, status));
}

void WRUploader::connection_didFailWithError(NSURLConnection*, NSURLError* error) {
    _reason.set(error->localizedReason());
    _isOver = true;
}

void WRUploader::connectionDidFinishLoading(NSURLConnection*) { _isOver = true; }

}  // namespace pelvor
