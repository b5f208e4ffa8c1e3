// SPDX-License-Identifier: Apache-2.0
// Reading the boxed ranges of a list; for this library's own sources.
#pragma once

#include "Foundation/NSString.h"
#include "Foundation/NSValue.h"
#include "Runtime/NSException.h"

namespace pelvor {

/// Reads boxed ranges one after the other: quick for boxes as the creators make them. Raises
/// NSInvalidArgumentException for what is no boxed range.
class BoxedRangeReader {
  public:
    NSRange operator()(id box) const {
        if (box && box->isa() == _usual.isa) {
            auto* value = static_cast<NSValue*>(box);
            if (value->objCType() == _usual.type) {
                NSRange range;
                value->getValue(&range);
                return range;
            }
        }
        return rangeOfAny(box);
    }

  private:
    struct Kind {
        Class* isa;
        const char* type;  // lives as long as the process
    };
    static Kind usualKind() {
        NSRange range;
        auto box = NSValue::initWithBytes_objCType(&range, typeEncoding<NSRange>.text);
        return {box->isa(), box->objCType()};
    }
    static NSRange rangeOfAny(id box) {
        auto* value = cast<NSValue>(box);
        if (!value) raiseException(NSInvalidArgumentException, u"%@ is no boxed range"_ns, box);
        return value->rangeValue();
    }

    Kind _usual = usualKind();
};

}  // namespace pelvor
