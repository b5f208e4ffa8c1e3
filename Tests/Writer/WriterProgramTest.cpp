// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <regex>

#include "Prelude.h"
#include "Sanitizers.h"
#include "WriterProgram.h"

namespace {

using namespace std::string_literals;
using Arguments = std::vector<std::string>;

struct WriterProgramTest : ::testing::Test {
    // Runs the program on a document of this text.
    WriterRun runOn(const std::string& text, Arguments arguments, const std::string& name = "a.txt") {
        arguments.push_back(program.folder.write(name, text));
        return program.run(arguments);
    }
    std::string copied() { return program.folder.read("b.txt"); }

    WriterProgram program;
    const std::string path = program.folder.path("a.txt"),
                      saveAs = "--save-as=" + program.folder.path("b.txt");
};

TEST_F(WriterProgramTest, TellsAboutTheSampleDocument) {
    const WriterRun run = program.run({});
    EXPECT_EQ(shown(run.status, run.errors), "0 ");
    expectAll({"Encoding -> UTF-8", "Bytes -> 26827", "UTF-16 units -> 25701", "Code points -> 25694",
               "Words -> 4545", "Paragraphs -> 84", "Longest paragraph -> number 61, of 710 units",
               "First line -> The Travelling Case", "Line feed (Unix) -> 84",
               "Reader -> Plain text, of 2, because it is for “txt” documents",
               // Found with profiles of a plug-in that is data alone.
               "English -> 32", "French -> 26", "German -> 18", "Spanish -> "},
              [&](const std::string& label) { return run.valueOf(label); });
}

// The program's own table, tables of plug-ins with code and of data alone, and of the one that comes later.
TEST_F(WriterProgramTest, SpeaksTheLanguageOfTheUser) {
    auto expectLines = [this](const char* locale, std::initializer_list<const char*> lines) {
        program.locale = locale;
        const WriterRun run = program.run({});
        EXPECT_EQ(run.status, 0);
        for (const char* line : lines) EXPECT_THAT(run.output, HasSubstr(line));
        EXPECT_FALSE(run.prints("    _")) << "a key without translation\n" << run.output;
    };
    expectLines("en_US.UTF-8",
                {"Document readers: Plain text (txt, text, log, *), Markdown text (md, markdown), ",
                 "English: ", "Last line: ended", "Document services: Word statistics", "Desktops: "});
    expectLines("fr_FR.UTF-8",
                {"Lecteurs de documents : Texte brut (txt, text, log, *), Texte Markdown (md, markdown), ",
                 "Unités de mesure : Millimètre (mm), Centimètre (cm), Pouce (in)",
                 "Anglais : ", "Dernière ligne : terminée", "Lettres par mot : 4,",
                 "Services de documents : Statistique des mots", "Bureaux : "});
    expectLines("de_CH.UTF-8",
                {"Dokumentleser: Reiner Text (txt, text, log, *), Markdown-Text (md, markdown), ",
                 "Englisch: ", "Letzte Zeile: abgeschlossen", "Buchstaben je Wort: 4.",
                 "Dokumentdienste: Wortstatistik", "Arbeitsflächen: "});
    for (const char* locale : {"C", "", "ja_JP.UTF-8", "nonsense"}) {
        program.locale = locale;
        EXPECT_TRUE(program.run({"--list"}).prints("Document readers: ")) << locale;
    }
}

TEST_F(WriterProgramTest, TellsAboutItself) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"en_GB.UTF-8", "A small word processor\nVersion: PelvorWriter [0-9.]+\n",
         "Built on: [0-9]{1,2} [A-Z][a-z]+ 20[0-9]{2}\nPlug-ins: HexDump, .*PlainText.*\n"},
        {"fr_FR.UTF-8", "Un petit traitement de texte\nVersion : PelvorWriter [0-9.]+\n",
         "Construit le : [0-9]{2}/[0-9]{2}/20[0-9]{2}\nModules : HexDump, .*\n"},
        {"de_DE.UTF-8", "Eine kleine Textverarbeitung\nVersion: PelvorWriter [0-9.]+\n",
         "Gebaut am: [0-9]{1,2}\\.[0-9]{1,2}\\.20[0-9]{2}\nModule: HexDump, .*\n"},
    };
    for (const auto& [locale, first, last] : rows) {
        program.locale = locale;
        const WriterRun run = program.run({"--about"});
        EXPECT_EQ(shown(run.status, run.errors), "0 ");
        EXPECT_TRUE(std::regex_match(run.output, std::regex(first + std::string(last)))) << run.output;
    }
    program.locale = "en_GB.UTF-8";
    const std::string plugIns = program.useCopy();
    std::filesystem::resize_file(plugIns + "/../Resources/About.nib", 100);
    const WriterRun run = program.run({"--about"});
    EXPECT_EQ(shown(run.status, run.output), "1 ");
    EXPECT_THAT(run.errors, HasSubstr("The interface file “About” is missing or damaged."));
}

TEST_F(WriterProgramTest, KeepsTheFormatsOfRichText) {
    const std::string start = "{\\rtf1\\ansi{\\fonttbl{\\f0 DejaVu Sans;}}a {\\b bold} word";
    const std::string rich = program.folder.path("a.rtf");
    // Over the file itself, for nothing was left out.
    WriterRun run =
        runOn(start + "\\par\n}",
              {"--find=bold", "--replace=BOLD", "--edit=insert 2 very ", "--save-as=" + rich}, "a.rtf");
    EXPECT_EQ(shown(run.status, run.errors), "0 ");
    EXPECT_EQ(run.valueOf("Reader"), "Rich text, of 3, because it is for “rtf” documents");
    EXPECT_EQ(run.valueOf("First line"), "a bold word");
    EXPECT_TRUE(run.prints("Plug-ins (10): ")) << "the plug-in is loaded when the document is read";
    EXPECT_THAT(program.folder.read("a.rtf"),
                HasSubstr("a very \\plain\\b\\lang2057 BOLD\\plain\\lang2057  word\\par"));
    // As text, and from text.
    run = program.run({rich, saveAs});
    EXPECT_EQ(copied(), "a very BOLD word\n");
    EXPECT_TRUE(run.prints("Only the text was written; the document has formats besides."));
    run = runOn("x {y}\n", {"--save-as=" + rich});
    EXPECT_THAT(program.folder.read("a.rtf"), HasSubstr("x \\{y\\}\\par"));
    // What was left out, and where the file is broken.
    run = runOn(start + "\\trowd{\\i", {"--save-as=" + rich}, "a.rtf");
    EXPECT_TRUE(run.prints("The file ends at byte 64 inside a group; it was read up to there.\n"));
    EXPECT_TRUE(run.prints("Left out is what these control words say: trowd."));
    EXPECT_TRUE(run.complains("leaves out some of what is in the file")) << run.errors;
    // Named an encoding, or no rich text: text.
    EXPECT_THAT(runOn(start, {"--encoding=utf-8"}, "a.rtf").valueOf("Reader"),
                StartsWith("Plain text, the first of 3"));
    EXPECT_EQ(runOn("words", {}, "a.rtf").valueOf("First line"), "words");
}

TEST_F(WriterProgramTest, LoadsAPlugInLaterAndHearsOfItsProfiles) {
    const WriterRun listing = program.run({"--list"}), run = program.run({});
    EXPECT_TRUE(listing.prints("Plug-ins (10): ") && !listing.prints("Word statistics"));
    const std::size_t arrival = run.output.find(
        "\nLoaded for the document\n    Plug-ins (1): WordStatistics\n"
        "    Document services: Word statistics\n");
    ASSERT_NE(arrival, std::string::npos);
    EXPECT_LT(run.output.find("\nDocument “Sample.txt”"), arrival);
    // Both are made by its load-time hooks.
    EXPECT_GT(std::atoi(run.valueOf("Sentences").c_str()), 200);
    const std::string words = run.valueOf("Most frequent words");
    EXPECT_EQ(std::count(words.begin(), words.end(), ','), 4) << words;
}

TEST_F(WriterProgramTest, ReadsWhateverItIsGiven) {
    auto expectReport = [this](const char* name, const std::string& content, const char* reader,
                               const char* bytesAndWords) {
        const WriterRun run = runOn(content, {}, name);
        EXPECT_EQ(shown(run.status, run.errors), "0 ") << name;
        EXPECT_THAT(run.valueOf("Reader"), StartsWith(reader)) << name;
        EXPECT_EQ(shown(run.valueOf("Bytes"), run.valueOf("Words")), bytesAndWords) << name;
    };
    expectReport("empty.txt", "", "Plain text, of 2", "0 0");
    expectReport("notes.md", "# Two *words*\n", "Markdown text, of 3, because it is for “md” documents",
                 "14 2");
    expectReport("picture.md", "\x89PNG\r\n\x1A\n\0\0\0\r"s, "Bytes in hexadecimal, the first of 3", "12 20");
    expectReport("data.bin", "plain words", "Bytes in hexadecimal, of 2, because it is for “bin”", "11 17");
    expectReport("Brief.TXT", "gr\xFC\337e", "Plain text, of 2, because it is for “TXT”", "5 1");
}

TEST_F(WriterProgramTest, ReadsInTheEncodingThatIsNamed) {
    const WriterRun run = runOn("\xCF\xF0\xE8\xE2\xE5\xF2", {"--encoding", "windows-1251"});
    EXPECT_EQ(shown(run.valueOf("First line"), run.valueOf("Encoding")), "Привет windows-1251");
    // The reader of bytes has no use for an encoding, so the document goes to the next reader.
    const WriterRun bytes = runOn("plain words", {"--encoding=utf-8"}, "a.bin");
    EXPECT_THAT(bytes.valueOf("Reader"), StartsWith("Plain text, the first of 2"));
    const WriterRun marked = runOn("\xEF\xBB\xBFx", {"--encoding=iso-8859-1"});
    EXPECT_TRUE(marked.prints("The byte-order mark of the file is that of the encoding “UTF-8”."));
}

TEST_F(WriterProgramTest, SaysHowSureAGuessOfTheEncodingIs) {
    const WriterRun run = runOn(
        "gr\xFC\xDF"
        "e",
        {});
    EXPECT_EQ(run.valueOf("Encoding"), "windows-1252");
    EXPECT_TRUE(run.prints("The encoding is a guess, sure to 50 %. “--encoding” names another one."))
        << run.output;
    EXPECT_FALSE(run.valueOf("Others that fit").empty());
    EXPECT_FALSE(runOn("grün", {}).prints("guess"));
    const WriterRun names = program.run({"--encodings"});
    EXPECT_THAT(names.output,
                AllOf(HasSubstr("\nbig5"), HasSubstr("\nwindows-1257 "), Not(HasSubstr("Plug-ins"))));
    const std::string redundant = "\x1B$B$3\x1B$B$l\x1B(B";
    const WriterRun lossy = runOn(redundant, {saveAs});
    EXPECT_EQ(shown(lossy.status, copied()), "1 ");
    EXPECT_TRUE(lossy.complains("its encoding “iso-2022-jp” was guessed, and would give other bytes"));
    EXPECT_EQ(runOn(redundant, {saveAs, "--save-encoding=utf-8"}).status, 0);
    EXPECT_EQ(copied(), "これ");
    EXPECT_EQ(runOn(redundant, {saveAs, "--encoding=iso-2022-jp"}).status, 0);
}

TEST_F(WriterProgramTest, SaysInOneLineWhyADocumentCannotBeOpened) {
    program.locale = "fr_FR.UTF-8";
    const std::string latin = program.folder.write("latin.txt", "caf\xE9");
    std::filesystem::create_symlink("loop", program.folder.path("loop"));
    auto expectComplaint = [&](const Arguments& arguments, const char* complaint) {
        const WriterRun run = program.run(arguments);
        EXPECT_EQ(run.status, 1) << complaint;
        EXPECT_THAT(run.errors, HasSubstr(complaint));
        EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
    };
    expectComplaint({program.folder.path("missing.txt")},
                    "missing.txt » n’a pas pu être ouvert : le fichier n’existe pas.");
    expectComplaint({program.folder.path("")}, "c’est un dossier.");
    expectComplaint({"/dev/null"}, "ce n’est pas un fichier ordinaire.");
    expectComplaint({program.folder.path("loop")},
                    "loop » n’a pas pu être ouvert : ses liens tournent en rond.");
    expectComplaint({std::string(300, 'n')}, "n’a pas pu être ouvert : son nom est trop long.");
    expectComplaint({latin, "--encoding", "UTF-8"},
                    "« latin.txt » n’est pas du texte dans le codage « UTF-8 ».");
    expectComplaint({latin, "--encoding", "klingon"},
                    "Le codage « klingon » est inconnu. « --encodings » énumère");
    expectComplaint({"a\x1B[31m.txt"}, "« a�[31m.txt »");
}

TEST_F(WriterProgramTest, ChangesTheWholeDocumentAndWritesIt) {
    auto expectChange = [this](Arguments arguments, const char* before, const char* after, const char* line) {
        arguments.push_back(saveAs);
        const WriterRun run = runOn(before, arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(copied(), after) << line;
        EXPECT_THAT(run.output, HasSubstr(line + "\n"s));
    };
    expectChange({"--find", "o", "--replace", "0"}, "foo boo", "f00 b00", "Found “o”: 4, first at 1");
    expectChange({"--find", "aa", "--replace", ""}, "aaaaa", "a", "Replaced by “”: 2");
    expectChange({"--find", "é"}, "e\xCC\x81", "e\xCC\x81", "Found “é”: nowhere");
    expectChange({"--find", "a"}, "a\na", "a\na", "Found “a”: 2, first at 0");
    expectChange({"--line-endings=cr"}, "a\r\nb\rc\n\n", "a\rb\rc\r\r", "Line endings: cr");
    expectChange({"--wrap", "10"}, "The quick brown fox", "The quick\n brown fox",
                 "Lines wrapped at column 10");
    expectChange({"--case=upper"}, "straße", "STRASSE", "Case: upper");
    expectChange({"--case=lower"}, "Ä B", "ä b", "Case: lower");
    expectChange({"--case=capitals"}, "hello wORLD", "Hello World", "Case: capitals");
    expectChange({"--case=toggle"}, "Hello 1", "hELLO 1", "Case: toggle");
    expectChange(
        {"--wrap=4", "--line-endings=crlf", "--case=upper", "--find=x", "--replace=a b", "--edit=insert 0 é"},
        "xc de", "éA\r\n BC\r\n DE", "Replaced by “a b”: 1");
}

TEST_F(WriterProgramTest, WritesNothingWhereAChangeBreaksOff) {
    if (!kMemoryMayBeLimited) GTEST_SKIP();
    rlimit usual;
    getrlimit(RLIMIT_AS, &usual);
    const rlimit small{rlim_t{1} << 30, usual.rlim_max};
    setrlimit(RLIMIT_AS, &small);
    const WriterRun run =
        runOn(std::string(1'000'000, 'a'), {"--find=a", "--replace", std::string(1000, 'b'), saveAs});
    setrlimit(RLIMIT_AS, &usual);
    EXPECT_EQ(shown(run.status, copied()), "1 ");
    EXPECT_TRUE(run.prints("Found “a”: 1000000")) << run.output;
    EXPECT_TRUE(run.complains("The work was broken off: ")) << run.errors;
}

TEST_F(WriterProgramTest, ShowsWhatStandsAtAPosition) {
    auto expectLines = [this](const std::string& position, const std::string& lines) {
        const WriterRun run = runOn("foo bar costs $1,250.99 today.\r\nnext", {"--at", position});
        EXPECT_EQ(run.status, 0);
        EXPECT_THAT(run.output, HasSubstr("At " + position + "\n    " + lines));
    };
    expectLines("4", "Word: {4, 3} bar\n    With the word before: {0, 7} foo bar\n    Paragraph: {0, 32} ");
    expectLines("18", "Quantity: {14, 9} $1,250.99\n    With the word before: {13, 10}  $1,250.99\n");
    expectLines("23", "Word: {23, 0} \n");
    expectLines("36",
                "Word: {32, 4} next\n    With the word before: {31, 5} �next\n    Paragraph: {32, 4} next\n");
    const WriterRun stayed = program.run({path, "--stay"}, "at 37\ndelete 0 4\nat 0\nquit\n");
    EXPECT_TRUE(stayed.complains("The position “37” of “--at” is not in the document, which has 36"));
    EXPECT_EQ(stayed.valueOf("Word"), "{0, 3} bar");
}

TEST_F(WriterProgramTest, CountsOnceAfterABurstOfEdits) {
    const WriterRun run =
        runOn("one two\nthree", {"--edit", "delete 0 4", "--edit=insert 0 zero \\n", "--edit=replace 99 1 x",
                                 "--edit", "insert 0 minus ", saveAs});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(
        run.complains("The edit “replace 99 1 x” lies outside the document, which has 15 UTF-16 units."));
    EXPECT_EQ(run.countOf("\nCounted\n"), 1u) << run.output;
    EXPECT_EQ(shown(run.valueOf("Words"), run.valueOf("Paragraphs")), "4 3");
}

TEST_F(WriterProgramTest, WritesNothingWhereAStepFailed) {
    program.folder.write("b.txt", "old");
    auto expectNothingWritten = [this](Arguments arguments, const char* lines) {
        arguments.insert(arguments.end(), {path, saveAs});
        const WriterRun run = program.run(arguments, lines);
        EXPECT_EQ(shown(run.status, copied()), "1 old");
        EXPECT_TRUE(run.complains("b.txt” was not written, because not all that was asked for was done."));
    };
    program.folder.write("a.txt", "one");
    expectNothingWritten({"--edit=delete 0 9", "--edit=insert 0 a"}, "");
    expectNothingWritten({"--at=9"}, "");
    expectNothingWritten({"--stay"}, "insert 0 a\nhop\nquit");
    expectNothingWritten({"--stay"}, "insert 0 caf\xE9");
    expectNothingWritten({"--stay"}, "hop\nsave\nhop\nsave\nquit");
}

TEST_F(WriterProgramTest, WritesAfterAFailedStepWhenItIsAskedOnceMore) {
    program.folder.write("a.txt", "one");
    const WriterRun run =
        program.run({path, saveAs, "--stay", "--edit=delete 0 9"}, "insert 0 a\nsave\nsave\ninsert 0 b\n");
    EXPECT_TRUE(run.complains("not all that was asked for was done. “save” once more writes it as it is."));
    EXPECT_EQ(shown(run.status, copied(), run.countOf("\nWritten\n")), "1 baone 2");
}

TEST_F(WriterProgramTest, RefusesBytesThatAreNotUTF8) {
    program.folder.write("a.txt", "one");
    program.locale = "de_DE.UTF-8";
    const WriterRun run = program.run({path, "--save-as", program.folder.path("caf\xE9.txt")});
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(run.complains("caf\\xE9.txt“ ist kein UTF-8; Namen und Texte müssen es sein.")) << run.errors;
    EXPECT_FALSE(std::filesystem::exists(program.folder.path("caf\uFFFD.txt")));
    EXPECT_TRUE(
        program.run({path, "--stay"}, "insert 0 caf\xE9").complains("„insert 0 caf\\xE9“ ist kein UTF-8."));
}

TEST_F(WriterProgramTest, WritesTheDocumentThoughNobodyReadsTheReport) {
    program.folder.write("a.txt", "one");
    const WriterRun run = program.run({path, saveAs}, "", WriterOutput::unread);
    EXPECT_EQ(shown(run.status, copied(), run.errors), "1 one stdout: Broken pipe\n");
}

TEST_F(WriterProgramTest, NeverReplacesADocumentByLessThanWasInIt) {
    auto expectRefusal = [this](const char* name, const std::string& content, const char* copyName,
                                const std::string& complaint) {
        const WriterRun run = runOn(content, {"--save-as", program.folder.path(copyName)}, name);
        EXPECT_EQ(run.status, complaint.empty() ? 0 : 1) << name;
        EXPECT_EQ(program.folder.read(name), content);
        EXPECT_THAT(run.errors, HasSubstr(complaint));
        return program.folder.read(copyName);
    };
    expectRefusal("r2.bin", "\0\1\2"s, "r2.bin", "“Bytes in hexadecimal” only shows documents");
    EXPECT_EQ(expectRefusal("r2.bin", "\0\1\2"s, "b.bin", "only shows documents"), "");
    expectRefusal("hello.txt", "hello\0world\n"s, "hello.txt", "only shows documents");
    expectRefusal("n.md", "# One\n", "n.md", "“Markdown text” leaves out some of what is in the file");
    std::filesystem::create_hard_link(program.folder.path("n.md"), program.folder.path("link.txt"));
    expectRefusal("n.md", "# One\n", "link.txt", "leaves out some");
    EXPECT_EQ(expectRefusal("n.md", "# One\n", "b.txt", ""), "One\n");
    EXPECT_EQ(expectRefusal("p.html", "<p>x\n", "p.html", ""), "<p>x\n")
        << "not a page that shows the source";
}

TEST_F(WriterProgramTest, KeepsTheEncodingAndTheMarkOfTheDocument) {
    const std::pair<const char*, std::string> cases[] = {
        {"UTF-8 with a mark", "\xEF\xBB\xBF\xC3\xA9"},
        {"UTF-16BE with a mark", "\xFE\xFF\0\xE9"s},
        {"windows-1252", "caf\xE9 \x80"},
    };
    for (const auto& [situation, content] : cases) {
        runOn(content, {saveAs});
        EXPECT_EQ(copied(), content) << situation;
    }
    runOn("\xEF\xBB\xBFx", {saveAs, "--save-encoding=UTF-8"});
    EXPECT_EQ(copied(), "x") << "a named encoding is written as it is named";
}

TEST_F(WriterProgramTest, StaysUntilItIsTold) {
    for (int signal : {0, SIGHUP, SIGINT, SIGTERM}) {
        program.folder.write("a.txt", "one two");
        WriterSession session = program.start({path, "--stay", saveAs});
        ASSERT_TRUE(session.waitFor("Code points: 7\n"));
        session.write("insert 7  three\ninsert 13  fo");
        session.write("ur\n\nsave\n");
        ASSERT_TRUE(session.waitFor("Written"));
        EXPECT_EQ(copied(), "one two three four");
        ASSERT_TRUE(session.waitFor("Code points: 18\n"));
        signal ? session.signal(signal) : session.write("delete 0 4\nquit\nsave\n");
        const WriterRun run = session.end();
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.countOf("Counted"), signal ? 2u : 3u) << run.output;
        EXPECT_EQ(copied(), signal ? "one two three four" : "two three four");
    }
}

TEST_F(WriterProgramTest, ReadsAgainWhatAnotherProgramHasSaved) {
    const std::string late = program.useCopy() + "/WordStatistics.bundle";
    const TemporaryFolder& folder = program.folder;
    const std::string other = folder.path("other"), elsewhere = folder.path("late");
    const std::function<void(const std::string&)> styles[] = {
        [&](const std::string& text) { folder.write("a.txt", text); },
        [&](const std::string& text) { rename(folder.write("other", text).c_str(), path.c_str()); },
        [&](const std::string& text) { unlink(path.c_str()), folder.write("a.txt", text); },
        [&](const std::string& text) { rename(path.c_str(), other.c_str()), folder.write("a.txt", text); },
        [&](const std::string& text) {
            folder.write("other", text);
            renameat2(AT_FDCWD, other.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE);
        },
    };
    rename(late.c_str(), elsewhere.c_str());
    folder.write("a.txt", "");
    WriterSession session = program.start({path, "--stay"});
    ASSERT_TRUE(session.waitFor("Code points: 0\n"));
    std::string text;
    for (const auto& save : styles) {
        save(text += "word ");
        ASSERT_TRUE(session.waitFor("Code points: " + std::to_string(text.size()) + "\n"));
    }
    rename(elsewhere.c_str(), late.c_str());
    EXPECT_TRUE(session.waitFor("Loaded for the document\n    Plug-ins (1): WordStatistics"));
    session.write("insert 0 x\n");
    EXPECT_TRUE(session.waitFor("Code points: 26\n"));
    folder.write("a.txt", "another");
    EXPECT_TRUE(session.waitFor("It was not read again"));
    unlink(path.c_str());
    EXPECT_TRUE(session.waitFor("has removed the document"));
    EXPECT_EQ(session.end().status, 0);
}

TEST_F(WriterProgramTest, TakesTheEndOfItsInputForQuit) {
    program.folder.write("a.txt", "one");
    for (const char* lines : {"insert 0 zero \nquit\nhop", "delete 0 5\n", "insert 0 zero "})
        EXPECT_EQ(program.run({path, "--stay", "--save-as", path}, lines).status, 0);
    EXPECT_EQ(program.folder.read("a.txt"), "zero one");
    WriterSession session = program.start({path, "--stay", saveAs});
    session.write("insert 0 minus ");
    EXPECT_TRUE(session.end().prints("Written"));
    EXPECT_EQ(copied(), "minus zero one");
    const WriterRun wrong = program.run({path, "--stay"}, "hop\nsave\n");
    EXPECT_TRUE(wrong.complains("The line “hop” means nothing."));
    EXPECT_TRUE(wrong.complains("The line “save” needs the argument “--save-as”."));
}

TEST_F(WriterProgramTest, ShowsItsProgressOnATerminalOnly) {
    std::string text;
    while (text.size() < 1'000'000) text += "some words\n";
    const WriterRun plain = runOn(text, {});
    const WriterRun onTerminal = program.run({path}, "", WriterOutput::terminal);
    EXPECT_THAT(onTerminal.output, AllOf(HasSubstr("\r\x1B[KCounting: 13 %\r\x1B[KCounting: 26 %"),
                                         HasSubstr("\r\x1B[K\r\nCounted\r\n")));
    EXPECT_FALSE(plain.prints("\x1B") || plain.prints("Counting"));
    EXPECT_EQ(plain.valueOf("Words"), std::to_string(2 * (text.size() / 11)));
}

TEST_F(WriterProgramTest, ExplainsItsArguments) {
    program.locale = "de_DE.UTF-8";
    const WriterRun help = program.run({"--help"}), wrong = program.run({"--colour"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.prints("--save-as FILE        schreibt das Dokument in die Datei"));
    EXPECT_EQ(shown(wrong.status, wrong.output, wrong.errors),
              "2  Das Argument „--colour“ ist nicht bekannt.\n");
}

TEST_F(WriterProgramTest, WritesInTheEncodingAndTheKindThatAreAskedFor) {
    auto expectContent = [this](const char* name, const char* encoding, const std::string& content) {
        const std::string copy = program.folder.path(name);
        const Arguments arguments{"--save-as", copy, "--save-encoding", encoding};
        EXPECT_EQ(runOn("naïve €\r\n<b", arguments).status, 0);
        EXPECT_THAT(program.folder.read(name), HasSubstr(content));
    };
    expectContent("b.txt", "windows-1252", "na\xEFve \x80\r\n<b");
    expectContent("b.txt", "UTF-16BE", "\0n\0a\0\xEF\0v\0e\0 \x20\xAC\0\r\0\n\0<\0b"s);
    expectContent("b.html", "us-ascii", "<p>na&#239;ve &#8364;</p>\n<p>&lt;b</p>");
}

TEST_F(WriterProgramTest, LeavesTheOldFileWhereWritingFails) {
    program.folder.write("b.txt", "old");
    const WriterRun unfit = runOn("Łódź", {saveAs, "--save-encoding", "iso-8859-1"});
    EXPECT_EQ(unfit.status, 1);
    EXPECT_TRUE(unfit.complains("characters that the encoding “iso-8859-1” lacks"));
    EXPECT_EQ(program.run({path, saveAs, "--save-encoding", "klingon"}).status, 1);
    EXPECT_EQ(copied(), "old");
    auto expectFailure = [this](const std::string& target, const char* reason) {
        const WriterRun run = program.run({path, "--save-as", target});
        EXPECT_EQ(run.status, 1) << target;
        EXPECT_THAT(run.errors, HasSubstr("” could not be written: "s + reason));
    };
    expectFailure(program.folder.path("no/such/folder.txt"), "the enclosing folder does not exist.");
    expectFailure(program.folder.path("a.txt/b.txt"), "a part of the path is no folder.");
    expectFailure(program.folder.path(""), "it is a folder.");
    std::filesystem::create_symlink("loop", program.folder.path("loop"));
    expectFailure(program.folder.path("loop"), "its links lead in a circle.");
    expectFailure(program.folder.path(std::string(300, 'n')), "its name is too long.");
    if (geteuid() != 0) expectFailure("/a.txt", "permission was denied.");
    rlimit usual;
    getrlimit(RLIMIT_FSIZE, &usual);
    const rlimit small{5000, usual.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    std::signal(SIGXFSZ, SIG_IGN);
    program.folder.write("a.txt", std::string(4000, 'a'));
    const WriterRun full = program.run({path, saveAs, "--save-encoding=UTF-16LE"});
    std::signal(SIGXFSZ, SIG_DFL);
    setrlimit(RLIMIT_FSIZE, &usual);
    EXPECT_THAT(full.errors, HasSubstr("the file would be too large. The old file is unchanged."));
    EXPECT_EQ(copied(), "old");
}

}  // namespace
