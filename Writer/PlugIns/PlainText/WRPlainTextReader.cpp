// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/PlainText/WRPlainTextReader.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Writer/PlugIns/PlainText/PlainTextPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPlainTextReader, plainTextPlugIn) {
    methods.instance<"readDocumentAtPath:options:", &WRPlainTextReader::readDocumentAtPath_options>();
}

NSDictionary* WRPlainTextReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    return readTextFile(path, options);
}

}  // namespace pelvor
