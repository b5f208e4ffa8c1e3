// SPDX-License-Identifier: Apache-2.0
// Tests of requests and of what the head of an answer says.
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableURLRequest.h"
#include "Prelude.h"

namespace {

using namespace std::string_view_literals;

NSURL* example() { return NSURL::URLWithString(u"http://example.com/"_ns); }

TEST(NSURLRequestTest, BeginsAsAGetRequest) {
    NSURLRequest* request = NSURLRequest::requestWithURL(example());
    EXPECT_EQ(shown(request->HTTPMethod(), request->timeoutInterval(), request->cachePolicy(),
                    request->HTTPBody(), request->allHTTPHeaderFields()->count()),
              "GET 60 0 (null) 0");
    EXPECT_EQ(shown(request), "<NSURLRequest GET http://example.com/>");
    EXPECT_EQ(RAISED(NSURLRequest::requestWithURL_cachePolicy_timeoutInterval(example(), {}, std::nan(""))),
              "NSInvalidArgumentException: requestWithURL:cachePolicy:timeoutInterval: the time-out is not a "
              "number");
}

TEST(NSURLRequestTest, JoinsTheValuesOfAField) {
    auto request = NSMutableURLRequest::initWithURL(example());
    request->addValue_forHTTPHeaderField(u"a"_ns, u"Accept"_ns);
    request->addValue_forHTTPHeaderField(u"b, c"_ns, u"ACCEPT"_ns);
    request->setValue_forHTTPHeaderField(u"1"_ns, u"X-Lamp"_ns);
    request->setValue_forHTTPHeaderField(u"2"_ns, u"x-lamp"_ns);
    request->setValue_forHTTPHeaderField(nullptr, u"Absent"_ns);
    EXPECT_EQ(shown(request->allHTTPHeaderFields()),
              shown(NSDictionary::of({{u"Accept"_ns, u"a,b, c"_ns}, {u"X-Lamp"_ns, u"2"_ns}})));
    auto copy = request->copy();
    request->setValue_forHTTPHeaderField(nullptr, u"accept"_ns);
    EXPECT_EQ(
        shown(request->valueForHTTPHeaderField(u"Accept"_ns), copy->valueForHTTPHeaderField(u"aCCept"_ns)),
        "(null) a,b, c");
}

TEST(NSURLRequestTest, RefusesFieldsThatCouldEndTheirLine) {
    auto request = NSMutableURLRequest::initWithURL(example());
    for (std::u16string_view value : {u"a\rb"sv, u"a\nHost: b"sv, u"a\0b"sv})
        for (SEL selector : {"setValue:forHTTPHeaderField:"_sel, "addValue:forHTTPHeaderField:"_sel})
            EXPECT_EQ(RAISED(send<void>(request, selector, NSString::of(value), u"X"_ns)),
                      std::string("NSInvalidArgumentException: ") + selector.name() +
                          " the value has a line end or a NUL");
    for (NSString* name : {u""_ns, u"a b"_ns, u"a:"_ns, u"ä"_ns, u"a\n"_ns})
        EXPECT_THAT(RAISED(request->setValue_forHTTPHeaderField(u"a"_ns, name)),
                    EndsWith("is no word of HTTP"));
    EXPECT_EQ(RAISED(request->setHTTPMethod(u"GET /x"_ns)),
              "NSInvalidArgumentException: setHTTPMethod: the method \"GET /x\" is no word of HTTP");
    EXPECT_THAT(RAISED(request->setAllHTTPHeaderFields(NSDictionary::of({{u"a"_ns, u"b\n"_ns}}))),
                HasSubstr("line end"));
    EXPECT_EQ(request->allHTTPHeaderFields()->count(), 0u);
}

TEST(NSURLRequestTest, CopiesAreIndependent) {
    auto body = NSMutableData::initWithBytes_length("abc", 3);
    auto request = NSMutableURLRequest::initWithURL(example());
    request->setHTTPBody(body);
    body->setLength(1);
    auto copy = request->copy();
    auto other = copy->mutableCopy();
    request->setHTTPMethod(u"PUT"_ns);
    request->setURL(nullptr);
    EXPECT_EQ(shown(copy, other, request->HTTPBody()->length(), other->HTTPBody()->length()),
              "<NSURLRequest GET http://example.com/> <NSMutableURLRequest GET http://example.com/> 3 3");
    EXPECT_EQ(copy->copy().get(), copy.get());
}

TEST(NSHTTPURLResponseTest, ReadsTheHeadOfAnAnswer) {
    auto response = NSHTTPURLResponse::initWithURL_head(
        example(),
        "HTTP/1.1 404 Not here\r\nContent-Type: Text/HTML; a=b; Charset=\"utf-8\"\r\nno field\r\n"
        "Content-Length: 12\r\nX-Lamp:  on \r\nx-lamp: off\r\n\tX-Lamp: dim\r\n\r\n");
    EXPECT_EQ(shown(response->statusCode(), response->MIMEType(), response->textEncodingName(),
                    response->expectedContentLength(), response->valueForHTTPHeaderField(u"X-LAMP"_ns),
                    response->allHeaderFields()->count()),
              "404 text/html utf-8 12 on,off X-Lamp: dim 3");
    for (const char* head :
         {"", "HTTP/1.1", "rubbish 1x2\r\nContent-Length: -1\r\nContent-Type: ;charset=\r\n"}) {
        auto bare = NSHTTPURLResponse::initWithURL_head(nullptr, head);
        EXPECT_EQ(shown(bare->statusCode(), bare->MIMEType(), bare->textEncodingName(),
                        bare->expectedContentLength()),
                  "0 (null) (null) -1");
    }
}

}  // namespace
