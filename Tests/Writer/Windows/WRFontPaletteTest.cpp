// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRFontPalette.h"

#include "FormatScope.h"
#include "Interface/NSTableView.h"
#include "Text/NSFontManager.h"
#include "Writer/Pages/StyleChange.h"

namespace {

struct FontPaletteTest : ::testing::Test, FormatScope {
    FontPaletteTest() : FormatScope(u"one two"_ns) {
        palette->window()->showBeside(window->window());
        screen.turn();
        for (id view : palette->window()->contentView()->subviews()) {
            if (auto* scrollView = cast<NSScrollView>(view))
                tables.push_back(cast<NSTableView>(static_cast<id>(scrollView->documentView())));
            else
                fields.push_back(cast<NSTextField>(view));
        }
    }
    /// What is selected in the tables of families, faces and sizes.
    std::string rows() {
        std::string text;
        for (NSTableView* table : tables) {
            id value = table->selectedRow() < 0 ? u"-"_ns
                                                : palette->tableView_objectValueForTableColumn_row(
                                                      table, nullptr, table->selectedRow());
            text += shown(value) + "|";
        }
        return text;
    }
    void typeInto(NSTableView* table, std::u16string_view letters) {
        palette->window()->makeFirstResponder(table);
        screen.wait(3);
        screen.type(letters);
        screen.wait(1);
    }

    Retained<WRFontPalette> palette = WRFontPalette::init();
    std::vector<NSTableView*> tables;
    std::vector<NSTextField*> fields;
};

TEST_F(FontPaletteTest, GivesTheSelectionWhatIsTypedIntoItsTables) {
    select(4, 3);
    choose("toggleBold:"_sel);
    select(0, 7);
    typeInto(tables[0], u"DejaVu Sans M");
    EXPECT_EQ(runs(NSFontAttributeName), "0-4 DejaVuSansMono 11\n4-7 DejaVuSansMono-Bold 11\n")
        << "the family alone";
    typeInto(tables[2], u"14");
    EXPECT_EQ(runs(NSFontAttributeName), "0-4 DejaVuSansMono 14\n4-7 DejaVuSansMono-Bold 14\n");
    typeInto(tables[1], u"bold");
    EXPECT_EQ(runs(NSFontAttributeName), "0-7 DejaVuSansMono-Bold 14\n");
    EXPECT_EQ(rows(), "DejaVu Sans Mono|Bold|14|");
    EXPECT_EQ(shown(view->undoManager()->undoActionName()), "_Font");
    undo();
    undo();
    EXPECT_EQ(runs(NSFontAttributeName), "0-4 DejaVuSansMono 11\n4-7 DejaVuSansMono-Bold 11\n");
    EXPECT_EQ(rows(), "DejaVu Sans Mono|Book|11|");
}

TEST_F(FontPaletteTest, FollowsTheSelectionWithoutChangingIt) {
    select(0, 3);
    typeInto(tables[0], u"DejaVu Sans M");
    const auto before = runs(NSFontAttributeName);
    select(5);
    EXPECT_THAT(rows(), ::testing::Not(::testing::HasSubstr("Mono")));
    select(1);
    EXPECT_EQ(rows(), "DejaVu Sans Mono|Book|11|");
    choose("toggleItalic:"_sel);
    EXPECT_EQ(rows(), "DejaVu Sans Mono|Oblique|11|") << "what is typed next";
    EXPECT_EQ(runs(NSFontAttributeName), before);
}

TEST_F(FontPaletteTest, TakesTheNearestFaceOfAFamilyWithoutTheSame) {
    auto* manager = NSFontManager::sharedFontManager();
    NSFont* font = fontOf(view->textStorage()->attributesAtIndex_effectiveRange(0, nullptr));
    NSString* poor = nullptr;
    for (id family : manager->availableFontFamilies())
        if (auto* name = static_cast<NSString*>(family);
            !manager->convertFont_toFamily(font, name)->familyName()->isEqualToString(name))
            poor = name;
    if (!poor) GTEST_SKIP() << "all families have a regular face";
    select(0, 7);
    const StringUnits letters(poor, {0, poor->length()});
    typeInto(tables[0], letters.view());
    EXPECT_EQ(shown(fontOf(view->textStorage()->attributesAtIndex_effectiveRange(0, nullptr))->familyName()),
              shown(poor));
}

TEST_F(FontPaletteTest, TakesASizeOfTheUsersOwn) {
    select(0, 7);
    fields[0]->setStringValue(u"13.5"_ns);
    palette->takeSizeFrom(fields[0]);
    EXPECT_THAT(runs(NSFontAttributeName), ::testing::HasSubstr(" 13.5\n"));
    EXPECT_THAT(rows(), ::testing::HasSubstr("|-|")) << "a size that is not in the list";
    fields[0]->setStringValue(u"big"_ns);
    palette->takeSizeFrom(fields[0]);
    EXPECT_EQ(shown(fields[0]->stringValue()), "13.5");
    EXPECT_THAT(runs(NSFontAttributeName), ::testing::HasSubstr(" 13.5\n"));
    fields[0]->setStringValue(u"14,5"_ns);  // as others write it
    palette->takeSizeFrom(fields[0]);
    EXPECT_THAT(runs(NSFontAttributeName), ::testing::HasSubstr(" 14.5\n"));
}

}  // namespace
