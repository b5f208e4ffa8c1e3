// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/Pictures.h"

#include "Foundation/NSData.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

// By PictureEntry::Type.
constexpr NSString* kTypes[] = {u"public.png"_ns, u"public.jpeg"_ns, u"public.enhanced-metafile"_ns,
                                u"public.metafile"_ns};

}  // namespace

Retained<Object> attachmentOfPicture(const PictureEntry& picture) {
    Class* cls = classNamed("NSTextAttachment");
    if (!cls) return nullptr;
    NSData* data =
        NSData::dataWithBytes_length(picture.bytes.data(), static_cast<NSUInteger>(picture.bytes.size()));
    auto attachment = send<Retained<Object>>(cls, "initWithData:ofType:"_sel, data, kTypes[picture.type]);
    send<void>(attachment.get(), "setBounds:"_sel, NSRect{{0, 0}, picture.size});
    return attachment;
}

bool getPicture(Object* attachment, PictureEntry& picture) {
    if (!attachment->respondsToSelector("fileType"_sel)) return false;
    auto* data = cast<NSData>(send<id>(attachment, "contents"_sel));
    auto* fileType = cast<NSString>(send<id>(attachment, "fileType"_sel));
    if (!data || !fileType) return false;
    for (std::size_t type = 0; type < std::size(kTypes); ++type) {
        if (!fileType->isEqualToString(kTypes[type])) continue;
        picture.type = static_cast<PictureEntry::Type>(type);
        picture.size = send<NSRect>(attachment, "bounds"_sel).size;
        picture.bytes.assign(static_cast<const char*>(data->bytes()), data->length());
        return true;
    }
    return false;
}

}  // namespace pelvor
