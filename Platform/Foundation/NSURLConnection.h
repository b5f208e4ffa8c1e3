// SPDX-License-Identifier: Apache-2.0
// NSURLConnection: sends a request and receives the answer.
#pragma once

#include <memory>

#include "Foundation/NSURLRequest.h"

namespace pelvor {

class NSData;
class NSRunLoop;
class NSTimer;
class NSURLError;
class NSURLResponse;
class URLTransfer;

/// Sends an http or https request and tells a delegate of the answer, while the run loop of the thread does
/// its other work; or waits for the answer.
///
///     auto connection = NSURLConnection::initWithRequest_delegate(request, loader);  // begins at once
///     connection->cancel();  // the delegate hears nothing more
///
///     NSURLError* error;
///     NSURLResponse* response;
///     NSData* answer = NSURLConnection::sendSynchronousRequest_returningResponse_error(
///         request, &response, &error);
///     if (!answer) NSLog(u"%@: %@"_ns, request->URL(), error);
///
/// The delegate is sent those of these messages that it has a method for, in the common modes of the run
/// loop. The arguments are the connection and:
///
///     connection:didSendBodyData:totalBytesWritten:totalBytesExpectedToWrite:   three numbers (long long):
///                                      the bytes since the last time, all bytes sent, the body's length
///     connection:didReceiveResponse:   the NSHTTPURLResponse, once, when the body begins
///     connection:didReceiveData:       a piece of the body
///     connectionDidFinishLoading:      the last message; a status such as 404 is no failure
///     connection:didFailWithError:     the last message instead: the NSURLError
///
/// A method may cancel the connection. The connection is retained by the run loop, and retains its delegate,
/// until the last message or `cancel`.
///
/// Redirections of GET, HEAD and POST are followed, at most ten, and not from https to http. Servers have to
/// prove by their certificates who they are. A load fails if the heads of the answers are longer than 256
/// KiB, if the body is longer than the request allows, and by the request's time-out. The header fields
/// Content-Length and Transfer-Encoding of a request are left out, since the length of the body is known. The
/// proxies that the environment names (https_proxy, no_proxy) are used. One thread.
///
/// libcurl, which does the work, is loaded with the first request.
class PELVOR_EXPORT NSURLConnection : public NSObject {
    PELVOR_CLASS(NSURLConnection, NSObject);
    PELVOR_CREATORS(connectionWithRequest_delegate, initWithRequest_delegate);

  public:
    /// Starts to load a copy of the request. A request that cannot be sent fails like others, from the run
    /// loop. Raises NSInvalidArgumentException if the request is null.
    static Retained<NSURLConnection> initWithRequest_delegate(NSURLRequest* request, id delegate,
                                                              Class* cls = classObject());
    static NSURLConnection* connectionWithRequest_delegate(NSURLRequest* request, id delegate,
                                                           Class* cls = classObject());
    /// Ends the load. Does nothing if the load has ended.
    void cancel();

    /// Waits for the answer and returns its body, borrowed; null if the load failed. `response`, unless null,
    /// receives the NSHTTPURLResponse, and `error`, unless null, the reason of a failure; both are borrowed,
    /// and null where there is none. Any thread; the thread's run loop does not run. Raises
    /// NSInvalidArgumentException if the request is null.
    static NSData* sendSynchronousRequest_returningResponse_error(NSURLRequest* request,
                                                                  NSURLResponse** response,
                                                                  NSURLError** error);
    /// Returns whether the request has an http or https URL.
    static bool canHandleRequest(NSURLRequest* request);

    /// Called by the run loop.
    void _descriptorIsReady(int descriptor);
    void _timerDidFire(NSTimer* timer);

  protected:
    NSURLConnection();
    ~NSURLConnection();

  private:
    void begin(NSURLRequest* request, id delegate);
    void watch(int descriptor, std::uint32_t events);
    void schedule();
    void tellNews();
    void end();
    template <class... Arguments>
    void tell(Retained<Object> delegate, SEL selector, Arguments... arguments);

    std::unique_ptr<URLTransfer> _transfer;  // null once the load has ended
    Retained<Object> _delegate;
    Retained<NSTimer> _timer;
    Unretained<NSRunLoop> _loop = nullptr;  // of the thread
    long long _bodyLength = 0, _sent = 0;
};

}  // namespace pelvor
