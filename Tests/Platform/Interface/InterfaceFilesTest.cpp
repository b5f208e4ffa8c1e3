// SPDX-License-Identifier: Apache-2.0
// Views that interface files describe.
#include "Foundation/NSNib.h"
#include "Foundation/NSNibError.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextView.h"
#include "InterfaceScope.h"
#include "TemporaryFolder.h"
#include "Text/NSColor.h"

namespace {

constexpr const char* kFile = R"({
    Objects = (
        { Identifier = page; Class = NSView; Create = "initWithFrame:"; Arguments = ((0, 0, 400, 300));
          Values = { subviews = ({ Object = scroller; }); }; },
        { Identifier = scroller; Class = NSScrollView; Create = "initWithFrame:"; Arguments = ((0, 0, 400, 300));
          Values = { autoresizingMask = 18; hasVerticalScroller = YES; documentView = { Object = letter; }; }; },
        { Identifier = letter; Class = NSTextView; Create = "initWithFrame:"; Arguments = ((0, 0, 388, 300));
          Values = { autoresizingMask = 2; string = "Dear Anna"; }; },
    );
    Connections = ({ Source = letter; Outlet = delegate; Target = owner; });
    TopLevel = (page);
})";

TEST(InterfaceFiles, DescribeViews) {
    InterfaceScope screen;
    TemporaryFolder folder;
    NSNibError* error = nullptr;
    auto nib = NSNib::initWithContentsOfFile_bundle_error(NSString::ofUTF8(folder.write("Letter.nib", kFile)),
                                                          nullptr, &error);
    ASSERT_TRUE(nib) << error->description()->toUTF8();
    auto owner = NSView::initWithFrame({});
    NSArray* top = nullptr;
    ASSERT_TRUE(nib->instantiateNibWithOwner_topLevelObjects_error(owner, &top, &error))
        << error->description()->toUTF8();
    auto* page = static_cast<NSView*>(top->objectAtIndex(0));
    auto window = screen.window({{0, 0}, {500, 400}});
    window->setContentView(page);
    screen.turn();
    auto* scrollView = cast<NSScrollView>(page->subviews()->objectAtIndex(0));
    ASSERT_TRUE(scrollView);
    auto* letter = cast<NSTextView>(scrollView->documentView());
    ASSERT_TRUE(letter);
    EXPECT_EQ(letter->string()->toUTF8(), "Dear Anna");
    EXPECT_EQ(letter->delegate(), owner.get());
    EXPECT_EQ(scrollView->frame().size, (NSSize{500, 400}));
    EXPECT_EQ(letter->frame().size, (NSSize{488, 400}));
    screen.click(letter, {200, 5});
    screen.type(u",");
    EXPECT_EQ(letter->string()->toUTF8(), "Dear Anna,");
    page->setSubviews(nullptr);
    EXPECT_EQ(page->subviews()->count(), 0u);
}

}  // namespace
