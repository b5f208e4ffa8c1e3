// SPDX-License-Identifier: Apache-2.0
// A host built outside the tree: checks its own bundle folder and loads a plug-in that shares its libraries.
#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "Foundation/PlatformVersion.h"

namespace {

int failures = 0;

void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "failed: %s\n", what);
    ++failures;
}

bool has(const std::filesystem::path& path, const char* text) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {}).find(text) != std::string::npos;
}

void checkLayout(const std::filesystem::path& contents) {
    const auto palette = contents / "PlugIns/Palette.bundle/Contents";
    const std::pair<std::filesystem::path, const char*> texts[] = {
        {contents / "Info.plist", "<string>example.consumer</string>"},
        {contents / "Info.plist", "<string>2.5</string>"},
        {contents / "Info.plist", "<string>APPL</string>"},
        {contents / "Info.plist", "<string>Fish &amp; Chips</string>"},
        {contents / "Resources/de.lproj/Localizable.strings", "deutsch"},
        {contents / "PlugIns/Counter.bundle/Contents/Info.plist", "<string>Counter.so</string>"},
        {palette / "Info.plist", "<string>BNDL</string>"},
        {palette / "Resources/Profiles.plist", "palette"},
        {palette / "Resources/en.lproj/Localizable.strings", "="},
    };
    for (const auto& [path, text] : texts) check(has(path, text), (path.string() + " has " + text).c_str());
    check(!has(palette / "Info.plist", "CFBundleExecutable"), "a plug-in of data alone names no executable");
}

void checkPlugIn(const std::filesystem::path& contents) {
    const auto code = contents / "PlugIns/Counter.bundle/Contents/Linux/Counter.so";
    void* module = dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) return check(false, dlerror());
    pelvor::setPlatformVersion(742.0);
    const auto seen = reinterpret_cast<double (*)()>(dlsym(module, "platformVersionSeenByPlugIn"));
    check(seen && seen() == 742.0, "host and plug-in share one copy of the library");
    const auto count = reinterpret_cast<unsigned long (*)()>(dlsym(module, "countOfTwoEqualTexts"));
    check(count && count() == 2, "the plug-in uses a class that the host does not");
}

}  // namespace

int main() {
    const auto contents = std::filesystem::canonical("/proc/self/exe").parent_path().parent_path();
    check(pelvor::platformVersion() == 1000.0, "the default version");
    checkLayout(contents);
    checkPlugIn(contents);
    std::puts(failures == 0 ? "consumer: ok" : "consumer: failed");
    return failures == 0 ? 0 : 1;
}
