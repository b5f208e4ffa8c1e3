// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/Pictures.h"

#include "Foundation/NSString.h"
#include "Text/NSTextAttachment.h"

namespace pelvor {
namespace {

// By PictureEntry::Type.
constexpr NSString* kTypes[] = {u"public.png"_ns, u"public.jpeg"_ns, u"public.enhanced-metafile"_ns,
                                u"public.metafile"_ns};

}  // namespace

Retained<Object> attachmentOfPicture(const PictureEntry& picture) {
    NSData* data =
        NSData::dataWithBytes_length(picture.bytes.data(), static_cast<NSUInteger>(picture.bytes.size()));
    auto attachment = NSTextAttachment::initWithData_ofType(data, kTypes[picture.type]);
    attachment->setBounds({{0, 0}, picture.size});
    return attachment;
}

bool getPicture(Object* object, PictureEntry& picture) {
    auto* attachment = cast<NSTextAttachment>(object);
    NSData* data = attachment ? attachment->contents() : nullptr;
    if (!data || !attachment->fileType()) return false;
    for (std::size_t type = 0; type < std::size(kTypes); ++type) {
        if (!attachment->fileType()->isEqualToString(kTypes[type])) continue;
        picture.type = static_cast<PictureEntry::Type>(type);
        picture.size = attachment->bounds().size;
        picture.bytes.assign(static_cast<const char*>(data->bytes()), data->length());
        return true;
    }
    return false;
}

}  // namespace pelvor
