// SPDX-License-Identifier: Apache-2.0
// Tests of loading over http, against servers that do what they should not.
#include "Foundation/NSURLConnection.h"

#include <optional>
#include <regex>

#include "Foundation/ClockScope.h"
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableURLRequest.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSURL-Contents.h"
#include "Foundation/NSURLError.h"
#include "LoopbackServer.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace {

using Call = LoopbackServer::Call;

std::string textOf(NSData* data) {
    return data ? std::string(static_cast<const char*>(data->bytes()), data->length()) : "(null)";
}

NSURL* urlOf(const std::string& text) { return NSURL::URLWithString(NSString::ofUTF8(text)); }

/// Notes what it is told as a connection's delegate.
class LoadRecorder : public NSObject {
    PELVOR_CLASS(LoadRecorder, NSObject);

  public:
    std::vector<std::string> heard;
    std::string body;
    bool isOver = false;
    std::function<void(NSURLConnection*)> reaction;

    void note(NSURLConnection* connection, const std::string& text) {
        if (heard.empty() || heard.back() != text) heard.push_back(text);
        if (reaction) reaction(connection);
    }
    void sent(NSURLConnection* connection, long long bytes, long long all, long long length) {
        EXPECT_TRUE(bytes > 0 && bytes <= all && all <= length);
        note(connection, all == length ? "all sent" : "sent");
    }
    void receiveResponse(NSURLConnection* connection, NSURLResponse* response) {
        note(connection, shown(cast<NSHTTPURLResponse>(response)->statusCode()));
    }
    void receiveData(NSURLConnection* connection, NSData* data) {
        body += textOf(data), note(connection, "data");
    }
    void finish(NSURLConnection* connection) { isOver = true, note(connection, "finished"); }
    void fail(NSURLConnection* connection, NSURLError* error) {
        isOver = true, note(connection, shown(error->code()));
    }
    /// What is heard of a load until its end. Only a reaction may raise.
    std::string load(NSURLRequest* request) {
        auto connection = NSURLConnection::initWithRequest_delegate(request, this);
        EXPECT_THAT(heard, IsEmpty());
        while (!isOver)
            EXPECT_TRUE(RAISED(NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr))
                            .empty() ||
                        reaction);
        return joined(heard);
    }
};

constinit Library connectionTestLibrary{"ConnectionTest", {}, kClassesOf<LoadRecorder>, {}};
PELVOR_DEFINE_CLASS(LoadRecorder, connectionTestLibrary) {
    methods.instanceAs<"connection:didSendBodyData:totalBytesWritten:totalBytesExpectedToWrite:",
                       &LoadRecorder::sent>();
    methods.instanceAs<"connection:didReceiveResponse:", &LoadRecorder::receiveResponse>();
    methods.instanceAs<"connection:didReceiveData:", &LoadRecorder::receiveData>();
    methods.instanceAs<"connectionDidFinishLoading:", &LoadRecorder::finish>();
    methods.instanceAs<"connection:didFailWithError:", &LoadRecorder::fail>();
}

/// "200 body", or the code of the error.
std::string loaded(NSURLRequest* request) {
    NSURLResponse* response;
    NSURLError* error;
    NSData* data =
        NSURLConnection::sendSynchronousRequest_returningResponse_error(request, &response, &error);
    EXPECT_EQ(data == nullptr, error != nullptr);
    if (error) return shown(error->code());
    return shown(cast<NSHTTPURLResponse>(response)->statusCode()) + " " + textOf(data);
}
NSURLRequest* requestOf(const std::string& url) { return NSURLRequest::requestWithURL(urlOf(url)); }

// libcurl asks again only five times in a load on a connection that the server closed without saying so.
std::string redirection(const std::string& place) {
    return "HTTP/1.1 302 Elsewhere\nConnection: close\nLocation: " + place + "\nContent-Length: 0\n\n";
}

/// A server that sends a text, whose lines end with \r\n and in which TARGET is what was asked for, and then
/// closes, or stalls, or sends another text until the client goes.
struct Behaviour {
    const char *name, *result;
    std::string text;
    std::optional<std::string> then = {};

    bool isSlow() const { return then && then->size() < 2; }
    void answer(Call& call) const {
        if (call.target() == "/xxxxxxxxxx") return call.answer("there");
        const std::string ended = std::regex_replace(text, std::regex("\n"), "\r\n");
        call.send(std::regex_replace(ended, std::regex("TARGET"), call.target()));
        if (then == "") return call.waitUntilClientGoes();
        while (then && call.send(*then))
            if (isSlow()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
};

const std::string kOK = "HTTP/1.1 200 OK\n", kFlood(65536, 'x');
const Behaviour kBehaviours[] = {
    {"Answer", "200 hello", kOK + "Content-Length: 5\n\nhello"},
    {"Empty", "204 ", "HTTP/1.1 204 Nothing\n\n"},
    {"NotFound", "404 gone", "HTTP/1.0 404 No\n\ngone"},
    {"Chunked", "200 abcde", kOK + "Transfer-Encoding: chunked\n\n3\nabc\n2;x=y\nde\n0\nA: b\n\n"},
    {"BrokenChunk", "-1005", kOK + "Transfer-Encoding: chunked\n\nzz\nabc"},
    {"InterimAnswers", "200 late", "HTTP/1.1 100 Go on\nA: b\n\nHTTP/1.1 103 Hints\n\n" + kOK + "\nlate"},
    {"TenRedirections", "200 there", redirection("TARGETx")},
    {"Circle", "-1007", redirection("TARGET")},
    {"RedirectionToFile", "-1002", redirection("file:///etc/hostname")},
    {"RedirectionToOtherScheme", "-1002", redirection("ftp://127.0.0.1/")},
    {"ClosesEarly", "-1005", ""},
    {"Truncated", "-1005", kOK + "Content-Length: 9\n\nabc"},
    {"TruncatedHead", "-1005", kOK + "Content-Length: 0\n\r"},
    {"TruncatedInterimAnswer", "-1005", "HTTP/1.1 103 Hints\nA: b\n"},
    {"Rubbish", "-1011", "\x01\x02rubbish\n\n"},
    {"StallsBeforeTheHead", "-1001", "", ""},
    {"StallsInTheBody", "-1001", kOK + "Content-Length: 9\n\nabc", ""},
    {"Drips", "-1001", kOK + "\n", "x"},
    {"FloodsTheHead", "-1103", kOK, "X-Flood: aaaaaaaaaaaaaaaaaaaaaaaaa\r\n"},
    {"FloodsALineOfTheHead", "-1103", "HTTP/1.1 200 ", kFlood},
    {"FloodsInterimAnswers", "-1103", "", "HTTP/1.1 102 Wait\r\nX: aaaaaaaaaaaaaaaaaaaaaaaa\r\n\r\n"},
    {"FloodsTheBody", "-1103", kOK + "\n", kFlood},
    {"SaysTooMuch", "-1103", kOK + "Content-Length: 1000001\n\n"},
};

class ServerTest : public ::testing::TestWithParam<Behaviour> {};
INSTANTIATE_TEST_SUITE_P(Servers, ServerTest, ::testing::ValuesIn(kBehaviours),
                         [](const auto& row) { return row.param.name; });

TEST_P(ServerTest, GivesTheSameWithAndWithoutARunLoop) {
    AutoreleasePool pool;
    LoopbackServer server([](Call& call) { GetParam().answer(call); });
    auto request = NSMutableURLRequest::initWithURL(urlOf(server.url()));
    request->setTimeoutInterval(GetParam().isSlow() ? 0.05 : 30);
    request->setMaximumResponseLength(1'000'000);
    EXPECT_EQ(loaded(request), GetParam().result);
    auto delegate = make<LoadRecorder>();
    delegate->load(request);
    std::string last = delegate->heard.back();
    if (last == "finished") last = delegate->heard[0] + " " + delegate->body;
    EXPECT_EQ(last, GetParam().result);
}

TEST(NSURLConnectionTest, SendsWhatTheRequestSays) {
    AutoreleasePool pool;
    LoopbackServer server([](Call& call) { call.answer(""); });
    auto request = NSMutableURLRequest::initWithURL(urlOf(server.url("/a%20b?q#f")));
    request->setValue_forHTTPHeaderField(u"on"_ns, u"X-Lamp"_ns);
    request->setValue_forHTTPHeaderField(u""_ns, u"X-Empty"_ns);
    request->setValue_forHTTPHeaderField(u"7"_ns, u"Content-Length"_ns);
    for (NSString* method : {u"GET"_ns, u"HEAD"_ns, u"POST"_ns, u"PUT"_ns, u"DELETE"_ns}) {
        request->setHTTPMethod(method);
        request->setHTTPBody(method->isEqual(u"PUT"_ns) ? NSData::dataWithBytes_length("a\0b", 3) : nullptr);
        EXPECT_EQ(loaded(request), "200 ");
    }
    request->setCachePolicy(NSURLRequestReloadIgnoringCacheData);
    EXPECT_EQ(loaded(request), "200 ");
    const std::string rest = " /a%20b?q HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(server.port()) +
                             "\r\nUser-Agent: Pelvor\r\nAccept: */*\r\n";
    const std::string fields = "X-Lamp: on\r\nX-Empty:\r\n", length = "Content-Length: ";
    std::vector<std::string> heads;
    for (const Call& call : server.calls()) heads.push_back(call.head + call.body);
    EXPECT_THAT(heads, ElementsAre("GET" + rest + fields + "\r\n", "HEAD" + rest + fields + "\r\n",
                                   "POST" + rest + fields + length + "0\r\n\r\n",
                                   "PUT" + rest + fields + length + "3\r\n\r\na" + '\0' + "b",
                                   "DELETE" + rest + fields + "\r\n",
                                   "DELETE" + rest + fields + "Cache-Control: no-cache\r\n\r\n"));
}

TEST(NSURLConnectionTest, TellsOfProgress) {
    AutoreleasePool pool;
    LoopbackServer server([](Call& call) { call.answer(std::string(3'000'000, 'y')); });
    auto request = NSMutableURLRequest::initWithURL(urlOf(server.url()));
    request->setHTTPMethod(u"POST"_ns);
    request->setHTTPBody(NSMutableData::dataWithLength(20'000'000));
    auto delegate = make<LoadRecorder>();
    EXPECT_EQ(delegate->load(request), "sent, all sent, 200, data, finished");
    EXPECT_EQ(delegate->body, std::string(3'000'000, 'y'));
    EXPECT_EQ(server.calls()[0].body.size(), 20'000'000u);
}

TEST(NSURLConnectionTest, IsCancelledByAnyMessage) {
    LoopbackServer server([](Call& call) { call.answer("abc"); });
    for (std::size_t count = 1; count <= 4; ++count) {
        AutoreleasePool pool;
        auto request = NSMutableURLRequest::initWithURL(urlOf(server.url()));
        request->setHTTPBody(NSData::dataWithBytes_length("x", 1));
        auto delegate = make<LoadRecorder>();
        delegate->reaction = [&](NSURLConnection* connection) {
            if (delegate->heard.size() < count) return;
            connection->cancel();
            delegate->isOver = true;
        };
        delegate->load(request);
        EXPECT_EQ(delegate->heard.size(), count);
        EXPECT_FALSE(NSRunLoop::currentRunLoop()->hasWorkForMode(NSDefaultRunLoopMode));
    }
}

TEST(NSURLConnectionTest, GoesOnAfterADelegateThatRaises) {
    AutoreleasePool pool;
    LoopbackServer server([](Call& call) { call.answer("abc"); });
    auto delegate = make<LoadRecorder>();
    Retained<NSURLConnection> kept;
    delegate->reaction = [&](NSURLConnection* connection) {
        kept.set(connection);
        throw NSException("Lamp", "it is broken");
    };
    EXPECT_EQ(delegate->load(requestOf(server.url())), "200, data, finished");
    EXPECT_EQ(delegate->retainCount(), 1u) << "a connection that has ended keeps nobody";
}

TEST(NSURLConnectionTest, LoadsOnSeveralThreadsAtOnce) {
    LoopbackServer server([](Call& call) { call.answer(call.target()); });
    onThreads(8, [&](int number) {
        for (int i = 0; i < 5; ++i) {
            const std::string target = "/" + std::to_string(number * 5 + i);
            EXPECT_EQ(loaded(requestOf(server.url(target))), "200 " + target);
            auto delegate = make<LoadRecorder>();
            EXPECT_EQ(delegate->load(requestOf(server.url(target))), "200, data, finished");
            EXPECT_EQ(delegate->body, target);
        }
    });
}

// What the run loop's clock does not reach, a stalled server does not hold up.
TEST(NSURLConnectionTest, TimesOutByTheClockOfTheRunLoop) {
    AutoreleasePool pool;
    LoopbackServer server([](Call& call) { call.waitUntilClientGoes(); });
    ClockScope clock;
    auto delegate = make<LoadRecorder>();
    EXPECT_EQ(delegate->load(requestOf(server.url())), "-1001");
    EXPECT_GE(clock.now(), 60);
}

TEST(NSURLConnectionTest, RefusesWhatItCannotLoad) {
    AutoreleasePool pool;
    const std::string gone = LoopbackServer([](Call&) {}).url();
    for (auto [url, code] : {std::pair{gone, "-1004"}, {"file:///etc/hostname", "-1002"}, {"a/b", "-1002"}}) {
        EXPECT_EQ(loaded(requestOf(url)), code);
        EXPECT_EQ(make<LoadRecorder>()->load(requestOf(url)), code);
    }
    EXPECT_EQ(loaded(NSURLRequest::requestWithURL(nullptr)), "-1000");
    EXPECT_EQ(loaded(NSURLRequest::requestWithURL_cachePolicy_timeoutInterval(
                  urlOf(gone), NSURLRequestReturnCacheDataDontLoad, 1)),
              "-1008");
    LoopbackServer plain([](Call& call) { call.answer(""); });
    EXPECT_EQ(loaded(requestOf("https" + plain.url().substr(4))), "-1200");
    EXPECT_EQ(RAISED(NSURLConnection::connectionWithRequest_delegate(nullptr, nullptr)),
              "NSInvalidArgumentException: connectionWithRequest:delegate: the request is null");
    EXPECT_EQ(shown(NSURLConnection::canHandleRequest(nullptr),
                    NSURLConnection::canHandleRequest(requestOf("HTTPS://h/"))),
              "0 1");
}

// The certificate is right in all but who signed it.
TEST(NSURLConnectionTest, TrustsNoServerThatVouchesForItself) {
    AutoreleasePool pool;
    TemporaryFolder folder;
    ::setenv("no_proxy", "*", 1);
    std::FILE* server =
        ::popen(("python3 " PELVOR_TEST_SOURCES "/secure-server.py " + folder.path("")).c_str(), "re");
    int port = 0;
    if (std::fscanf(server, "%d", &port) == 1) {
        EXPECT_EQ(loaded(requestOf("https://127.0.0.1:" + std::to_string(port))), "-1202");
    }
    ::pclose(server);
    if (!port) GTEST_SKIP() << "openssl is not installed";
}

TEST(NSURLErrorTest, TellsTheReasonInWords) {
    auto error = NSURLError::create(NSURLErrorTimedOut, "10.1 s");
    EXPECT_EQ(shown(error, "/", error->localizedReason()), "10.1 s / the server did not answer in time");
    EXPECT_EQ(shown(NSURLError::create(NSURLErrorUnknown, "rare")->localizedReason()), "rare");
}

// Each form reads the same, and only the dictionary and the array look into what they read.
std::string readAs(const std::string& form, const std::string& text) {
    NSURL* url = urlOf(text);
    if (form == "array") return shown(NSArray_URLContents::arrayWithContentsOfURL(url));
    if (form == "data") return textOf(NSData_URLContents::dataWithContentsOfURL(url));
    if (form == "string")
        return shown(NSString_URLContents::stringWithContentsOfURL_encoding(url, NSUTF8StringEncoding));
    NSString* reason = nullptr;
    NSDictionary* dictionary = NSDictionary_URLContents::dictionaryWithContentsOfURL_reason(url, &reason);
    EXPECT_EQ(shown(NSDictionary_URLContents::dictionaryWithContentsOfURL(url)), shown(dictionary));
    return shown(dictionary, reason);
}

TEST(NSURLContentsTest, ReadsObjectsFromServersAndFiles) {
    AutoreleasePool pool;
    TemporaryFolder folder;
    folder.write("list", "{lamp = on;}"), folder.write("array", "(1, 2)");
    LoopbackServer server([&](Call& call) {
        if (call.target() != "/none") return call.answer(folder.read(call.target().substr(1)));
        call.send("HTTP/1.0 500 Broken\r\n\r\n{lamp = on;}");
    });
    const std::string file = shown(NSURL::fileURLWithPath(NSString::ofUTF8(folder.path().string())));
    for (const std::string& root : {server.url(""), file, "file://localhost" + folder.path().string()})
        expectAll({"dictionary /list -> {\n    lamp = on;\n} (null)", "array /array -> (\n    1,\n    2\n)",
                   "data /list -> {lamp = on;}", "string /list -> {lamp = on;}", "array /list -> (null)",
                   "data /none -> (null)", "dictionary /array -> (null) the answer cannot be understood",
                   root[0] == 'f' ? "dictionary /none -> (null) the file does not exist"
                                  : "dictionary /none -> (null) the server answered with the status 500"},
                  [&](const std::string& row) {
                      const std::size_t blank = row.find(' ');
                      return readAs(row.substr(0, blank), root + row.substr(blank + 1));
                  });
    EXPECT_EQ(readAs("data", "file://elsewhere" + folder.path("list")), "(null)");
    EXPECT_EQ(NSDictionary_URLContents::dictionaryWithContentsOfURL(nullptr), nullptr);
}

}  // namespace
