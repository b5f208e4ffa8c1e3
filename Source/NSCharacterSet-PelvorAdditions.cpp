// SPDX-License-Identifier: Apache-2.0
#include "NSCharacterSet-PelvorAdditions.h"

#include <initializer_list>

#include "BaseLibrary.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

using Additions = NSCharacterSet_PelvorAdditions;

void defineAdditions(MethodTable<NSCharacterSet>& methods) {
    methods.classLevel<"hexCodeCharacterSet", &Additions::hexCodeCharacterSet>();
    methods.classLevel<"illegalFilenameCharacterSet", &Additions::illegalFilenameCharacterSet>();
    methods.classLevel<"newlineCharacterSet", &Additions::newlineCharacterSet>();
    methods.classLevel<"paragraphBreakCharacterSet", &Additions::paragraphBreakCharacterSet>();
    methods.classLevel<"lineBreakCharacterSet", &Additions::lineBreakCharacterSet>();
    methods.classLevel<"allWhitespaceCharacterSet", &Additions::allWhitespaceCharacterSet>();
    methods.classLevel<"directionalityCharacterSet", &Additions::directionalityCharacterSet>();
    methods.classLevel<"gremlinCharacterSet", &Additions::gremlinCharacterSet>();
    methods.classLevel<"nonPrintingCharacterSet", &Additions::nonPrintingCharacterSet>();
    methods.instance<"immutableCopy", &immutableCopy>();
}

// An immutable set for good: characters from first to last, and the members of other sets.
struct Span {
    unichar first;
    unichar last;
};
NSCharacterSet* keptSet(std::initializer_list<Span> spans, std::initializer_list<NSCharacterSet*> sets = {}) {
    auto set = NSMutableCharacterSet::init();
    for (auto [first, last] : spans)
        set->addCharactersInRange({first, static_cast<NSUInteger>(last - first) + 1});
    for (NSCharacterSet* other : sets) set->formUnionWithCharacterSet(other);
    return immutableCopy(set).leak();
}

// By message, so that a category or a replacement that came later is called.
NSCharacterSet* setNamed(Class* cls, SEL name) {
    requireArgument(cls, name.name(), "the class");
    registerLibrary(baseLibrary);
    return cast<NSCharacterSet>(send<id>(cls, name));
}

}  // namespace

constinit const Category NSCharacterSet_PelvorAdditions_category =
    Category::of<NSCharacterSet, defineAdditions>("PelvorAdditions");

NSCharacterSet* _PBLineBreakCharacterSet = nullptr;

NSCharacterSet* Additions::hexCodeCharacterSet() {
    static NSCharacterSet* const set = keptSet({{u'0', u'9'}, {u'a', u'f'}, {u'A', u'F'}});
    return set;
}

NSCharacterSet* Additions::illegalFilenameCharacterSet() {
    return NSCharacterSet::characterSetWithCharactersInString(u":/"_ns);
}

NSCharacterSet* Additions::newlineCharacterSet() {
    static NSCharacterSet* const set = keptSet({{0x0A, 0x0D}, {0x85, 0x85}});
    return set;
}

NSCharacterSet* Additions::paragraphBreakCharacterSet() {
    static NSCharacterSet* const set = keptSet({{0x0A, 0x0A}, {0x0C, 0x0D}, {0x85, 0x85}, {0x2029, 0x2029}});
    return set;
}

NSCharacterSet* Additions::lineBreakCharacterSet(Class* cls) {
    if (!_PBLineBreakCharacterSet)
        _PBLineBreakCharacterSet =
            keptSet({{0x2028, 0x2028}}, {setNamed(cls, "paragraphBreakCharacterSet"_sel)});
    return _PBLineBreakCharacterSet;
}

NSCharacterSet* Additions::allWhitespaceCharacterSet(Class* cls) {
    static NSCharacterSet* const set = keptSet(
        {}, {setNamed(cls, "paragraphBreakCharacterSet"_sel), setNamed(cls, "lineBreakCharacterSet"_sel),
             setNamed(cls, "newlineCharacterSet"_sel), NSCharacterSet::whitespaceAndNewlineCharacterSet()});
    return set;
}

NSCharacterSet* Additions::directionalityCharacterSet() {
    static NSCharacterSet* const set = keptSet({{0x200E, 0x200F}, {0x202A, 0x202E}});
    return set;
}

NSCharacterSet* Additions::gremlinCharacterSet() {
    static NSCharacterSet* const set =
        keptSet({{0x00, 0x08}, {0x0B, 0x0B}, {0x0E, 0x1F}, {0x82, 0x83}, {0x86, 0x9F}, {0xE000, 0xF6FF}});
    return set;
}

NSCharacterSet* Additions::nonPrintingCharacterSet(Class* cls) {
    static NSCharacterSet* const set =
        keptSet({{0xA0, 0xA0}, {0x3000, 0x3000}, {0x200E, 0x200F}},
                {setNamed(cls, "gremlinCharacterSet"_sel), setNamed(cls, "allWhitespaceCharacterSet"_sel)});
    return set;
}

Retained<NSCharacterSet> immutableCopy(NSCharacterSet* set) {
    requireArgument(set, "immutableCopy", "the set");
    return NSCharacterSet::initWithBitmapRepresentation(set->bitmapRepresentation());
}

}  // namespace pelvor
