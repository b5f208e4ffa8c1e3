// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSPropertyListError.h"

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Foundation/PropertyLists/PropertyListFault.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPropertyListError, foundationLibrary) {
    methods.instance<"reason", &NSPropertyListError::reason>();
    methods.instance<"line", &NSPropertyListError::line>();
    methods.instance<"column", &NSPropertyListError::column>();
    methods.instance<"offset", &NSPropertyListError::offset>();
    methods.instance<"keyPath", &NSPropertyListError::keyPath>();
}

Retained<NSPropertyListError> NSPropertyListError::create(const PropertyListFault& fault) {
    auto error = make<NSPropertyListError>();
    error->_reason.set(NSString::ofUTF8(fault.reason));
    error->_keyPath.set(NSString::ofUTF8(fault.keyPath));
    error->_line = static_cast<NSUInteger>(fault.line);
    error->_column = static_cast<NSUInteger>(fault.column);
    error->_offset = static_cast<NSUInteger>(fault.offset);
    return error;
}

NSString* NSPropertyListError::description() {
    if (_line > 0) return NSString::stringWithFormat(u"line %u, column %u: %@"_ns, _line, _column, _reason);
    if (_keyPath && _keyPath->length() > 0)
        return NSString::stringWithFormat(u"at %@: %@"_ns, _keyPath, _reason);
    if (_offset > 0) return NSString::stringWithFormat(u"at byte %u: %@"_ns, _offset, _reason);
    return _reason;
}

}  // namespace pelvor
