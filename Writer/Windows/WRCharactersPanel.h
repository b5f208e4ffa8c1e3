// SPDX-License-Identifier: Apache-2.0
// WRCharactersPanel: a window with characters that keyboards lack.
#pragma once

#include <vector>

#include "Writer/Windows/WRTablePanel.h"

namespace pelvor {

class NSNotification;

/// Lists the characters of the plug-ins' palettes (profiles of the type PBProfilePaletteType with an array of
/// strings under "characters", whose names stand in the plug-in's string table under the strings themselves).
/// Typed letters select a character by its name; a double click or Return types it into the document in
/// front. It follows the registry. Main thread.
class WRCharactersPanel : public WRTablePanel {
    PELVOR_CLASS(WRCharactersPanel, WRTablePanel);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRCharactersPanel> init(Class* cls = classObject());

    void profilesDidChange(NSNotification* notification);

  protected:
    WRCharactersPanel() = default;
    ~WRCharactersPanel();

    NSUInteger rowCount() override { return static_cast<NSUInteger>(_rows.size()); }
    id valueAt(NSUInteger row, NSUInteger column) override;
    void rowWasChosen(NSUInteger row) override;

  private:
    struct Row {
        Retained<NSString> name, characters, palette;
    };
    std::vector<Row> _rows;
};

}  // namespace pelvor
