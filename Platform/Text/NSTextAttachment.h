// SPDX-License-Identifier: Apache-2.0
// NSTextAttachment: what stands on an attachment character.
#pragma once

#include "Foundation/NSData.h"
#include "Foundation/NSGeometry.h"
#include "Text/TextAttributes.h"

namespace pelvor {

class NSCoder;

/// A picture or another thing that stands in a text like a letter: its contents as data, and the cell that
/// measures and draws it. The thing is the value of NSAttachmentAttributeName on one NSAttachmentCharacter.
///
///     auto picture = NSTextAttachment::initWithData_ofType(bytes, u"public.png"_ns);
///     picture->setBounds({{0, -3}, {48, 32}});            // 3 points below the baseline
///
/// Attachments are equal only to themselves. One thread at a time.
class PELVOR_EXPORT NSTextAttachment : public NSObject {
    PELVOR_CLASS(NSTextAttachment, NSObject);
    PELVOR_CREATORS(init, initWithData_ofType, initWithCoder);

  public:
    /// An attachment without contents.
    static Retained<NSTextAttachment> init(Class* cls = classObject());
    /// The type is a name that the host knows, "public.png". Both may be null.
    static Retained<NSTextAttachment> initWithData_ofType(NSData* contents, NSString* type,
                                                          Class* cls = classObject());
    /// The cell is not coded: a decoded attachment has a cell as `init` gives one.
    static Retained<NSTextAttachment> initWithCoder(NSCoder* coder, Class* cls = classObject());

    NSData* contents() { return _contents; }
    void setContents(NSData* contents);
    NSString* fileType() { return _fileType; }
    void setFileType(NSString* type);
    /// The place and size in points, with the origin on the baseline and y upwards; zeros unless they are
    /// set.
    NSRect bounds() { return _bounds; }
    void setBounds(NSRect bounds) { _bounds = bounds; }

    /// An NSTextAttachmentCell from the beginning on, or any object with its operations. An attachment whose
    /// cell is set to null takes the room of its bounds and draws nothing.
    id attachmentCell() { return _cell; }
    /// Keeps the cell and makes the receiver its attachment.
    void setAttachmentCell(id cell);

    void encodeWithCoder(NSCoder* coder);

  protected:
    NSTextAttachment() = default;
    ~NSTextAttachment();

  private:
    Retained<NSData> _contents;
    Retained<NSString> _fileType;
    NSRect _bounds;
    Retained<Object> _cell;
};

}  // namespace pelvor
