// SPDX-License-Identifier: Apache-2.0
// Tests of loading over http, against servers that do what they should not.
#include "Foundation/NSURLConnection.h"

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
        body += textOf(data);
        note(connection, "data");
    }
    void finish(NSURLConnection* connection) {
        isOver = true;
        note(connection, "finished");
    }
    void fail(NSURLConnection* connection, NSURLError* error) {
        isOver = true;
        note(connection, shown(error->code()));
    }
    /// What is heard of a load until its end.
    std::string load(NSURLRequest* request) {
        auto connection = NSURLConnection::initWithRequest_delegate(request, this);
        EXPECT_THAT(heard, IsEmpty());
        while (!isOver) NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
        return joined(heard);
    }
};

extern Library connectionTestLibrary;
PELVOR_DEFINE_CLASS(LoadRecorder, connectionTestLibrary) {
    methods.instanceAs<"connection:didSendBodyData:totalBytesWritten:totalBytesExpectedToWrite:",
                       &LoadRecorder::sent>();
    methods.instanceAs<"connection:didReceiveResponse:", &LoadRecorder::receiveResponse>();
    methods.instanceAs<"connection:didReceiveData:", &LoadRecorder::receiveData>();
    methods.instanceAs<"connectionDidFinishLoading:", &LoadRecorder::finish>();
    methods.instanceAs<"connection:didFailWithError:", &LoadRecorder::fail>();
}
constinit Library connectionTestLibrary{"ConnectionTest", {}, kClassesOf<LoadRecorder>, {}};

Retained<LoadRecorder> recorder() {
    registerLibrary(connectionTestLibrary);
    return make<LoadRecorder>();
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

// libcurl asks again only five times in a load on a connection that the server closed without saying so.
void redirect(Call& call, const std::string& target) {
    call.send("HTTP/1.1 302 Elsewhere\r\nConnection: close\r\nLocation: " + target +
              "\r\nContent-Length: 0\r\n\r\n");
}

void answerUntilClientGoes(Call& call, std::string_view start, std::string_view piece) {
    call.send(start);
    while (call.send(piece)) {
    }
}

struct Behaviour {
    const char* name;
    LoopbackServer::Answer answer;
    const char* result;
    double timeout = 30;
};

const Behaviour kBehaviours[] = {
    {"Answer", [](Call& call) { call.answer("hello"); }, "200 hello"},
    {"Empty", [](Call& call) { call.send("HTTP/1.1 204 Nothing\r\n\r\n"); }, "204 "},
    {"NotFound", [](Call& call) { call.send("HTTP/1.0 404 No\r\n\r\ngone"); }, "404 gone"},
    {"Chunked",
     [](Call& call) {
         call.send(
             "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n2;x=y\r\nde\r\n0\r\nA: "
             "b\r\n\r\n");
     },
     "200 abcde"},
    {"BrokenChunk",
     [](Call& call) { call.send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\nabc"); },
     "-1005"},
    {"InterimAnswers",
     [](Call& call) {
         call.send("HTTP/1.1 100 Go on\r\nA: b\r\n\r\nHTTP/1.1 103 Hints\r\n\r\n");
         call.answer("late");
     },
     "200 late"},
    {"TenRedirections",
     [](Call& call) {
         const std::size_t count = call.target().size();
         count == 11 ? call.answer("there") : redirect(call, call.target() + "x");
     },
     "200 there"},
    {"Circle", [](Call& call) { redirect(call, call.target()); }, "-1007"},
    {"RedirectionToFile", [](Call& call) { redirect(call, "file:///etc/hostname"); }, "-1002"},
    {"RedirectionToOtherScheme", [](Call& call) { redirect(call, "ftp://127.0.0.1/"); }, "-1002"},
    {"ClosesEarly", [](Call&) {}, "-1005"},
    {"Truncated", [](Call& call) { call.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"); }, "-1005"},
    {"TruncatedHead", [](Call& call) { call.send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r"); }, "-1005"},
    {"TruncatedInterimAnswer", [](Call& call) { call.send("HTTP/1.1 103 Hints\r\nA: b\r\n"); }, "-1005"},
    {"Rubbish", [](Call& call) { call.send("\x01\x02rubbish\r\n\r\n"); }, "-1011"},
    {"StallsBeforeTheHead", [](Call& call) { call.waitUntilClientGoes(); }, "-1001", 0.05},
    {"StallsInTheBody",
     [](Call& call) {
         call.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc");
         call.waitUntilClientGoes();
     },
     "-1001", 0.05},
    {"Drips",
     [](Call& call) {
         call.send("HTTP/1.1 200 OK\r\n\r\n");
         while (call.send("x")) std::this_thread::sleep_for(std::chrono::milliseconds(5));
     },
     "-1001", 0.05},
    {"FloodsTheHead",
     [](Call& call) {
         answerUntilClientGoes(call, "HTTP/1.1 200 OK\r\n", "X-Flood: aaaaaaaaaaaaaaaaaaaaaaaaa\r\n");
     },
     "-1103"},
    {"FloodsALineOfTheHead",
     [](Call& call) { answerUntilClientGoes(call, "HTTP/1.1 200 ", std::string(65536, 'x')); }, "-1103"},
    {"FloodsInterimAnswers",
     [](Call& call) {
         answerUntilClientGoes(call, "", "HTTP/1.1 102 Wait\r\nX: aaaaaaaaaaaaaaaaaaaaaaaa\r\n\r\n");
     },
     "-1103"},
    {"FloodsTheBody",
     [](Call& call) { answerUntilClientGoes(call, "HTTP/1.1 200 OK\r\n\r\n", std::string(65536, 'x')); },
     "-1103"},
    {"SaysTooMuch", [](Call& call) { call.send("HTTP/1.1 200 OK\r\nContent-Length: 1000001\r\n\r\n"); },
     "-1103"},
};

class ServerTest : public ::testing::TestWithParam<Behaviour> {};
INSTANTIATE_TEST_SUITE_P(Servers, ServerTest, ::testing::ValuesIn(kBehaviours),
                         [](const auto& row) { return row.param.name; });

TEST_P(ServerTest, GivesTheSameWithAndWithoutARunLoop) {
    AutoreleasePool pool;
    LoopbackServer server(GetParam().answer);
    auto request = NSMutableURLRequest::initWithURL(urlOf(server.url()));
    request->setTimeoutInterval(GetParam().timeout);
    request->setMaximumResponseLength(1'000'000);
    EXPECT_EQ(loaded(request), GetParam().result);
    auto delegate = recorder();
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
    auto delegate = recorder();
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
        auto delegate = recorder();
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
    auto delegate = recorder();
    delegate->reaction = [](NSURLConnection*) { throw NSException("Lamp", "it is broken"); };
    auto connection = NSURLConnection::initWithRequest_delegate(
        NSURLRequest::requestWithURL(urlOf(server.url())), delegate);
    while (!delegate->isOver) try {
            NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
        } catch (const NSException&) {
        }
    EXPECT_THAT(delegate->heard, ElementsAre("200", "data", "finished"));
    EXPECT_EQ(delegate->retainCount(), 1u) << "a connection that has ended keeps nobody";
}

// What the run loop's clock does not reach, a stalled server does not hold up.
TEST(NSURLConnectionTest, TimesOutByTheClockOfTheRunLoop) {
    AutoreleasePool pool;
    LoopbackServer server([](Call& call) { call.waitUntilClientGoes(); });
    ClockScope clock;
    auto delegate = recorder();
    EXPECT_EQ(delegate->load(NSURLRequest::requestWithURL(urlOf(server.url()))), "-1001");
    EXPECT_GE(clock.now(), 60);
}

TEST(NSURLConnectionTest, RefusesWhatItCannotLoad) {
    AutoreleasePool pool;
    int port = 0;
    {
        LoopbackServer server([](Call&) {});
        port = server.port();
    }
    const std::string gone = "127.0.0.1:" + std::to_string(port);
    for (auto [url, code] :
         {std::pair{"http://" + gone, "-1004"}, {"file:///etc/hostname", "-1002"}, {"a/b", "-1002"}}) {
        EXPECT_EQ(loaded(NSURLRequest::requestWithURL(urlOf(url))), code);
        EXPECT_EQ(recorder()->load(NSURLRequest::requestWithURL(urlOf(url))), code);
    }
    EXPECT_EQ(loaded(NSURLRequest::requestWithURL(nullptr)), "-1000");
    EXPECT_EQ(loaded(NSURLRequest::requestWithURL_cachePolicy_timeoutInterval(
                  urlOf("http://" + gone), NSURLRequestReturnCacheDataDontLoad, 1)),
              "-1008");
    LoopbackServer plain([](Call& call) { call.answer(""); });
    EXPECT_EQ(loaded(NSURLRequest::requestWithURL(urlOf("https" + plain.url().substr(4)))), "-1200");
    EXPECT_EQ(RAISED(NSURLConnection::connectionWithRequest_delegate(nullptr, nullptr)),
              "NSInvalidArgumentException: connectionWithRequest:delegate: the request is null");
    EXPECT_EQ(shown(NSURLConnection::canHandleRequest(nullptr),
                    NSURLConnection::canHandleRequest(NSURLRequest::requestWithURL(urlOf("HTTPS://h/")))),
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
        NSURL* url = urlOf("https://127.0.0.1:" + std::to_string(port));
        EXPECT_EQ(loaded(NSURLRequest::requestWithURL(url)), "-1202");
    }
    ::pclose(server);
    if (!port) GTEST_SKIP() << "openssl is not installed";
}

TEST(NSURLErrorTest, TellsTheReasonInWords) {
    auto error = NSURLError::create(NSURLErrorTimedOut, "10.1 s");
    EXPECT_EQ(shown(error, "/", error->localizedReason()), "10.1 s / the server did not answer in time");
    EXPECT_EQ(shown(NSURLError::create(NSURLErrorUnknown, "rare")->localizedReason()), "rare");
}

TEST(NSURLContentsTest, ReadsObjectsFromServersAndFiles) {
    AutoreleasePool pool;
    const std::string list = "{lamp = on;}", array = "(1, 2)";
    LoopbackServer server([&](Call& call) {
        if (call.target() == "/list") return call.answer(list);
        if (call.target() == "/array") return call.answer(array);
        call.send("HTTP/1.0 500 Broken\r\n\r\n" + list);
    });
    TemporaryFolder folder;
    folder.write("list", list);
    folder.write("array", array);
    const std::string file = shown(NSURL::fileURLWithPath(NSString::ofUTF8(folder.path(""))));
    for (const std::string& root :
         {server.url(""), file.substr(0, file.size() - 1), "file://localhost" + folder.path().string()}) {
        NSDictionary* dictionary =
            NSDictionary_URLContents::dictionaryWithContentsOfURL(urlOf(root + "/list"));
        EXPECT_EQ(shown(dictionary), shown(NSDictionary::of({{u"lamp"_ns, u"on"_ns}}))) << root;
        EXPECT_EQ(shown(NSArray_URLContents::arrayWithContentsOfURL(urlOf(root + "/array"))),
                  shown(NSArray::of({u"1"_ns, u"2"_ns})));
        EXPECT_EQ(textOf(NSData_URLContents::dataWithContentsOfURL(urlOf(root + "/list"))), list);
        EXPECT_EQ(shown(NSString_URLContents::stringWithContentsOfURL_encoding(urlOf(root + "/list"),
                                                                               NSUTF8StringEncoding)),
                  list);
        EXPECT_EQ(NSArray_URLContents::arrayWithContentsOfURL(urlOf(root + "/list")), nullptr);
        EXPECT_EQ(NSData_URLContents::dataWithContentsOfURL(urlOf(root + "/none")), nullptr);
        expectAll(
            {"/none -> " + std::string(root.starts_with("file") ? "the file does not exist"
                                                                : "the server answered with the status 500"),
             "/array -> the answer cannot be understood", "/list -> null"},
            [&](const std::string& name) {
                NSString* reason = nullptr;
                NSDictionary_URLContents::dictionaryWithContentsOfURL_reason(urlOf(root + name), &reason);
                return reason ? shown(reason) : "null";
            });
    }
    EXPECT_EQ(NSData_URLContents::dataWithContentsOfURL(urlOf("file://elsewhere" + folder.path("list"))),
              nullptr);
    EXPECT_EQ(NSDictionary_URLContents::dictionaryWithContentsOfURL(nullptr), nullptr);
}

}  // namespace
