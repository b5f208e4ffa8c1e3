// SPDX-License-Identifier: Apache-2.0
// Pages, as the program writes them.
#include <unistd.h>

#include "Prelude.h"
#include "WriterProgram.h"

namespace {

struct PagesTest : ::testing::Test {
    // The text of each page of a PDF document.
    std::vector<std::string> pagesOf(const std::string& name) {
        const std::string text = folder.path("text");
        EXPECT_EQ(std::system(("pdftotext -raw " + folder.path(name) + " " + text).c_str()), 0);
        std::vector<std::string> pages(1);
        std::istringstream lines(folder.read("text"));
        for (std::string line; std::getline(lines, line);) {
            for (; !line.empty() && line[0] == '\f'; line.erase(0, 1)) pages.emplace_back();
            const auto first = line.find_first_not_of(' ');
            if (first != line.npos) pages.back() += line.substr(first) + "\n";
        }
        if (pages.back().empty()) pages.pop_back();
        return pages;
    }
    WriterRun set(const std::string& document, std::vector<std::string> arguments) {
        arguments.push_back(document);
        return program.run(arguments);
    }

    WriterProgram program;
    TemporaryFolder& folder = program.folder;
    const std::string pdf = folder.path("a.pdf");
};

TEST_F(PagesTest, HaveHeadersWithTheirNumbers) {
    if (std::system("pdftotext -v 2>/dev/null")) GTEST_SKIP() << "needs pdftotext";
    const WriterRun run = set(WRITER_SAMPLE, {"--pdf=" + pdf});
    EXPECT_EQ(shown(run.status, run.errors), "0 ");
    EXPECT_EQ(run.valueOf("Pages"), "4");
    const auto pages = pagesOf("a.pdf");
    ASSERT_EQ(pages.size(), 4u);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        EXPECT_THAT(pages[i], ::testing::StartsWith("The Compositor's Sampler"));
        EXPECT_THAT(pages[i], HasSubstr("page " + number + "\n"));
        EXPECT_THAT(pages[i], ::testing::EndsWith("— " + number + " / 4 —\n"));
    }
    EXPECT_THAT(pages[0], HasSubstr("uncoopera-\n")) << "English";
    EXPECT_THAT(pages[0], HasSubstr("voit da-\n")) << "French";
    EXPECT_THAT(pages[2], HasSubstr("Tabs of every kind\n"));
    EXPECT_THAT(pages[3], HasSubstr("The longest word that this office")) << "the note";
}

// Cairo takes noncharacters for broken text.
TEST_F(PagesTest, ShowCodePointsThatAreNoCharacters) {
    if (std::system("pdftotext -v 2>/dev/null")) GTEST_SKIP() << "needs pdftotext";
    const std::string document =
        folder.write("\uFFFF.txt", "one \uFFFE\uFDD0\xF0\x9F\xBF\xBE two \U0001F600\n");
    const WriterRun run = set(document, {"--pdf=" + pdf});
    EXPECT_EQ(shown(run.status, run.errors), "0 ");
    const auto pages = pagesOf("a.pdf");
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_THAT(pages[0], HasSubstr("one \uFFFD"));
    EXPECT_THAT(pages[0], HasSubstr(" two"));
}

// Texts without formats are set in styles of the sheet, and divided in the languages that were found.
TEST_F(PagesTest, AreSetByStyleSheets) {
    if (std::system("pdftotext -v 2>/dev/null")) GTEST_SKIP() << "needs pdftotext";
    const std::string sheet =
        folder.write("s.plist",
                     "{ page = { footer = \"foot {page}\"; header = \"{title} of {pages}\"; };"
                     "  \"paragraph styles\" = { text = { size = 30; hyphenation = 1; };"
                     "                       \"heading 1\" = { \"page break before\" = yes; }; }; }");
    const std::string document = folder.write(
        "d.md",
        "# One\n\nDas ist eine Rechtsschutzversicherungsgesellschaft und das ist nicht die Welt.\n\n# Two\n");
    EXPECT_EQ(set(document, {"--pdf=" + pdf, "--style-sheet=" + sheet, "--paper=a5"}).status, 0);
    const auto pages = pagesOf("a.pdf");
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_THAT(pages[0], ::testing::StartsWith("d.md of 2\nOne\nDas ist"));
    EXPECT_THAT(pages[0], ::testing::ContainsRegex("versiche?r?-\n|Rechtsschutz-\n|versicherungs-\n"));
    EXPECT_EQ(pages[1], "d.md of 2\nTwo\nfoot 2\n");
}

TEST_F(PagesTest, AreImagesWithNumbers) {
    const std::string document = folder.write("d.txt", "one\ftwo\f"), image = folder.path("i.png");
    WriterRun run = set(document, {"--png=" + image, "--resolution=36", "--paper=a5"});
    EXPECT_EQ(run.valueOf("Path"), folder.path("i-3.png"));
    EXPECT_FALSE(std::filesystem::exists(image));
    // Width and height in the header.
    EXPECT_EQ(folder.read("i-2.png").substr(16, 8), std::string("\0\0\0\xD2\0\0\1\x2A", 8));
    run = set(folder.write("e.txt", ""), {"--png=" + image, "--resolution=20"});
    EXPECT_EQ(run.valueOf("Path"), image);
    EXPECT_EQ(run.valueOf("Pages"), "1");
}

TEST_F(PagesTest, AreNotWrittenWhereSomethingIsWrong) {
    const std::string document = folder.write("d.txt", "text");
    folder.write("bad.plist", "{ page = { size = big; }; }");
    folder.write("kept/a.pdf", "as it was");
    std::filesystem::permissions(folder.path("kept"), std::filesystem::perms::owner_read);
    const auto expect = [&](std::vector<std::string> arguments, int status, const std::string& complaint) {
        const WriterRun run = set(document, std::move(arguments));
        EXPECT_EQ(run.status, status) << complaint;
        EXPECT_THAT(run.errors, HasSubstr(complaint));
    };
    expect({"--pdf=" + folder.path("no/a.pdf")}, 1,
           "no/a.pdf” could not be written: the enclosing folder does not exist.");
    expect({"--png=" + folder.path().string()}, 1, "could not be written: it is a folder.");
    if (geteuid() != 0)
        expect({"--pdf=" + folder.path("kept/a.pdf")}, 1,
               "could not be written: permission was denied. The old file is unchanged.");
    expect({"--pdf=" + pdf, "--margin=400"}, 1, "The margins, or the header and the footer, leave no room");
    expect({"--pdf=" + pdf, "--style-sheet=" + folder.path("bad.plist")}, 1,
           "at “page / size”: one of a3, a4");
    expect({"--pdf=" + pdf, "--style-sheet=none"}, 1, "“none” could not be read: the file does not exist");
    expect({"--png=" + pdf, "--resolution=4000"}, 1, "The resolution is too high");
    expect({"--style-sheet=s"}, 2, "“--style-sheet” needs another: “--pdf, --png”");
    expect({"--pdf=" + pdf, "--resolution=96"}, 2, "“--resolution” needs another: “--png”");
    EXPECT_FALSE(std::filesystem::exists(pdf));
}

TEST_F(PagesTest, LeaveTheFilesAloneThatTheyAreMadeFrom) {
    const std::string document = folder.write("d-2.txt", "one\ftwo"), sheet = folder.write("s", "{}"),
                      saved = folder.path("e.txt");
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"--pdf=" + document},
             {"--png=" + folder.path("d.txt")},
             {"--pdf=" + sheet, "--style-sheet=" + sheet},
             {"--pdf=" + saved, "--save-as=" + saved},
             {"--pdf=" + pdf, "--png=" + folder.path("./a.pdf"), "--edit=delete 3 1"}}) {
        const WriterRun run = set(document, arguments);
        EXPECT_EQ(run.status, 1) << arguments[0];
        EXPECT_THAT(run.errors, HasSubstr("is a file that was read for them or just written."));
    }
    EXPECT_EQ(folder.read("d-2.txt") + folder.read("s") + folder.read("e.txt"), "one\ftwo{}one\ftwo");
    EXPECT_FALSE(std::filesystem::exists(folder.path("d-1.txt")));
    EXPECT_EQ(folder.read("a.pdf").substr(0, 5), "%PDF-");
}

}  // namespace
