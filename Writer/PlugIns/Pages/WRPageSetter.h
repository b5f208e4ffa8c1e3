// SPDX-License-Identifier: Apache-2.0
// WRPageSetter: sets documents in pages, to PDF documents and PNG images.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;
class NSString;

/// The page setter for "pdf" and "png". Settings of pages are those that the options name, else those of the
/// style sheet that they name, else the document's, else those of the style sheet in the plug-in's resources.
/// A document with settings of its own has no header or footer of the latter.
class WRPageSetter : public NSObject {
    PELVOR_CLASS(WRPageSetter, NSObject);

  public:
    NSDictionary* writePagesOfText_format_toPath_options(NSString* text, NSString* format, NSString* path,
                                                         NSDictionary* options);

  protected:
    WRPageSetter() = default;
    ~WRPageSetter() = default;
};

}  // namespace pelvor
