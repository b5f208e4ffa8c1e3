// SPDX-License-Identifier: Apache-2.0
#include "WriterPlugIns.h"

#include <utility>

#include "BaseTextLibrary.h"
#include "PBRegistry.h"
#include "Prelude.h"
#include "Writer/PlugIns/PlainText/PlainTextPlugIn.h"
#include "Writer/PlugIns/PlainText/WRPlainTextReader.h"
#include "Writer/PlugIns/PlainText/WRPlainTextWriter.h"
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"
#include "Writer/PlugIns/RichText/WRByteScanner.h"
#include "Writer/PlugIns/RichText/WRRichTextReader.h"
#include "Writer/PlugIns/RichText/WRRichTextWriter.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseTextLibrary};

}  // namespace

constinit Library plainTextPlugIn{
    "PlainText", kDependencies, kClassesOf<WRPlainTextReader, WRPlainTextWriter>, {}};
constinit Library richTextPlugIn{
    "RichText", kDependencies, kClassesOf<WRByteScanner, WRRichTextReader, WRRichTextWriter>, {}};

void registerTextPlugIns() {
    static bool isDone = false;  // no constant, whose value clang 14 fails to find
    if (std::exchange(isDone, true)) return;
    registerLibrary(plainTextPlugIn);
    registerLibrary(richTextPlugIn);
    for (NSString* folder : {u"PlainText"_ns, u"RichText"_ns})
        PBRegistry::sharedRegistry()->addProfilesFromPath_bundle(
            NSString::stringWithFormat(u"%s/%@/Profiles.plist"_ns, WRITER_PLUGINS, folder), nullptr);
}

}  // namespace pelvor
