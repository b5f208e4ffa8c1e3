// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/PrintService.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

#include "EnvironmentScope.h"
#include "Foundation/NSData.h"
#include "Prelude.h"

namespace {

// A server that takes connections and says nothing.
struct SilentServer {
    SilentServer() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        bind(number, reinterpret_cast<sockaddr*>(&address), length);
        listen(number, 4);
        getsockname(number, reinterpret_cast<sockaddr*>(&address), &length);
        name = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    }
    ~SilentServer() { close(number); }
    int number = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::string name;
};

TEST(PrintServiceTest, EndsWithItsCallersPatience) {
    const auto service = PrintService::shared();
    const SilentServer server;
    const EnvironmentScope environment("CUPS_SERVER", server.name.c_str());
    const PrintJob job{u"a"_ns->copy(), u"b"_ns->copy(), NSData::init(), {595, 842}};
    for (const bool prints : {false, true}) {
        PrintService::Flag gaveUp{false}, hasEnded{false};
        std::vector<Printer> printers;
        PrintProblem problem;
        int number = 0;
        std::thread asking([&] {
            AutoreleasePool pool;
            problem = prints ? service->print(job, number, gaveUp) : service->findPrinters(printers, gaveUp);
            hasEnded = true;
        });
        pollfd connecting{server.number, POLLIN, 0};
        while (!hasEnded && poll(&connecting, 1, 10) == 0) {
        }
        gaveUp = true;
        asking.join();
        if (problem.kind == PrintProblem::Kind::noService) GTEST_SKIP() << "there is no CUPS";
        EXPECT_TRUE(connecting.revents) << "the server was asked";
        EXPECT_EQ(problem.kind, PrintProblem::Kind::noAnswer);
        EXPECT_TRUE(printers.empty() && number == 0);
    }
}

}  // namespace
