// SPDX-License-Identifier: Apache-2.0
#include <sys/resource.h>

#include <csignal>

#include "Prelude.h"
#include "Sanitizers.h"
#include "WriterProgram.h"

namespace pelvor {
namespace {

using namespace std::string_literals;

TEST(WriterProgram, TellsAboutTheSampleDocument) {
    const WriterRun run = WriterProgram().run({});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    const std::pair<const char*, const char*> values[] = {
        {"Encoding", "UTF-8"},
        {"Bytes", "26827"},
        {"UTF-16 units", "25701"},
        {"Code points", "25694"},
        {"Words", "4545"},
        {"Paragraphs", "84"},
        {"Longest paragraph", "number 61, of 710 units"},
        {"First line", "The Travelling Case"},
        {"Reader", "Plain text, of 2, because it is for “txt” documents"},
        {"Line feed (Unix)", "84"},
        // Found with profiles of a plug-in that is data alone.
        {"English", "32"},
        {"French", "26"},
        {"German", "18"},
        {"Spanish", ""},
    };
    for (const auto& [label, value] : values) EXPECT_EQ(run.valueOf(label), value) << label;
}

struct LanguageCase {
    const char* locale;
    const char* lines[5];
};

// The program's own table, tables of plug-ins with code and of data alone, and of the one that comes later.
const LanguageCase kLanguages[] = {
    {"en_US.UTF-8",
     {"Document readers: Plain text (txt, text, log, *), Markdown text (md, markdown), ",
      "Measurement units: Millimetre (mm), Centimetre (cm), Inch (in)", "English: ", "Last line: ended",
      "Document services: Word statistics"}},
    {"fr_FR.UTF-8",
     {"Lecteurs de documents : Texte brut (txt, text, log, *), Texte Markdown (md, markdown), ",
      "Unités de mesure : Millimètre (mm), Centimètre (cm), Pouce (in)",
      "Anglais : ", "Dernière ligne : terminée", "Services de documents : Statistique des mots"}},
    {"de_CH.UTF-8",
     {"Dokumentleser: Reiner Text (txt, text, log, *), Markdown-Text (md, markdown), ",
      "Maßeinheiten: Millimeter (mm), Zentimeter (cm), Zoll (in)",
      "Englisch: ", "Letzte Zeile: abgeschlossen", "Dokumentdienste: Wortstatistik"}},
};

TEST(WriterProgram, SpeaksTheLanguageOfTheUser) {
    for (const LanguageCase& expected : kLanguages) {
        const WriterRun run = WriterProgram(expected.locale).run({});
        EXPECT_EQ(run.status, 0);
        for (const char* line : expected.lines) EXPECT_TRUE(run.prints(line)) << line << run.output;
        EXPECT_FALSE(run.prints("    _")) << "a key without translation\n" << run.output;
    }
    for (const char* locale : {"C", "", "ja_JP.UTF-8", "nonsense"})
        EXPECT_TRUE(WriterProgram(locale).run({"--list"}).prints("Document readers: ")) << locale;
}

TEST(WriterProgram, LoadsAPlugInLaterAndHearsOfItsProfiles) {
    const WriterRun listing = WriterProgram().run({"--list"});
    EXPECT_TRUE(listing.prints("Plug-ins (10): "));
    EXPECT_FALSE(listing.prints("Word statistics"));
    const WriterRun run = WriterProgram().run({});
    const std::size_t document = run.output.find("\nDocument “Sample.txt”");
    const std::size_t arrival = run.output.find(
        "\nLoaded for the document\n    Plug-ins (1): WordStatistics\n"
        "    Document services: Word statistics\n");
    EXPECT_LT(document, arrival);
    ASSERT_NE(arrival, std::string::npos);
    // Both are made by its load-time hooks.
    EXPECT_GT(std::atoi(run.valueOf("Sentences").c_str()), 200);
    const std::string words = run.valueOf("Most frequent words");
    EXPECT_EQ(std::count(words.begin(), words.end(), ','), 4) << words;
}

struct DocumentCase {
    const char* name;
    std::string content;
    const char* reader;
    const char* bytes;
    const char* words;
};

TEST(WriterProgram, ReadsWhateverItIsGiven) {
    const DocumentCase cases[] = {
        {"empty.txt", "", "Plain text, of 2", "0", "0"},
        {"one.txt", "x", "Plain text, of 2", "1", "1"},
        {"zero.txt", "\0"s, "Bytes in hexadecimal, the first of 2 that did not refuse", "1", "2"},
        {"noextension", "two words", "Plain text, of 2, because it takes every document", "9", "2"},
        {"notes.md", "# Two *words*\n", "Markdown text, of 3, because it is for “md” documents", "14", "2"},
        {"picture.md", "\x89PNG\r\n\x1A\n\0\0\0\r"s, "Bytes in hexadecimal, the first of 3", "12", "20"},
        {"data.bin", "plain words", "Bytes in hexadecimal, of 2, because it is for “bin”", "11", "17"},
        {"Brief.TXT",
         "gr\xFC\xDF"
         "e",
         "Plain text, of 2, because it is for “TXT”", "5", "1"},
    };
    for (const DocumentCase& expected : cases) {
        WriterProgram program;
        const WriterRun run = program.run({program.folder.write(expected.name, expected.content)});
        EXPECT_EQ(run.status, 0) << expected.name;
        EXPECT_EQ(run.errors, "") << expected.name;
        EXPECT_EQ(run.valueOf("Reader").find(expected.reader), 0u) << expected.name << run.output;
        EXPECT_EQ(run.valueOf("Bytes"), expected.bytes) << expected.name;
        EXPECT_EQ(run.valueOf("Words"), expected.words) << expected.name;
    }
}

TEST(WriterProgram, ReadsInTheEncodingThatIsNamed) {
    WriterProgram program;
    const std::string path = program.folder.write("a.txt", "\xCF\xF0\xE8\xE2\xE5\xF2");
    const WriterRun run = program.run({path, "--encoding", "windows-1251"});
    EXPECT_EQ(run.valueOf("First line"), "Привет");
    EXPECT_EQ(run.valueOf("Encoding"), "windows-1251");
    EXPECT_EQ(program.run({path}).valueOf("Encoding"), "windows-1252");
}

struct FaultCase {
    std::vector<std::string> arguments;
    const char* complaint;
};

TEST(WriterProgram, SaysInOneLineWhyADocumentCannotBeOpened) {
    WriterProgram program("fr_FR.UTF-8");
    const std::string latin = program.folder.write("latin.txt", "caf\xE9");
    const FaultCase cases[] = {
        {{program.folder.path("missing.txt")},
         "missing.txt » n’a pas pu être ouvert : ce fichier n’existe pas."},
        {{program.folder.path("")}, "c’est un dossier."},
        {{"/dev/null"}, "ce n’est pas un fichier."},
        {{latin, "--encoding", "UTF-8"}, "« latin.txt » n’est pas du texte dans le codage « UTF-8 »."},
        {{latin, "--encoding", "klingon"}, "Le codage « klingon » est inconnu."},
        {{"a\x1B[31m.txt"}, "« a�[31m.txt »"},
    };
    for (const FaultCase& expected : cases) {
        const WriterRun run = program.run(expected.arguments);
        EXPECT_EQ(run.status, 1) << expected.complaint;
        EXPECT_TRUE(run.complains(expected.complaint)) << run.errors;
        EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
    }
}

struct ChangeCase {
    std::vector<std::string> arguments;
    const char* before;
    const char* after;
    const char* line;
};

const ChangeCase kChanges[] = {
    {{"--find", "o", "--replace", "0"}, "foo boo", "f00 b00", "Found “o”: 4, first at 1\n"},
    {{"--find", "aa", "--replace", ""}, "aaaaa", "a", "Replaced by “”: 2\n"},
    {{"--find", "é"}, "e\xCC\x81", "e\xCC\x81", "Found “é”: nowhere\n"},
    {{"--find", "a"}, "a\na", "a\na", "Found “a”: 2, first at 0\n"},
    {{"--line-endings", "crlf"}, "a\r\nb\rc\n", "a\r\nb\r\nc\r\n", "Line endings: crlf\n"},
    {{"--line-endings=cr"}, "a\r\nb\rc\n\n", "a\rb\rc\r\r", "Line endings: cr\n"},
    {{"--wrap", "10"}, "The quick brown fox", "The quick\n brown fox", "Lines wrapped at column 10\n"},
    {{"--case=upper"},
     "stra\xC3\x9F"
     "e",
     "STRASSE",
     "Case: upper\n"},
    {{"--case=lower"}, "\xC3\x84 B", "\xC3\xA4 b", "Case: lower\n"},
    {{"--case=capitals"}, "hello wORLD", "Hello World", "Case: capitals\n"},
    {{"--case=toggle"}, "Hello 1", "hELLO 1", "Case: toggle\n"},
    {{"--wrap=4", "--line-endings=crlf", "--case=upper", "--find=x", "--replace=a b", "--edit", "insert 0 é"},
     "xc de",
     "éA\r\n BC\r\n DE",
     "Replaced by “a b”: 1\n"},
};

TEST(WriterProgram, ChangesTheWholeDocumentAndWritesIt) {
    for (const ChangeCase& change : kChanges) {
        WriterProgram program;
        std::vector<std::string> arguments = change.arguments;
        arguments.push_back(program.folder.write("a.txt", change.before));
        arguments.push_back("--save-as=" + program.folder.path("b.txt"));
        const WriterRun run = program.run(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(program.folder.read("b.txt"), change.after) << change.line;
        EXPECT_TRUE(run.prints(change.line)) << run.output;
    }
}

TEST(WriterProgram, WritesNothingWhereAChangeBreaksOff) {
    if (!kMemoryMayBeLimited) GTEST_SKIP();
    WriterProgram program;
    const std::string path = program.folder.write("a.txt", std::string(1'000'000, 'a'));
    rlimit usual;
    getrlimit(RLIMIT_AS, &usual);
    const rlimit small{rlim_t{1} << 30, usual.rlim_max};
    setrlimit(RLIMIT_AS, &small);
    const WriterRun run = program.run(
        {path, "--find=a", "--replace", std::string(1000, 'b'), "--save-as", program.folder.path("b.txt")});
    setrlimit(RLIMIT_AS, &usual);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.prints("Found “a”: 1000000")) << run.output;
    EXPECT_TRUE(run.complains("The work was broken off: ")) << run.errors;
    EXPECT_EQ(program.folder.read("b.txt"), "");
}

TEST(WriterProgram, ShowsWhatStandsAtAPosition) {
    const struct {
        const char* position;
        const char* lines;
    } cases[] = {
        {"4", "    Word: {4, 3} bar\n    With the word before: {0, 7} foo bar\n    Paragraph: {0, 32} "},
        {"18", "    Quantity: {14, 9} $1,250.99\n    With the word before: {13, 10}  $1,250.99\n"},
        {"23", "    Word: {23, 0} \n"},
        {"36",
         "    Word: {32, 4} next\n    With the word before: {31, 5} �next\n    Paragraph: {32, 4} next\n"},
    };
    WriterProgram program;
    const std::string path = program.folder.write("a.txt", "foo bar costs $1,250.99 today.\r\nnext");
    for (const auto& [position, lines] : cases) {
        const WriterRun run = program.run({path, "--at", position});
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(run.prints(std::string("At ") + position + "\n" + lines)) << lines << run.output;
    }
    const WriterRun stayed = program.run({path, "--stay"}, "at 37\ndelete 0 4\nat 0\nquit\n");
    EXPECT_TRUE(stayed.complains("The position “37” of “--at” is not in the document, which has 36"));
    EXPECT_EQ(stayed.valueOf("Word"), "{0, 3} bar");
}

TEST(WriterProgram, CountsOnceAfterABurstOfEdits) {
    WriterProgram program;
    const std::string path = program.folder.write("a.txt", "one two\nthree");
    const WriterRun run =
        program.run({path, "--edit", "delete 0 4", "--edit", "insert 0 zero \\n", "--edit", "replace 99 1 x",
                     "--edit", "insert 0 minus ", "--save-as", program.folder.path("b.txt")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(
        run.complains("The edit “replace 99 1 x” lies outside the document, which has 15 UTF-16 units."));
    EXPECT_EQ(run.countOf("\nCounted\n"), 1u) << run.output;
    EXPECT_EQ(run.valueOf("Words"), "4");
    EXPECT_EQ(run.valueOf("Paragraphs"), "3");
    EXPECT_EQ(program.folder.read("b.txt"), "minus zero \ntwo\nthree");
}

TEST(WriterProgram, StaysUntilItIsTold) {
    for (int signal : {0, SIGINT, SIGTERM}) {
        WriterProgram program;
        const std::string path = program.folder.write("a.txt", "one two");
        const auto session = program.start({path, "--stay", "--save-as", program.folder.path("b.txt")});
        ASSERT_TRUE(session->waitFor("Code points: 7\n"));
        session->write("insert 7  three\ninsert 13  fo");
        session->write("ur\n\nsave\n");
        ASSERT_TRUE(session->waitFor("Written"));
        EXPECT_EQ(program.folder.read("b.txt"), "one two three four");
        ASSERT_TRUE(session->waitFor("Code points: 18\n"));
        signal ? session->signal(signal) : session->write("delete 0 4\nquit\nsave\n");
        const WriterRun run = session->end();
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.countOf("Counted"), signal ? 2u : 3u) << run.output;
        EXPECT_EQ(program.folder.read("b.txt"), signal ? "one two three four" : "two three four");
    }
}

TEST(WriterProgram, TakesLinesOfAFileAndOutlivesItsInput) {
    WriterProgram program;
    const std::string lines = program.folder.write("lines", "insert 0 zero \nhop\nquit");
    const std::string path = program.folder.write("a.txt", "one");
    const WriterRun run = program.run({path, "--stay", "--save-as", path}, "", WriterOutput::pipe, lines);
    EXPECT_TRUE(run.complains("The line “hop” means nothing."));
    EXPECT_EQ(program.folder.read("a.txt"), "zero one");
    const auto session = program.start({path, "--stay"}, WriterOutput::pipe, "/dev/null");
    EXPECT_TRUE(session->waitFor("Code points"));
    session->signal(SIGTERM);
    EXPECT_EQ(session->end().status, 0);
}

TEST(WriterProgram, ShowsItsProgressOnATerminalOnly) {
    WriterProgram program;
    std::string text;
    while (text.size() < 1'000'000) text += "some words\n";
    const std::string path = program.folder.write("a.txt", text);
    const WriterRun shown = program.run({path}, "", WriterOutput::terminal);
    EXPECT_TRUE(shown.prints("\r\x1B[KCounting: 13 %\r\x1B[KCounting: 26 %")) << shown.output;
    EXPECT_TRUE(shown.prints("\r\x1B[K\r\nCounted\r\n"));
    const WriterRun plain = program.run({path});
    EXPECT_FALSE(plain.prints("\x1B") || plain.prints("Counting"));
    EXPECT_EQ(plain.valueOf("Words"), std::to_string(2 * (text.size() / 11)));
}

TEST(WriterProgram, ExplainsItsArguments) {
    const WriterRun help = WriterProgram("de_DE.UTF-8").run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.prints("--save-as FILE        schreibt das Dokument in die Datei"));
    const WriterRun wrong = WriterProgram("de_DE.UTF-8").run({"--colour"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.errors, "Das Argument „--colour“ ist nicht bekannt.\n");
    EXPECT_EQ(wrong.output, "");
}

TEST(WriterProgram, WritesInTheEncodingAndTheKindThatAreAskedFor) {
    const struct {
        const char* name;
        const char* encoding;
        std::string content;
    } cases[] = {
        {"b.txt", "windows-1252", "na\xEFve \x80\r\n<b"},
        {"b.txt", "UTF-16BE", "\0n\0a\0\xEF\0v\0e\0 \x20\xAC\0\r\0\n\0<\0b"s},
        {"b.html", "us-ascii", "<p>na&#239;ve &#8364;</p>\n<p>&lt;b</p>"},
    };
    for (const auto& [name, encoding, content] : cases) {
        WriterProgram program;
        const std::string source = program.folder.write("a.txt", "na\xC3\xAFve €\r\n<b");
        const std::string copy = program.folder.path(name);
        EXPECT_EQ(program.run({source, "--save-as", copy, "--save-encoding", encoding}).status, 0);
        EXPECT_THAT(program.folder.read(name), HasSubstr(content));
    }
}

TEST(WriterProgram, LeavesTheOldFileWhereWritingFails) {
    WriterProgram program;
    const std::string source = program.folder.write("a.txt",
                                                    "\xC5\x81\xC3\xB3"
                                                    "d\xC5\xBA");
    const std::string old = program.folder.write("old.txt", "old");
    const WriterRun unfit = program.run({source, "--save-as", old, "--save-encoding", "iso-8859-1"});
    EXPECT_EQ(unfit.status, 1);
    EXPECT_TRUE(unfit.complains("characters that the encoding “iso-8859-1” lacks"));
    EXPECT_EQ(program.folder.read("old.txt"), "old");
    EXPECT_EQ(program.run({source, "--save-as", old, "--save-encoding", "klingon"}).status, 1);
    EXPECT_EQ(program.run({source, "--save-as", program.folder.path("no/such/folder.txt")}).status, 1);
}

}  // namespace
}  // namespace pelvor
