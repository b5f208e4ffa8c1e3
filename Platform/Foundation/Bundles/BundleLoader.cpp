// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Bundles/BundleLoader.h"
#include "Foundation/Bundles/BundleContents.h"
#include "Foundation/Bundles/BundleList.h"
#include "Foundation/Bundles/CodeFile.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

using Code = BundleContents::Code;

std::recursive_mutex& loading() {
    static auto& mutex = *new std::recursive_mutex;
    return mutex;
}

// The names of the classes that registering the library will bring.
void collectClassNames(const Library& library, std::vector<std::string>& names) {
    if (library.isRegistered) return;
    for (const Library* dependency : library.dependencies) collectClassNames(*dependency, names);
    for (const Class* cls : library.classes) names.emplace_back(cls->name());
}

void refuseOtherInterface(const std::string& version) {
    const std::string own = std::to_string(kInterfaceVersion);
    if (version != own)
        throw BundleFault{"interface", "the code was built with interface version " + version +
                                           ", this process has interface version " + own};
}

}  // namespace

BundleLoader::BundleLoader(NSBundle* bundle) : _bundle(bundle), _contents(BundleList::contents(bundle)) {}

BundleLoader::Outcome BundleLoader::load(NSBundle* bundle, std::vector<std::string>& classNames) {
    std::lock_guard guard(loading());
    BundleLoader loader(bundle);
    switch (loader._contents.code) {
        case Code::loaded:
            return Outcome::wasLoaded;
        case Code::loading:
            throw BundleFault{"code", "the bundle is being loaded"};
        case Code::unusable:
            throw BundleFault{"code", loader._contents.faultOfCode};
        case Code::notLoaded:
            break;
    }
    loader.run(classNames);
    return Outcome::loaded;
}

void BundleLoader::run(std::vector<std::string>& classNames) {
    struct Ending {
        BundleContents& contents;
        ~Ending() {
            auto loading = Code::loading;
            contents.code.compare_exchange_strong(loading, Code::notLoaded);
        }
    } ending{_contents};
    _contents.code = Code::loading;
    checkInformation();
    checkIdentifier();
    if (NSString* executable = _bundle->executablePath())
        registerClasses(findLibrary(loadCode(executable->toUTF8())), classNames);
    BundleList::shared().noteLoaded(_bundle);
    _contents.code = Code::loaded;
}

// A file that was at fault is read again, since somebody may have corrected it.
void BundleLoader::checkInformation() {
    std::lock_guard guard(_contents.mutex);
    if (!_contents.hasInformation || !_contents.information.fault.empty()) {
        _contents.information = readBundleInformation(_contents.folder + "/Info.plist");
        _contents.hasInformation = true;
    }
    if (!_contents.information.fault.empty()) throw BundleFault{"information", _contents.information.fault};
}

void BundleLoader::checkIdentifier() {
    NSString* identifier = _bundle->bundleIdentifier();
    if (!identifier) return;
    if (NSBundle* other = BundleList::shared().loadedBundle(identifier->toUTF8()))
        throw BundleFault{"identifier",
                          identifier->toUTF8() + " is already that of " + other->bundlePath()->toUTF8()};
}

// Called before any of the code runs.
void BundleLoader::checkInterface() {
    id version = _bundle->infoDictionary()->objectForKey(PelvorInterfaceVersionKey);
    if (!version)
        throw BundleFault{"interface", PelvorInterfaceVersionKey->toUTF8() +
                                           " is missing in Info.plist; this process has interface version " +
                                           std::to_string(kInterfaceVersion)};
    refuseOtherInterface(version->description()->toUTF8());
}

void* BundleLoader::loadCode(const std::string& executable) {
    if (std::string fault = faultInCodeFile(executable); !fault.empty())
        throw BundleFault{"executable", fault};
    checkInterface();
    CodeFile code = loadCodeFile(executable);
    if (code.isPartlyConstructed) {
        _contents.faultOfCode = code.fault;
        _contents.code = Code::unusable;
    }
    if (!code.handle) throw BundleFault{"code", code.fault};
    return code.handle;
}

Library* BundleLoader::findLibrary(void* handle) {
    auto find = reinterpret_cast<Library* (*)()>(exportedFunction(handle, "pelvorPlugInLibrary"));
    if (!find) throw BundleFault{"registration", "the code exports no pelvorPlugInLibrary"};
    Library* library = nullptr;
    try {
        library = find();
    } catch (...) {
        throw BundleFault{"registration", "pelvorPlugInLibrary raised: " + currentExceptionReason()};
    }
    if (!library) throw BundleFault{"registration", "pelvorPlugInLibrary returns null"};
    if (library->mark != Library::kMark)
        throw BundleFault{"interface", "pelvorPlugInLibrary returns no library record of this platform"};
    refuseOtherInterface(std::to_string(library->interfaceVersion));
    if (library->isRegistered)
        throw BundleFault{"registration",
                          std::string("the library ") + library->name + " is registered already"};
    BundleList::shared().noteCode(codeBase(reinterpret_cast<const void*>(find)), _bundle);
    return library;
}

void BundleLoader::registerClasses(Library* library, std::vector<std::string>& classNames) {
    collectClassNames(*library, classNames);
    try {
        registerLibrary(*library);
    } catch (...) {
        throw BundleFault{"registration", currentExceptionReason()};
    }
    BundleList::shared().noteLibrary(library, _bundle);
}

}  // namespace pelvor
