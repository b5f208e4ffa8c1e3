// SPDX-License-Identifier: Apache-2.0
#include "Text/NSTextAttachment.h"

#include "Foundation/NSCoder.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSTextAttachmentCell.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTextAttachment, textLibrary) {
    methods.creator<"init", &NSTextAttachment::init>();
    methods.creatorAs<"new", &NSTextAttachment::init>();
    methods.creator<"initWithData:ofType:", &NSTextAttachment::initWithData_ofType>();
    methods.creator<"initWithCoder:", &NSTextAttachment::initWithCoder>();
    methods.instance<"contents", &NSTextAttachment::contents>();
    methods.instance<"setContents:", &NSTextAttachment::setContents>();
    methods.instance<"fileType", &NSTextAttachment::fileType>();
    methods.instance<"setFileType:", &NSTextAttachment::setFileType>();
    methods.instance<"bounds", &NSTextAttachment::bounds>();
    methods.instance<"setBounds:", &NSTextAttachment::setBounds>();
    methods.instance<"attachmentCell", &NSTextAttachment::attachmentCell>();
    methods.instance<"setAttachmentCell:", &NSTextAttachment::setAttachmentCell>();
    methods.instance<"encodeWithCoder:", &NSTextAttachment::encodeWithCoder>();
}

namespace {

void setAttachment(id cell, NSTextAttachment* attachment) {
    if (cell && cell->respondsToSelector("setAttachment:"_sel)) send(cell, "setAttachment:"_sel, attachment);
}

}  // namespace

Retained<NSTextAttachment> NSTextAttachment::init(Class* cls) {
    return initWithData_ofType(nullptr, nullptr, cls);
}

Retained<NSTextAttachment> NSTextAttachment::initWithData_ofType(NSData* contents, NSString* type,
                                                                 Class* cls) {
    auto attachment = make<NSTextAttachment>(cls);
    attachment->setContents(contents);
    attachment->setFileType(type);
    attachment->setAttachmentCell(NSTextAttachmentCell::init().get());
    return attachment;
}

Retained<NSTextAttachment> NSTextAttachment::initWithCoder(NSCoder* coder, Class* cls) {
    requireArgument(coder, "initWithCoder:", "the coder");
    auto attachment = initWithData_ofType(cast<NSData>(coder->decodeObjectForKey(u"contents"_ns)),
                                          cast<NSString>(coder->decodeObjectForKey(u"type"_ns)), cls);
    attachment->_bounds = {{coder->decodeFloatForKey(u"x"_ns), coder->decodeFloatForKey(u"y"_ns)},
                           {coder->decodeFloatForKey(u"width"_ns), coder->decodeFloatForKey(u"height"_ns)}};
    return attachment;
}

NSTextAttachment::~NSTextAttachment() { setAttachment(_cell, nullptr); }

void NSTextAttachment::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    coder->encodeObject_forKey(_contents, u"contents"_ns);
    coder->encodeObject_forKey(_fileType, u"type"_ns);
    coder->encodeFloat_forKey(_bounds.origin.x, u"x"_ns);
    coder->encodeFloat_forKey(_bounds.origin.y, u"y"_ns);
    coder->encodeFloat_forKey(_bounds.size.width, u"width"_ns);
    coder->encodeFloat_forKey(_bounds.size.height, u"height"_ns);
}

void NSTextAttachment::setContents(NSData* contents) {
    _contents = contents ? cast<NSData>(contents->copy()) : Retained<NSData>();
}

void NSTextAttachment::setFileType(NSString* type) { _fileType = type ? type->copy() : Retained<NSString>(); }

void NSTextAttachment::setAttachmentCell(id cell) {
    if (cell == _cell.get()) return;
    setAttachment(_cell, nullptr);
    _cell.set(cell);
    setAttachment(cell, this);
}

}  // namespace pelvor
