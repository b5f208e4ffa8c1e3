// SPDX-License-Identifier: Apache-2.0
#include <filesystem>

#include "Foundation/Bundles/BundleContents.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

// The keys whose values the platform takes for texts.
constexpr NSString* kTextKeys[] = {
    u"CFBundleDevelopmentRegion"_ns, u"CFBundleExecutable"_ns,
    u"CFBundleIdentifier"_ns,        u"CFBundleName"_ns,
    u"CFBundlePackageType"_ns,       u"CFBundleShortVersionString"_ns,
    u"CFBundleVersion"_ns,           u"NSPrincipalClass"_ns,
};

std::string faultInFile(const std::string& path) {
    std::error_code error;
    auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return "there is no Info.plist";
    if (error) return "Info.plist: " + error.message();
    if (status.type() != std::filesystem::file_type::regular) return "Info.plist is no plain file";
    if (std::filesystem::file_size(path, error) > kLargestBundleInformation && !error)
        return "Info.plist is too large";
    return "";
}

std::string faultInEntries(NSDictionary* entries) {
    for (NSString* key : kTextKeys) {
        id value = entries->objectForKey(key);
        if (value && !cast<NSString>(value)) return key->toUTF8() + " in Info.plist is no text";
        if (value && static_cast<NSString*>(value)->length() == 0)
            return key->toUTF8() + " in Info.plist is empty";
    }
    auto* executable = static_cast<NSString*>(entries->objectForKey(u"CFBundleExecutable"_ns));
    std::string name = executable ? executable->toUTF8() : "";
    if (name.find('/') != std::string::npos || name == "." || name == "..")
        return "CFBundleExecutable in Info.plist is no file name";
    return "";
}

}  // namespace

BundleInformation readBundleInformation(const std::string& path) {
    AutoreleasePool pool;
    BundleInformation information{NSDictionary::init(), faultInFile(path)};
    if (!information.fault.empty()) return information;
    NSPropertyListError* error = nullptr;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        NSString::ofUTF8(path), NSPropertyListImmutable, nullptr, &error);
    auto* entries = cast<NSDictionary>(list);
    if (error)
        information.fault = "Info.plist: " + error->description()->toUTF8();
    else if (!entries)
        information.fault = "Info.plist is no dictionary";
    else
        information.fault = faultInEntries(entries);
    if (information.fault.empty()) information.dictionary.set(entries);
    return information;
}

}  // namespace pelvor
