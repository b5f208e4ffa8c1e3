// SPDX-License-Identifier: Apache-2.0
#include "Interface/Backend/BackendLoader.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "Foundation/NSLog.h"
#include "Foundation/NSString.h"
#include "Interface/Backend/HeadlessBackend.h"
#include "Shared/CodeFolder.h"

namespace pelvor {
namespace {

constexpr const char* kModule = "PelvorInterfaceXCB.so";

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

// The module stands beside this library; a program that holds the library in itself has it beside itself, or
// in "../lib" from there. Otherwise the system looks for it.
std::vector<std::string> placesOfModule() {
    std::vector<std::string> places;
    if (const char* given = std::getenv("PELVOR_INTERFACE_MODULE"); given && *given) places.push_back(given);
    const std::filesystem::path folder = folderOfCode(reinterpret_cast<const void*>(&openBackend));
    if (!folder.empty()) {
        places.push_back(folder / kModule);
        places.push_back(folder / "../lib" / kModule);
    }
    places.push_back(kModule);
    return places;
}

// The module stays loaded for good: what it gave may be used at any time.
InterfaceBackendEntry loadEntry(std::string& reason) {
    for (const std::string& place : placesOfModule()) {
        void* module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!module) {
            if (reason.empty()) reason = dlerror();
            continue;
        }
        if (void* symbol = dlsym(module, "interface_backend_2"))
            return reinterpret_cast<InterfaceBackendEntry>(symbol);
        reason = place + " has no symbol interface_backend_2";
        dlclose(module);
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<InterfaceBackend> openBackend(BackendSink& sink) {
    const char* wish = std::getenv("PELVOR_DISPLAY");
    const bool isUnwanted = wish && std::strcmp(wish, "none") == 0;
    if (wish && *wish && !isUnwanted)
        NSLog(u"PELVOR_DISPLAY is \"%@\", but \"none\" is the only value that has a meaning"_ns,
              NSString::ofUTF8(wish));
    if (!isUnwanted && isSet("DISPLAY")) {
        std::string reason;
        if (InterfaceBackendEntry entry = loadEntry(reason))
            if (InterfaceBackend* backend = entry(&sink, &reason))
                return std::unique_ptr<InterfaceBackend>(backend);
        NSLog(u"No windows are shown: %@"_ns, NSString::ofUTF8(reason));
    }
    return std::make_unique<HeadlessBackend>(sink);
}

}  // namespace pelvor
