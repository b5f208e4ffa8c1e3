// SPDX-License-Identifier: Apache-2.0
#include "Interface/Texts/TextUndo.h"

#include "Foundation/NSMutableAttributedString.h"
#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTextUndo, interfaceLibrary) {
    methods.instance<"range", &NSTextUndo::range>();
    methods.instance<"before", &NSTextUndo::before>();
    methods.instance<"styleBehind", &NSTextUndo::styleBehind>();
}

Retained<NSTextUndo> NSTextUndo::change(NSUInteger location, Retained<NSAttributedString> before,
                                        NSUInteger newLength, id styleBehind) {
    auto undo = make<NSTextUndo>(classObject());
    undo->_location = location;
    undo->_before = std::move(before);
    undo->_newLength = newLength;
    undo->_styleBehind.set(styleBehind);
    return undo;
}

bool NSTextUndo::absorb(NSRange range, NSAttributedString* before, NSUInteger newLength, id styleBehind) {
    const bool types = range.length == 0 && _newLength > 0 && range.location == _location + _newLength;
    if (types) {
        _newLength += newLength;
        return true;
    }
    if (newLength > 0 || range.length == 0 || _newLength > 0) return false;
    const bool goesBackward = NSMaxRange(range) == _location;
    if (!goesBackward && range.location != _location) return false;
    auto joined = _before->mutableCopy();
    joined->insertAttributedString_atIndex(before, goesBackward ? 0 : joined->length());
    _before = joined->copy();
    if (goesBackward)
        _location = range.location;
    else
        _styleBehind.set(styleBehind);  // of what stands behind all that was deleted
    return true;
}

}  // namespace pelvor
