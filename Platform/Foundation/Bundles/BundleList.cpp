// SPDX-License-Identifier: Apache-2.0
#include <link.h>

#include <filesystem>

#include "Foundation/Bundles/BundleContents.h"
#include "Foundation/Bundles/BundleList.h"
#include "Foundation/Bundles/CodeFile.h"
#include "Foundation/NSPathStore2.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"

namespace pelvor {

namespace fs = std::filesystem;

namespace {

// Sends a message to a path string: while bundles are set up, the program may have replaced the method of the
// path string's class by one that resolves nothing.
std::string resolved(const std::string& path) {
    AutoreleasePool pool;
    auto* string = NSPathStore2::of(NSString::ofUTF8(path)->toUTF16());
    auto* result = send<NSString*>(string, "stringByResolvingSymlinksInPath"_sel);
    return result ? result->toUTF8() : path;
}

bool isFolder(const fs::path& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

// The folder whose Contents/Linux the file is in; "" if the file is in no such place.
std::string bundleFolderOf(const fs::path& executable) {
    fs::path linux_ = executable.parent_path();
    fs::path contents = linux_.parent_path();
    bool isBundle = linux_.filename() == "Linux" && contents.filename() == "Contents";
    return isBundle ? contents.parent_path().string() : "";
}

bool isFrameworkPath(const std::string& path) { return fs::path(path).extension() == ".framework"; }

// Returns the framework to which the file belongs; "" if the file belongs to none.
std::string frameworkFolderOf(const std::string& file) {
    if (file.find('/') == std::string::npos) return "";
    std::error_code error;
    std::string folder = bundleFolderOf(resolved(fs::absolute(file, error).string()));
    return isFrameworkPath(folder) ? folder : "";
}

std::string ownExecutable() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error).string();
}

}  // namespace

BundleList& BundleList::shared() {
    static auto& list = *new BundleList;
    return list;
}

// MARK: Set-up

void BundleList::setUp() {
    std::call_once(_isSetUp, [this] {
        AutoreleasePool pool;
        setUpMain();
        setUpFrameworks();
    });
}

void BundleList::setUpMain() {
    std::string executable = ownExecutable();
    std::string folder = bundleFolderOf(executable);
    if (folder.empty()) folder = fs::path(executable).parent_path().string();
    auto bundle = make(resolved(folder), NSBundle::classObject());
    contents(bundle).executable = executable;
    contents(bundle).code = BundleContents::Code::loaded;
    _main = add(std::move(bundle));
    noteLoaded(_main);
}

void BundleList::setUpFrameworks() {
    std::vector<std::string> files;
    auto note = [](dl_phdr_info* info, std::size_t, void* found) {
        static_cast<std::vector<std::string>*>(found)->emplace_back(info->dlpi_name);
        return 0;
    };
    dl_iterate_phdr(note, &files);
    for (const std::string& file : files)
        if (std::string folder = frameworkFolderOf(file); !folder.empty())
            makeFramework(bundleWithPath(folder, NSBundle::classObject()));
}

// MARK: Bundles

Retained<NSBundle> BundleList::make(const std::string& path, Class* cls) {
    auto bundle = pelvor::make<NSBundle>(cls);
    BundleContents& made = contents(bundle);
    made.path.set(NSString::ofUTF8(path));
    fs::path folder = fs::path(path) / "Contents";
    made.folder = isFolder(folder) ? folder.string() : path;
    fs::path resources = fs::path(made.folder) / "Resources";
    made.resources = isFolder(resources) || isFolder(folder) ? resources.string() : path;
    made.isFramework = isFrameworkPath(path);
    return bundle;
}

// Returns the bundle, or the bundle that another thread has made of the folder meanwhile.
NSBundle* BundleList::add(Retained<NSBundle> bundle) {
    std::lock_guard guard(_mutex);
    auto [place, isNew] = _byPath.emplace(contents(bundle).path->toUTF8(), bundle.get());
    if (isNew) _all.push_back(std::move(bundle));
    return place->second;
}

NSBundle* BundleList::bundleWithPath(const std::string& path, Class* cls) {
    AutoreleasePool pool;
    std::error_code error;
    fs::path absolute = fs::absolute(path, error).lexically_normal();
    if (error || path.empty() || !isFolder(absolute)) return nullptr;
    if (!absolute.has_filename()) absolute = absolute.parent_path();  // without the slash at the end
    std::string key = resolved(absolute.string());
    {
        std::lock_guard guard(_mutex);
        if (auto found = _byPath.find(key); found != _byPath.end()) return found->second;
    }
    return add(make(key, cls));
}

std::vector<NSBundle*> BundleList::all() {
    std::lock_guard guard(_mutex);
    return {_all.begin(), _all.end()};
}

void BundleList::makeFramework(NSBundle* bundle) {
    if (!bundle || bundle == _main) return;
    contents(bundle).isFramework = true;
    contents(bundle).code = BundleContents::Code::loaded;
    noteLoaded(bundle);
}

void BundleList::noteLoaded(NSBundle* bundle) {
    std::lock_guard guard(_mutex);
    _newlyLoaded.push_back(bundle);
}

// An identifier is read when it is first needed, which is not before the program has a bundle to load.
NSBundle* BundleList::loadedBundle(const std::string& identifier) {
    std::vector<NSBundle*> newlyLoaded;
    {
        std::lock_guard guard(_mutex);
        newlyLoaded.swap(_newlyLoaded);
    }
    for (NSBundle* bundle : newlyLoaded)
        if (NSString* own = bundle->bundleIdentifier()) _loadedByIdentifier.emplace(own->toUTF8(), bundle);
    auto found = _loadedByIdentifier.find(identifier);
    return found == _loadedByIdentifier.end() ? nullptr : found->second;
}

// MARK: Classes

void BundleList::noteLibrary(Library* library, NSBundle* bundle) {
    contents(bundle).library = library;
    std::lock_guard guard(_mutex);
    _byLibrary[library] = bundle;
}

void BundleList::noteCode(const void* base, NSBundle* bundle) {
    std::lock_guard guard(_mutex);
    if (base) _byCode[base] = bundle;
}

NSBundle* BundleList::bundleForClass(Class* cls) {
    while (cls && !cls->library() && cls->superclass()) cls = cls->superclass();
    if (!cls) return nullptr;
    {
        std::lock_guard guard(_mutex);
        if (auto found = _byLibrary.find(cls->library()); found != _byLibrary.end()) return found->second;
    }
    return bundleForCode(cls);
}

NSBundle* BundleList::bundleForCode(Class* cls) {
    const void* code = cls->codeAddress();
    const void* base = codeBase(code);
    {
        std::lock_guard guard(_mutex);
        if (auto found = _byCode.find(base); found != _byCode.end()) return found->second;
    }
    std::string folder = frameworkFolderOf(codePath(code));
    NSBundle* bundle = folder.empty() ? _main : bundleWithPath(folder, NSBundle::classObject());
    noteCode(base, bundle);
    return bundle;
}

}  // namespace pelvor
