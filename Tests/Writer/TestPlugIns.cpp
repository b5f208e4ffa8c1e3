// SPDX-License-Identifier: Apache-2.0
#include "TestPlugIns.h"

#include "BaseLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBProfileKeys.h"
#include "Runtime/NSException.h"
#include "Writer/PlugInProtocol.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRTestObserver::classRecord, &WRTestPathReader::classRecord,
                               &WRTestReader::classRecord, &WRTestWriter::classRecord};

NSDictionary* error(NSString* error) {
    return NSDictionary::of({{WRErrorKey, error}, {WRMessageKey, u"message"_ns}});
}

}  // namespace

constinit Library testPlugIns{"TestPlugIns", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(WRTestObserver, testPlugIns) {
    methods.instance<"counterDidAdvance:", &WRTestObserver::counterDidAdvance>();
    methods.instance<"counterDidFinish:", &WRTestObserver::counterDidFinish>();
    methods.instance<"didCount:", &WRTestObserver::didCount>();
}

PELVOR_DEFINE_CLASS(WRTestPathReader, testPlugIns) {
    methods.instance<"readDocumentAtPath:options:", &WRTestPathReader::readDocumentAtPath_options>();
}

NSDictionary* WRTestPathReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    return NSDictionary::of({{WRTextKey, path}});
}

PELVOR_DEFINE_CLASS(WRTestReader, testPlugIns) {
    methods.instance<"readDocumentAtPath:options:", &WRTestReader::readDocumentAtPath_options>();
}

NSDictionary* WRTestReader::readDocumentAtPath_options(NSString* path, NSDictionary* options) {
    const std::string wish = path->lastPathComponent()->stringByDeletingPathExtension()->toUTF8();
    if (wish == "refused") return error(WRErrorRefused);
    if (wish == "encoding") return error(WRErrorEncoding);
    if (wish == "nothing") return NSDictionary::dictionary();
    if (wish == "odd") return NSDictionary::of({{WRTextKey, NSNumber::numberWithInt(1)}});
    if (wish == "throw") throw NSException("Fault", "no ink");
    return nullptr;
}

Retained<NSString> WRTestWriter::writtenText;

PELVOR_DEFINE_CLASS(WRTestWriter, testPlugIns) {
    methods.instance<"writeText:toPath:options:", &WRTestWriter::writeText_toPath_options>();
}

NSDictionary* WRTestWriter::writeText_toPath_options(NSString* text, NSString* path, NSDictionary* options) {
    writtenText.set(text);
    return NSDictionary::of({{WRByteCountKey, NSNumber::numberWithInt(1)}});
}

PBProfile* addProfile(PBRegistry* registry, const char* identifier, NSString* type,
                      std::initializer_list<const char*> documentTypes, int order, const char* className) {
    auto* types = NSMutableArray::array();
    for (const char* documentType : documentTypes) types->addObject(NSString::ofUTF8(documentType));
    auto* dictionary = NSMutableDictionary::dictionary();
    dictionary->setObject_forKey(type, PBProfileTypeKey);
    dictionary->setObject_forKey(types, PBProfileDocumentTypesKey);
    dictionary->setObject_forKey(NSString::ofUTF8(className), PBProfileClassKey);
    if (order) dictionary->setObject_forKey(NSNumber::numberWithInt(order), PBProfilePaletteOrderKey);
    auto* profile =
        PBProfile::profileWithIdentifier_dictionary_bundle(NSString::ofUTF8(identifier), dictionary, nullptr);
    registry->addProfile(profile);
    return profile;
}

}  // namespace pelvor
