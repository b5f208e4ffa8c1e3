// SPDX-License-Identifier: Apache-2.0
// Pictures of rich text files as attachments of text.
#pragma once

#include "Runtime/Object.h"
#include "Writer/PlugIns/RichText/RichTextFormats.h"

namespace pelvor {

/// An attachment with the picture's bytes, type and size.
Retained<Object> attachmentOfPicture(const PictureEntry& picture);

/// The picture of an attachment. False if the attachment has none of a type that rich text files hold.
bool getPicture(Object* attachment, PictureEntry& picture);

}  // namespace pelvor
