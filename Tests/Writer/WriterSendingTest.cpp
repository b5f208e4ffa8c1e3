// SPDX-License-Identifier: Apache-2.0
// What the program does with documents and servers besides reading and writing: sending, throwing away, and
// asking for newer versions.
#include "EnvironmentScope.h"
#include "LoopbackServer.h"
#include "Prelude.h"
#include "WriterProgram.h"

namespace {

struct WriterSendingTest : ::testing::Test {
    using Arguments = std::vector<std::string>;

    WriterRun upload(const LoopbackServer& server, Arguments arguments = {}) {
        arguments.insert(arguments.end(), {"--upload", server.url("/in"), document});
        return program.run(arguments, "", WriterOutput::terminal);
    }

    WriterProgram program;
    const std::string document = program.folder.write("a.txt", "one two\n");
    const EnvironmentScope data{"XDG_DATA_HOME", program.folder.path("data").c_str()};
};

TEST_F(WriterSendingTest, SendsWhatIsOnTheDisk) {
    LoopbackServer server([](LoopbackServer::Call& call) { call.answer(""); });
    const WriterRun first = upload(server);
    EXPECT_EQ(shown(first.status, first.valueOf("Path")), "0 " + document + "\r") << first.errors;
    EXPECT_TRUE(first.prints("Uploading: 100 %")) << first.output;
    const WriterRun second = upload(server, {"--case=upper", "--save-as=" + program.folder.path("b.txt")});
    EXPECT_EQ(shown(second.status, second.valueOf("Address")), "0 " + server.url("/in") + "\r");
    const auto calls = server.calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_THAT(calls[0].body, AllOf(HasSubstr("name=\"document\"; filename=\"a.txt\""),
                                     HasSubstr("\n\none two\n\n--PELVOR")));
    EXPECT_THAT(calls[1].body, AllOf(HasSubstr("filename=\"b.txt\""), HasSubstr("\n\nONE TWO\n\n--PELVOR")));
}

TEST_F(WriterSendingTest, SaysWhyADocumentWasNotSent) {
    LoopbackServer refusing([](LoopbackServer::Call& call) { call.send("HTTP/1.0 403 No\r\n\r\n"); });
    LoopbackServer closing([](LoopbackServer::Call&) {});
    EXPECT_TRUE(upload(refusing).complains("the server refused it with the status 403"));
    program.locale = "de_DE.UTF-8";
    const WriterRun run = upload(closing);
    EXPECT_TRUE(run.complains("kann nicht an") && run.complains("Verbindung") && run.status == 1)
        << run.errors;
    EXPECT_TRUE(upload(closing, {"--at=999", "--trash"}).complains("„--upload“ wurde nicht befolgt"));
    EXPECT_EQ(closing.calls().size(), 1u) << "not all that was asked for was done";
    EXPECT_EQ(program.folder.read("a.txt"), "one two\n");
}

TEST_F(WriterSendingTest, ThrowsTheDocumentAway) {
    const std::string trash = program.folder.path("data/Trash/files/");
    for (const std::string name : {"a.txt", "a-1.txt"}) {
        program.folder.write("a.txt", name);
        const WriterRun run = program.run({"--trash", document});
        EXPECT_EQ(shown(run.status, run.valueOf("Path")), "0 " + trash + name) << run.errors;
        EXPECT_EQ(program.folder.read("data/Trash/files/" + name), name);
        EXPECT_FALSE(std::filesystem::exists(document));
    }
}

TEST_F(WriterSendingTest, SaysInThreeLanguagesWhyADocumentIsNotInTheTrash) {
    program.folder.write("data", "a file, where a folder has to be");
    for (const auto& [locale, message] :
         {std::pair("en_GB.UTF-8", "was not moved to the trash: a part of the path is no folder."),
          std::pair("de_DE.UTF-8",
                    "wurde nicht in den Papierkorb gelegt: ein Teil des Pfads ist kein Ordner."),
          std::pair("fr_FR.UTF-8",
                    "n’a pas été mis à la corbeille : une partie du chemin n’est pas un dossier.")}) {
        program.locale = locale;
        const WriterRun run = program.run({"--trash", document});
        EXPECT_TRUE(run.complains(message) && run.status == 1) << run.errors;
    }
    EXPECT_EQ(program.folder.read("a.txt"), "one two\n");
}

TEST_F(WriterSendingTest, ThrowsNothingAwayThatItWritesOrThatIsItsOwn) {
    std::filesystem::create_symlink(document, program.folder.path("link.pdf"));
    for (const Arguments& arguments : {Arguments{"--trash"},
                                       {"--trash", document, "--save-as=" + program.folder.path("./a.txt")},
                                       {"--trash", document, "--pdf=" + program.folder.path("link.pdf")},
                                       {"--upload=http://127.0.0.1:9/"}})
        EXPECT_EQ(program.run(arguments).status, 2) << arguments.back();
    EXPECT_EQ(program.folder.read("a.txt"), "one two\n");
}

TEST_F(WriterSendingTest, TellsOfNewerVersions) {
    EXPECT_TRUE(program.run({"--check-updates"}).complains("No server is known"));
    const std::string name = "PelvorWriter/Contents/Resources/en.lproj/Localizable.strings";
    program.useCopy();
    const std::string texts = program.folder.read(name);
    const auto checkUpdates = [&](const std::string& url) {
        program.folder.write(name, texts + "UpdatesURL = \"" + url + "\";\n");
        return program.run({"--check-updates"});
    };
    const auto checkList = [&](const std::string& list) {
        return checkUpdates("file://" + program.folder.write("list", list));
    };
    LoopbackServer server([](LoopbackServer::Call& call) {
        call.answer(
            "{ PelvorWriter = { ReleaseVersion = 990000; DisplayVersion = 99; Address = \"https://x/\"; }; "
            "}");
    });
    const WriterRun run = checkUpdates(server.url());
    EXPECT_EQ(shown(run.status, run.valueOf("Newer version"), run.valueOf("Address")), "0 99 https://x/")
        << run.errors;
    EXPECT_TRUE(
        checkList("{ PelvorWriter = { ReleaseVersion = 1; }; }").prints("This is the newest version."));
    EXPECT_TRUE(checkList("{ Other = {}; }").complains("say nothing about this program"));
    EXPECT_TRUE(checkList("{").complains("cannot be loaded: its content cannot be understood."));
    EXPECT_TRUE(
        checkUpdates("file:///nowhere").complains("“file:///nowhere” cannot be loaded: the file does"));
}

}  // namespace
