// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFStringScanner.h"

#include "BaseLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFStringScanner, baseLibrary) {
    methods.creator<"initWithString:", &OFStringScanner::initWithString>();
}

Retained<OFStringScanner> OFStringScanner::initWithString(NSString* string, Class* cls) {
    auto self = make<OFStringScanner>(cls);
    self->_targetString.set(string);
    self->fetchMoreDataFromString(string);
    return self;
}

}  // namespace pelvor
