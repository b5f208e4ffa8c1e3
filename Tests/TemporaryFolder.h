// SPDX-License-Identifier: Apache-2.0
// TemporaryFolder: a folder for the files of one test or one program.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace pelvor {

/// A new folder that goes, with all that is in it, at the end of its scope.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "PelvorXXXXXX";
        if (!mkdtemp(name.data())) std::abort();
        _path = std::filesystem::canonical(name);
    }
    ~TemporaryFolder() {
        std::error_code error;
        if (std::filesystem::remove_all(_path, error); !error) return;
        // Only root removes what is in a folder that nobody may write.
        (void)!std::system(("chmod -R u+rwX '" + _path.string() + "'").c_str());
        std::filesystem::remove_all(_path, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }
    std::string path(const std::string& name) const { return _path / name; }
    /// Writes a file, with the folders that its name has, and returns its path.
    std::string write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((_path / name).parent_path());
        std::ofstream(_path / name, std::ios::binary) << content;
        return _path / name;
    }
    std::string read(const std::string& name) const {
        std::ifstream file(_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path _path;
};

}  // namespace pelvor
