// SPDX-License-Identifier: Apache-2.0
// FileNameCell: the name of a file or folder, behind a small picture of one.
#pragma once

#include "Interface/NSTextFieldCell.h"

namespace pelvor {

class FileNameCell final : public NSTextFieldCell {
    PELVOR_CLASS(FileNameCell, NSTextFieldCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    // C++ only
    void setFolder(bool isFolder) { _isFolder = isFolder; }

    NSRect titleRectForBounds(NSRect bounds) override;
    void drawInteriorWithFrame_inView(NSRect frame, NSView* view) override;

  protected:
    FileNameCell() = default;
    ~FileNameCell() = default;

    void takeProperties(NSCell* other) override;

  private:
    bool _isFolder = false;
};

}  // namespace pelvor
