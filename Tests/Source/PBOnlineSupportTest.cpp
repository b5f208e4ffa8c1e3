// SPDX-License-Identifier: Apache-2.0
// Tests of the application's versions, of online information, and of whether a host can be reached.
#include "PBOnlineSupport.h"

#include <dlfcn.h>
#include <netdb.h>

#include <semaphore>

#include "LoopbackServer.h"
#include "Prelude.h"
#include "ProgramOutput.h"
#include "TemporaryFolder.h"

namespace {

std::counting_semaphore<> stalledLookups(0);

}  // namespace

/// Stands in for the system's function, so that no test asks a server of names.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* name, const char* service,
                                                                  const addrinfo* hints, addrinfo** result) {
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    const std::string asked = name ? name : "";
    if (asked == "stalled.test") {
        stalledLookups.acquire();
        return EAI_AGAIN;
    }
    addrinfo numeric = hints ? *hints : addrinfo{};
    numeric.ai_flags |= AI_NUMERICHOST;
    return real(asked == "here.test" ? "127.0.0.1" : name, service, &numeric, result);
}

namespace {

/// Runs a host application in a bundle with that information, and returns its lines.
class OnlineHostTest : public ::testing::Test {
  protected:
    std::vector<std::string> linesOf(const std::string& information) {
        folder.write("Host/Contents/Info.plist", "{ CFBundleIdentifier = test.host; " + information + "}");
        const std::string program = folder.path("Host/Contents/Linux/Host");
        if (!std::filesystem::exists(program)) {
            std::filesystem::create_directory(folder.path("Host/Contents/Linux"));
            std::filesystem::copy(PELVOR_TEST_ONLINE_HOST, program);
        }
        std::istringstream output(outputOf("LANGUAGE=en " + program + " 2>&1").text);
        std::vector<std::string> lines;
        for (std::string line; std::getline(output, line);) lines.push_back(line);
        lines.resize(std::max<std::size_t>(lines.size(), 4));
        return lines;
    }

    TemporaryFolder folder;
};

TEST_F(OnlineHostTest, TheInternalVersionBecomesTwoNumbers) {
    expectAll(
        {"2.1.3 -> 20103 0 2.1.3", "2.1b4 -> 20100 20004 2.1b4", "3.0a12 -> 30000 10012 3.0a12",
         "12.345 -> 129900 0 12.345", "0 -> 999999 0 0", "1.2.3.4 -> 10203 0 1.2.3.4", "1..2 -> 10002 0 1..2",
         "2.0 x9 -> 20000 0 2.0 x9", "2.0p 7 -> 20000 30007 2.0p 7", "2.0f1.5 -> 20000 40001 2.0f1.5",
         "2.0x1 -> *** bad version string 2.0x1", "2.0f -> *** bad version string 2.0f"},
        [this](const std::string& version) {
            const std::string line = linesOf("PBInternalVersion = \"" + version + "\";")[0];
            return line.substr(line.find("***") == line.npos ? 0 : line.find("***"));
        });
    EXPECT_EQ(linesOf("PBInternalVersion = 2.0f;")[1], "20000 40000 2.0f");
    EXPECT_EQ(linesOf("PBInternalVersion = 2.0x1;")[1], "20000 0 2.0x1");
}

TEST_F(OnlineHostTest, WhatTheBundleLacksIsNullOrAnOldVersion) {
    std::vector<std::string> lines = linesOf("");
    EXPECT_THAT(lines[0], EndsWith("990900 0 99.9"));
    EXPECT_EQ(lines[1] + "|" + lines[2], "0 (null) (null)|UpdatesURL (null) (null)");
    EXPECT_THAT(lines[3], StartsWith("PELVOR-1-"));
    lines = linesOf(
        "PBReleaseNumber = \"12 beta\"; CFBundleExecutable = Host; CFBundleShortVersionString = \"2 b\";");
    EXPECT_EQ(lines[1], "12 Host 2 b");
}

TEST_F(OnlineHostTest, OnlineInformationIsLoadedFromTheAddressInTheStringTable) {
    const std::string list = "{ Host = { newest = 9; }; Other = wrong; }";
    LoopbackServer server([&](LoopbackServer::Call& call) { call.answer(list); });
    for (const std::string& url : {server.url("/list"), "file://" + folder.write("list", list)}) {
        folder.write("Host/Contents/Resources/en.lproj/Localizable.strings", "UpdatesURL = \"" + url + "\";");
        std::vector<std::string> lines = linesOf("CFBundleExecutable = Host;");
        lines.erase(lines.begin(), lines.begin() + 2);
        EXPECT_THAT(joined(lines), StartsWith(url + " {,     newest = 9;, } {, }, PELVOR"));
    }
}

TEST(PBIsNetworkHostOnlineTest, WantsAnAddressAndARoute) {
    expectAll({"here.test -> 1", "127.0.0.1 -> 1", " -> 0", "nowhere.test -> 0", "255.255.255.255 -> 0"},
              [](const std::string& host) { return PBIsNetworkHostOnline(NSString::ofUTF8(host)); });
    EXPECT_FALSE(PBIsNetworkHostOnline(nullptr));
    EXPECT_TRUE(PBIsNetworkHostOnline(NSString::of(std::u16string_view(u"here.test\0x", 11))));
}

TEST(PBIsNetworkHostOnlineTest, WaitsForANameNoLongerThanItIsTold) {
    for (int i = 0; i < 8; ++i) EXPECT_FALSE(PBIsNetworkHostOnlineWithin(u"stalled.test"_ns, 0.01));
    EXPECT_FALSE(PBIsNetworkHostOnline(u"here.test"_ns)) << "as many names are being looked up as may be";
    stalledLookups.release(8);
    while (!PBIsNetworkHostOnline(u"here.test"_ns)) std::this_thread::yield();
}

}  // namespace
