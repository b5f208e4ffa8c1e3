// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/WRControlWord.h"

#include "Writer/PlugIns/RichText/RichTextPlugIn.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRControlWord, richTextPlugIn) {}

}  // namespace pelvor
