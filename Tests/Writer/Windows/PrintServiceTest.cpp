// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/PrintService.h"

#include "EnvironmentScope.h"
#include "LoopbackServer.h"
#include "Prelude.h"

namespace {

TEST(PrintServiceTest, EndsWithItsCallersPatience) {
    const auto service = PrintService::shared();
    LoopbackServer server([](LoopbackServer::Call& call) { call.waitUntilClientGoes(); });  // says nothing
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    const EnvironmentScope environment("CUPS_SERVER", address.c_str());
    const PrintJob job{u"a"_ns->copy(), u"b"_ns->copy(), NSData::init(), {595, 842}};
    for (const bool prints : {false, true}) {
        PrintService::Flag gaveUp{false}, hasEnded{false};
        std::vector<Printer> printers;
        PrintProblem problem;
        int number = 0;
        const std::size_t calls = server.calls().size();
        std::thread asking([&] {
            AutoreleasePool pool;
            problem = prints ? service->print(job, number, gaveUp) : service->findPrinters(printers, gaveUp);
            hasEnded = true;
        });
        while (!hasEnded && server.calls().size() == calls) std::this_thread::yield();
        gaveUp = true;
        asking.join();
        if (problem.kind == PrintProblem::Kind::noService) GTEST_SKIP() << "there is no CUPS";
        EXPECT_GT(server.calls().size(), calls) << "the server was asked";
        EXPECT_EQ(problem.kind, PrintProblem::Kind::noAnswer);
        EXPECT_TRUE(printers.empty() && number == 0);
    }
}

TEST(PrintServiceTest, TellsWhenItUnderstandsNothing) {
    LoopbackServer server([](LoopbackServer::Call& call) { call.send("What?\r\n\r\n"); });
    const std::string address = "127.0.0.1:" + std::to_string(server.port());
    const EnvironmentScope environment("CUPS_SERVER", address.c_str());
    std::vector<Printer> printers;
    const PrintProblem problem = PrintService::shared()->findPrinters(printers, PrintService::Flag(false));
    if (problem.kind == PrintProblem::Kind::noService) GTEST_SKIP() << "there is no CUPS";
    EXPECT_EQ(problem.kind, PrintProblem::Kind::unclear) << shown(problem.text);
}

}  // namespace
