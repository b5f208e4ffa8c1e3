// SPDX-License-Identifier: Apache-2.0
// FieldInstruction: what a field of a rich text file shows.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

/// An instruction such as `HYPERLINK "https://x.org" \o "a tip"`.
class FieldInstruction {
  public:
    enum class Kind { other, link, pageNumber, pageCount, title, fileName };

    explicit FieldInstruction(std::u16string_view text);

    Kind kind() const { return _kind; }
    /// The address of a link; for a place in the document "pelvor-anchor:" and its name.
    const std::u16string& link() const { return _link; }

    /// The instruction for a link to the address.
    static std::u16string ofLink(std::u16string_view link);

  private:
    void readLink(std::u16string_view rest);

    Kind _kind = Kind::other;
    std::u16string _link;
};

}  // namespace pelvor
