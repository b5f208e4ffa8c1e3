// SPDX-License-Identifier: Apache-2.0
// A host built outside the tree: checks its own bundle folder and loads a plug-in that shares its libraries.
#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "Foundation/PlatformVersion.h"

namespace {

int failures = 0;

void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "failed: %s\n", what);
    ++failures;
}

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool has(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

void checkLayout(const std::filesystem::path& contents) {
    const std::string info = contentsOf(contents / "Info.plist");
    check(has(info, "<string>example.consumer</string>"), "the host's identifier");
    check(has(info, "<string>2.5</string>"), "the host's version");
    check(has(info, "<string>APPL</string>"), "the host's kind");
    check(has(info, "<string>Fish &amp; Chips</string>"), "text of the information is escaped");
    check(has(contentsOf(contents / "Resources/de.lproj/Localizable.strings"), "deutsch"),
          "the host's German table");

    const auto palette = contents / "PlugIns/Palette.bundle/Contents";
    const std::string paletteInfo = contentsOf(palette / "Info.plist");
    check(has(paletteInfo, "<string>BNDL</string>"), "the plug-in's kind");
    check(!has(paletteInfo, "CFBundleExecutable"), "a plug-in of data alone names no executable");
    check(has(contentsOf(palette / "Resources/Profiles.plist"), "palette"), "the declarations");
    check(std::filesystem::exists(palette / "Resources/en.lproj/Localizable.strings"), "the plug-in's table");
}

void checkPlugIn(const std::filesystem::path& contents) {
    const auto counter = contents / "PlugIns/Counter.bundle/Contents";
    check(has(contentsOf(counter / "Info.plist"), "<string>Counter.so</string>"), "the plug-in's executable");
    void* module = dlopen((counter / "Linux/Counter.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    check(module != nullptr, "the plug-in loads");
    if (!module) {
        std::fprintf(stderr, "%s\n", dlerror());
        return;
    }
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
