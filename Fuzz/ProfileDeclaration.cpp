// SPDX-License-Identifier: Apache-2.0
// Reads bytes as a declaration file into an empty registry and checks the registry against the file.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary-PropertyList.h"
#include "Foundation/NSLog.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Runtime/AutoreleasePool.h"

using namespace pelvor;

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

std::string declarationPath() {
    static const std::string path = std::filesystem::temp_directory_path() /
                                    ("ProfileDeclaration-" + std::to_string(::getpid()) + ".plist");
    static const bool removes = std::atexit([] { std::filesystem::remove(path); }) == 0;
    (void)removes;
    return path;
}

// How many profiles the file should give, by the plainest reading of the rules.
NSUInteger expectedCount(NSDictionary* declarations) {
    auto* profiles = declarations ? cast<NSDictionary>(declarations->objectForKey(PBProfilesKey)) : nullptr;
    if (!profiles) return 0;
    auto* disabled = cast<NSArray>(declarations->objectForKey(PBDisabledProfilesKey));
    NSUInteger count = 0;
    for (auto [identifier, entry] : profiles)
        count += cast<NSDictionary>(entry) && !(disabled && disabled->containsObject(identifier));
    return count;
}

void checkQueries(PBRegistry* registry) {
    NSUInteger count = registry->profiles()->count();
    require(registry->profilesOfType(u"*"_ns)->profiles()->count() == count);
    NSUInteger typed = registry->profilesWithKey(PBProfileTypeKey)->profiles()->count();
    require(typed <= count);
    NSArray* path = NSArray::of({PBProfileFormatsKey, u"a"_ns});
    require(registry->profilesWithKey(path)->profiles()->count() <= count);
    for (id member : registry->profiles()) {
        auto* profile = cast<PBProfile>(member);
        require(registry->profileWithIdentifier(profile->identifier()) == profile);
        profile->profileClass();
        profile->localize(u"a"_ns);
        profile->description();
        if (id type = profile->type(); type && !cast<NSArray>(type))
            require(registry->profilesOfType(type)->profileWithIdentifier(profile->identifier()) == profile);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AutoreleasePool pool;
    LogSinkScope quiet([](const LogEntry&) {});
    const std::string path = declarationPath();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    NSString* name = NSString::ofUTF8(path);
    auto registry = PBRegistry::init();
    PBRegistry::setSharedRegistry(registry);
    registry->addProfilesFromPath_bundle(name, nullptr);
    NSUInteger expected = expectedCount(NSDictionary_PropertyList::dictionaryWithContentsOfFile(name));
    require(registry->setVersion() == expected && registry->profiles()->count() == expected);
    checkQueries(registry);
    return 0;
}
