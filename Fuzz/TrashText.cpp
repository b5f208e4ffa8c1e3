// SPDX-License-Identifier: Apache-2.0
// Reads the text that another program wrote for a file in the trash, and throws away a file whose name is the
// input.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Foundation/DesktopTrash.h"
#include "Foundation/NSFileManager.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "TemporaryFolder.h"

using namespace pelvor;

namespace {

namespace fs = std::filesystem;

// The home folder's trash of this process, which goes with the process.
struct Home : TemporaryFolder {
    Home() {
        setenv("XDG_DATA_HOME", path("data").c_str(), 1);
        fs::create_directories(path("data/Trash/info"));
        write("data/Trash/files/x", "");
    }
};

void checkText(const Home& home, const std::string& text) {
    const std::string place = home.path("data/Trash/info/x.trashinfo");
    std::ofstream(place, std::ios::binary) << text;
    for (const TrashEntry& entry : DesktopTrash::ofHome().contents()) {
        require(entry.name == "x" && entry.original.starts_with('/'), "a file had a whole path");
        require((entry.original + "/").find("/../") == std::string::npos, "no text leads out");
    }
    fs::remove(place);
}

// A name of a file has any bytes but two.
std::string nameFrom(const std::string& input) {
    std::string name = input.substr(0, 200);
    std::ranges::replace(name, '/', '-');
    std::ranges::replace(name, '\0', '-');
    return name.empty() || name == "." || name == ".." ? "name" : name;
}

void checkName(const Home& home, const std::string& name) {
    NSFileManager* files = NSFileManager::defaultManager();
    NSString* string =
        files->stringWithFileSystemRepresentation_length(name.data(), static_cast<NSUInteger>(name.size()));
    require(string->fileSystemRepresentation() == name, "a string leads to the name that it was made from");
    const fs::path path = home.path(name);
    std::ofstream(path).close();
    const DesktopTrash trash = DesktopTrash::ofHome();
    require(trash.put(path, "y"), "the file is thrown away");
    const auto entries = trash.contents();
    require(entries.size() == 1 && entries[0].original == path, "its path is known");
    require(trash.restore(entries[0]) && fs::remove(path), "the file is where it was");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Home home;
    AutoreleasePool pool;
    const std::string input(reinterpret_cast<const char*>(data), size);
    checkText(home, input);
    if (nameFrom(input) != "data") checkName(home, nameFrom(input));
    return 0;
}
