// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURLConnection.h"

#include <chrono>
#include <utility>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Foundation/NSURLError.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Foundation/URLs/URLTransfer.h"
#include "Foundation/Values/NSExternalData.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSURLConnection, foundationLibrary) {
    methods.creator<"connectionWithRequest:delegate:", &NSURLConnection::connectionWithRequest_delegate>();
    methods.creator<"initWithRequest:delegate:", &NSURLConnection::initWithRequest_delegate>();
    methods.instance<"cancel", &NSURLConnection::cancel>();
    methods.classLevel<"sendSynchronousRequest:returningResponse:error:",
                       &NSURLConnection::sendSynchronousRequest_returningResponse_error>();
    methods.classLevel<"canHandleRequest:", &NSURLConnection::canHandleRequest>();
    methods.instance<"_descriptorIsReady:", &NSURLConnection::_descriptorIsReady>();
    methods.instance<"_timerDidFire:", &NSURLConnection::_timerDidFire>();
}

NSURLConnection::NSURLConnection() = default;

// The run loop keeps a connection that loads, so it is the loop that ends here, with its thread.
NSURLConnection::~NSURLConnection() {
    if (_transfer) _transfer->stopWatching();
}

// MARK: Beginning and end

Retained<NSURLConnection> NSURLConnection::initWithRequest_delegate(NSURLRequest* request, id delegate,
                                                                    Class* cls) {
    requireArgument(request, "initWithRequest:delegate:", "the request");
    auto connection = make<NSURLConnection>(cls);
    connection->begin(request, delegate);
    return connection;
}

NSURLConnection* NSURLConnection::connectionWithRequest_delegate(NSURLRequest* request, id delegate,
                                                                 Class* cls) {
    requireArgument(request, "connectionWithRequest:delegate:", "the request");
    return initWithRequest_delegate(request, delegate, cls).autorelease();
}

void NSURLConnection::begin(NSURLRequest* request, id delegate) {
    _loop = NSRunLoop::currentRunLoop();
    _delegate.set(delegate);
    _bodyLength = request->HTTPBody() ? request->HTTPBody()->length() : 0;
    _timer = NSTimer::initWithFireDate_interval_target_selector_userInfo_repeats(
        NSDate::distantFuture(), 60, this, "_timerDidFire:"_sel, nullptr, true);
    _loop->addTimer_forMode(_timer, NSRunLoopCommonModes);
    _transfer = std::make_unique<URLTransfer>(
        request, [] { return steadyTime(); },
        [this](int descriptor, std::uint32_t events) { watch(descriptor, events); });
    schedule();
}

void NSURLConnection::cancel() {
    auto self = Retained<Object>::retaining(this);
    end();
}

// Destroying the transfer takes its descriptors out of the run loop.
void NSURLConnection::end() {
    if (_timer) std::exchange(_timer, nullptr)->invalidate();
    std::unique_ptr<URLTransfer> transfer = std::move(_transfer);
    transfer.reset();
    _delegate = nullptr;
}

bool NSURLConnection::canHandleRequest(NSURLRequest* request) {
    NSString* scheme = request && request->URL() ? request->URL()->scheme() : nullptr;
    return scheme && (scheme->isEqual(u"http"_ns) || scheme->isEqual(u"https"_ns));
}

// MARK: The run loop

void NSURLConnection::watch(int descriptor, std::uint32_t events) {
    _loop->removeDescriptor_forMode(descriptor, NSRunLoopCommonModes);
    if (events)
        _loop->addDescriptor_events_target_selector_forMode(descriptor, events, this,
                                                            "_descriptorIsReady:"_sel, NSRunLoopCommonModes);
}

// What is left to tell when a method of the delegate raises is told in the next turn.
void NSURLConnection::schedule() {
    NSTimeInterval seconds = _transfer->hasNews() ? 0 : _transfer->nextMoment() - steadyTime();
    _timer->setFireDate(NSDate::dateWithTimeIntervalSinceNow(seconds));
}

void NSURLConnection::_descriptorIsReady(int descriptor) {
    if (!_transfer) return;
    auto self = Retained<Object>::retaining(this);
    _transfer->act(descriptor);
    tellNews();
}

void NSURLConnection::_timerDidFire(NSTimer*) {
    if (!_transfer) return;
    auto self = Retained<Object>::retaining(this);
    _transfer->act(URLTransfer::kNoDescriptor);
    tellNews();
}

template <class... Arguments>
void NSURLConnection::tell(Retained<Object> delegate, SEL selector, Arguments... arguments) {
    if (delegate && delegate->respondsToSelector(selector))
        send<void>(delegate, selector, this, arguments...);
}

// Each method of the delegate may cancel the connection, which ends the transfer.
void NSURLConnection::tellNews() {
    schedule();
    if (long long sent = _transfer->takeSentBytes())
        tell(_delegate, "connection:didSendBodyData:totalBytesWritten:totalBytesExpectedToWrite:"_sel,
             sent - std::exchange(_sent, sent), sent, _bodyLength);
    if (!_transfer) return;
    if (auto response = _transfer->takeResponse())
        tell(_delegate, "connection:didReceiveResponse:"_sel, static_cast<NSURLResponse*>(response.get()));
    if (!_transfer) return;
    if (std::vector<std::byte> bytes = _transfer->takeData(); !bytes.empty())
        tell(_delegate, "connection:didReceiveData:"_sel, NSData::of(bytes));
    if (!_transfer) return;
    if (!_transfer->isEnded()) return schedule();
    auto delegate = _delegate;
    auto error = Retained<NSURLError>::retaining(_transfer->error());
    end();
    if (error)
        tell(delegate, "connection:didFailWithError:"_sel, error.get());
    else
        tell(delegate, "connectionDidFinishLoading:"_sel);
}

// MARK: Waiting

NSData* NSURLConnection::sendSynchronousRequest_returningResponse_error(NSURLRequest* request,
                                                                        NSURLResponse** response,
                                                                        NSURLError** error) {
    requireArgument(request, "sendSynchronousRequest:returningResponse:error:", "the request");
    URLTransfer transfer(request, [] {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    });
    GrowingBytes body;
    Retained<NSURLResponse> head;
    while (true) {
        transfer.wait();
        if (auto arrived = transfer.takeResponse()) head = std::move(arrived);
        std::vector<std::byte> bytes = transfer.takeData();
        body.append({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        transfer.takeSentBytes();
        if (transfer.isEnded()) break;
    }
    if (response) *response = head ? std::move(head).autorelease() : nullptr;
    if (error)
        *error = transfer.error() ? Retained<NSURLError>::retaining(transfer.error()).autorelease() : nullptr;
    if (transfer.error()) return nullptr;
    return Retained<NSData>(NSExternalData::create(body)).autorelease();
}

}  // namespace pelvor
