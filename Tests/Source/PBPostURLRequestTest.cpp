// SPDX-License-Identifier: Apache-2.0
// Tests of forms that are sent to a server.
#include "PBPostURLRequest.h"

#include "Foundation/NSFileManager.h"
#include "Foundation/NSURLConnection.h"
#include "LoopbackServer.h"
#include "ProgramOutput.h"
#include "TemporaryFolder.h"
#include "TestClasses.h"

namespace {

NSURL* example() { return NSURL::URLWithString(u"http://127.0.0.1/"_ns); }

std::string textOf(NSData* data) { return {static_cast<const char*>(data->bytes()), data->length()}; }

NSString* fixedBoundary(Class*) { return u"B"_ns; }

/// A request whose boundary is "B".
Retained<PBPostURLRequest> form(NSURL* url = example()) {
    registerLibrary(foundationLibrary);
    static Class* cls = [] {
        Class* made = Class::createSubclass("FixedForm", PBPostURLRequest::classObject());
        addMethod<"uniquePartBoundary", &fixedBoundary>(made->metaclass());
        return made;
    }();
    return PBPostURLRequest::initWithURL(url, cls);
}

std::string bodyOf(PBPostURLRequest* request) {
    request->finalizePost();
    return textOf(request->HTTPBody());
}

TEST(PBPostURLRequestTest, WritesPartsLineByLine) {
    AutoreleasePool pool;
    TemporaryFolder folder;
    folder.write("Ärger & Co.txt", std::string(58, 'x') + "\n");
    auto request = form();
    request->postValue_forKey(u"änne"_ns, u"user"_ns);
    request->postValue_forKey(NSNumber::numberWithInt(7), u"a\"b"_ns);
    request->postDictionary(
        NSDictionary::of({{u"k"_ns, u""_ns}, {NSNumber::numberWithInt(5), u"1\r\n2"_ns}}));
    NSString* path = NSString::ofUTF8(folder.path("Ärger & Co.txt"));
    EXPECT_TRUE(request->postContentsOfFile_forKey(path, u"file"_ns));
    EXPECT_TRUE(request->postContentsOfFile_forKey_isEncode(path, u"raw"_ns, false));
    folder.write("\xFF", "y");  // no UTF-8
    folder.write("\uFFFD", "another");
    auto* name = NSFileManager::defaultManager()->stringWithFileSystemRepresentation_length("\xFF", 1);
    path = NSString::ofUTF8(folder.path(""))->stringByAppendingPathComponent(name);
    EXPECT_TRUE(request->postContentsOfFile_forKey_isEncode(path, u"bytes"_ns, false));
    EXPECT_FALSE(request->postContentsOfFile_forKey(NSString::ofUTF8(folder.path("none")), u"none"_ns));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(request->postData_asFile_forKey_isEncode(nullptr, u"n"_ns, u"n"_ns, true));
    request->beginPostPart();
    request->body()->appendBytes_length("own: part\n\nx", 12);
    request->endPostPart();
    std::string line;
    for (int i = 0; i < 19; ++i) line += "eHh4";
    const std::string part = "--B\nContent-Disposition: form-data; name=",
                      bytesFollow = "Content-Type: application/octet-stream\n\n";
    EXPECT_EQ(bodyOf(request),
              part + "\"user\"\n\nänne\n" + part + "\"a\"b\"\n\n7\n" + part + "\"k\"\n\n\n" + part +
                  "\"5\"\n\n1\r\n2\n" + part +
                  "\"file\"; filename=\"Arger & Co.txt\"\nContent-Transfer-Encoding: base64\n" + bytesFollow +
                  line + "\neAo=\n" + part + "\"raw\"; filename=\"Arger & Co.txt\"\n" + bytesFollow +
                  std::string(58, 'x') + "\n\n" + part + "\"bytes\"; filename=\"?\"\n" + bytesFollow +
                  "y\n--B\nown: part\n\nx\n--B--");
    EXPECT_EQ(shown(request->HTTPMethod(), request->valueForHTTPHeaderField(u"content-type"_ns)),
              "POST multipart/form-data; boundary=B");
}

TEST(PBPostURLRequestTest, AddsNothingOnceItIsFinalised) {
    AutoreleasePool pool;
    auto request = form();
    EXPECT_EQ(bodyOf(request), "--B--");
    EXPECT_EQ(request->body(), nullptr);
    request->postValue_forKey(u"v"_ns, u"k"_ns);
    EXPECT_TRUE(request->postData_asFile_forKey_isEncode(NSData::data(), u"f"_ns, u"k"_ns, true));
    EXPECT_EQ(textOf(request->HTTPBody()), "--B--");
    request->finalizePost();
    EXPECT_EQ(request->HTTPBody(), nullptr);
    EXPECT_EQ(shown(request->valueForHTTPHeaderField(u"Content-Type"_ns)),
              "multipart/form-data; boundary=B,multipart/form-data; boundary=B");
}

TEST(PBPostURLRequestTest, NumbersItsBoundaries) {
    int first = 0, second = 0, random = -1, end = 0;
    std::string texts = shown(PBPostURLRequest::uniquePartBoundary());
    texts += " " + shown(PBPostURLRequest::uniquePartBoundary());
    EXPECT_EQ(std::sscanf(texts.c_str(), "PELVOR-%d-%d-BOUND PELVOR-%d-%d-BOUND%n", &first, &random, &second,
                          &random, &end),
              4);
    EXPECT_TRUE(second == first + 1 && random >= 0 && texts.size() == static_cast<std::size_t>(end)) << texts;
}

/// What a parser that we did not write makes of a form that a server received.
class FormParserTest : public ::testing::Test {
  protected:
    FormParserTest() {
        folder.write("letter.bin", std::string("a\0\xFF\r\n--\n", 8));
        auto request = PBPostURLRequest::initWithURL(NSURL::URLWithString(NSString::ofUTF8(server.url())));
        NSString* path = NSString::ofUTF8(folder.path("letter.bin"));
        request->postValue_forKey(u"änne"_ns, u"user"_ns);
        request->postContentsOfFile_forKey(path, u"coded"_ns);
        request->postContentsOfFile_forKey_isEncode(path, u"raw"_ns, false);
        request->finalizePost();
        NSURLError* error;
        EXPECT_TRUE(
            NSURLConnection::sendSynchronousRequest_returningResponse_error(request, nullptr, &error));
        arguments = " '" + shown(request->valueForHTTPHeaderField(u"Content-Type"_ns)) + "' " +
                    folder.write("body", server.calls()[0].body);
    }

    AutoreleasePool pool;
    TemporaryFolder folder;
    LoopbackServer server{[](LoopbackServer::Call& call) { call.answer(""); }};
    std::string arguments;
    const std::string parts =
        "user  c3a46e6e65\ncoded letter.bin 6100ff0d0a2d2d0a\nraw letter.bin 6100ff0d0a2d2d0a\n";
};

TEST_F(FormParserTest, TheMIMEParserOfPythonReadsTheFormAsItIs) {
    EXPECT_EQ(outputOf("python3 " PELVOR_TEST_SOURCES "/read-form.py" + arguments).text, parts);
}

TEST_F(FormParserTest, BusboyReadsTheFormWithOtherLineEnds) {
    const ProgramOutput output = outputOf(
        "NODE_PATH=${NODE_PATH:-$(npm root -g 2>&-)} node " PELVOR_TEST_SOURCES "/read-form.js" + arguments);
    if (output.status == 77 || output.status == 127) GTEST_SKIP() << "Node or busboy is not installed";
    EXPECT_EQ(output.text, parts);
}

}  // namespace
