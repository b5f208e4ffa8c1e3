// SPDX-License-Identifier: Apache-2.0
#include "Writer/TextEdit.h"

#include <gtest/gtest.h>

#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

std::string described(std::string_view line) {
    AutoreleasePool pool;
    const auto edit = textEditOf(NSString::ofUTF8(line));
    if (!edit) return "nothing";
    return std::to_string(edit->range.location) + "+" + std::to_string(edit->range.length) + "=" +
           edit->text->toUTF8();
}

TEST(TextEdit, IsReadFromALine) {
    const std::pair<const char*, const char*> cases[] = {
        {"insert 0 a", "0+0=a"},
        {"insert 12  two words ", "12+0= two words "},
        {"insert 3 é\\n\\\\n\\t\\x\\", "3+0=é\n\\n\t\\x\\"},
        {"insert 3 ", "3+0="},
        {"delete 3 4", "3+4="},
        {"replace 3 4 delete", "3+4=delete"},
    };
    for (const auto& [line, edit] : cases) EXPECT_EQ(described(line), edit) << line;
    for (const char* line :
         {"", "insert", "insert 3", "insert x a", "insert -1 a", "insert 1234567890 a", "insert 1x a",
          "delete 3", "delete 3 4 5", "delete  3 4", "replace 1 2", "erase 1 2", "Insert 1 a"})
        EXPECT_EQ(described(line), "nothing") << line;
}

}  // namespace
}  // namespace pelvor
