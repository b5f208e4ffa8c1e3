// SPDX-License-Identifier: Apache-2.0
// What the tests of strings share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Foundation/NSMutableString.h"
#include "Runtime/NSException.h"

namespace pelvor {

/// A string that has only its primitives.
class SparseString : public NSString {
    PELVOR_CLASS(SparseString, NSString);

  public:
    static SparseString* of(std::u16string_view text);
    NSUInteger length() override { return static_cast<NSUInteger>(_text.size()); }
    unichar characterAtIndex(NSUInteger index) override;

  protected:
    SparseString() = default;
    ~SparseString() = default;

  private:
    std::u16string _text;
};

/// Strings of several classes with one text.
std::vector<NSString*> everyKindOfString(std::u16string_view text);

/// Expects an NSException of that name, and with that reason where one is given.
template <class Call>
void expectRaises(const char* name, const char* reason, Call call) {
    try {
        call();
        ADD_FAILURE() << "nothing raised";
    } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), name);
        if (reason) {
            EXPECT_EQ(exception.reason(), reason);
        }
    }
}
template <class Call>
void expectRaises(const char* name, Call call) {
    expectRaises(name, nullptr, call);
}

}  // namespace pelvor
