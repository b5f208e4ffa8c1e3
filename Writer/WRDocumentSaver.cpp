// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentSaver.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "PBUtil.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRDocumentSaver, writerLibrary) {
    methods.classLevel<"initWithProfiles:", &WRDocumentSaver::initWithProfiles>();
    methods.instance<"saveText:toPath:options:", &WRDocumentSaver::saveText_toPath_options>();
    methods.instance<"problem", &WRDocumentSaver::problem>();
    methods.instance<"writer", &WRDocumentSaver::writer>();
}

WRDocumentSaver::~WRDocumentSaver() = default;

Retained<WRDocumentSaver> WRDocumentSaver::initWithProfiles(PBProfileSet* profiles, Class* cls) {
    auto self = make<WRDocumentSaver>(cls);
    self->_profiles.set(profiles);
    return self;
}

NSDictionary* WRDocumentSaver::saveText_toPath_options(NSString* text, NSString* path,
                                                       NSDictionary* options) {
    NSArray* candidates = profilesForDocument(_profiles, PBProfileDocumentWriterType, path);
    _writer.set(candidates->count() ? static_cast<PBProfile*>(candidates->objectAtIndex(0)) : nullptr);
    if (!_writer) {
        NSString* format = _PBDoLocalize(
            u"_The document \"%@\" could not be written: there is no writer for it."_ns, nullptr);
        _problem.set(NSString::stringWithFormat(format, path));
        return nullptr;
    }
    NSDictionary* answer = askPlugIn(_writer, "writeText:toPath:options:"_sel, text, path, options);
    _problem.set(problemOfAnswer(answer, WRByteCountKey, _writer));
    return _problem ? nullptr : answer;
}

}  // namespace pelvor
