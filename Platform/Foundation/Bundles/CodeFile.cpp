// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "Foundation/Bundles/CodeFile.h"
#include "Foundation/Bundles/LoaderLock.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

class File {
  public:
    explicit File(const char* path) : _descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~File() {
        if (_descriptor >= 0) close(_descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return _descriptor >= 0; }
    /// Returns -1 if this is no plain file.
    off_t size() const {
        struct stat status;
        return fstat(_descriptor, &status) == 0 && S_ISREG(status.st_mode) ? status.st_size : -1;
    }
    /// Reads bytes, or returns why it cannot: the system's reason, or `fault` if the file ends before.
    std::string read(void* buffer, std::size_t size, std::uint64_t offset, const char* fault) const {
        ssize_t count = pread(_descriptor, buffer, size, static_cast<off_t>(offset));
        if (count < 0) return std::string("cannot be read: ") + std::strerror(errno);
        return static_cast<std::size_t>(count) == size ? "" : fault;
    }

  private:
    int _descriptor;
};

const ElfW(Ehdr) & ownHeader() {
    static const ElfW(Ehdr) header = [] {
        ElfW(Ehdr) own{};
        File("/proc/self/exe").read(&own, sizeof own, 0, "");
        return own;
    }();
    return header;
}

std::string faultInHeader(const ElfW(Ehdr) & header) {
    const ElfW(Ehdr)& own = ownHeader();
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return "is no ELF file";
    if (header.e_ident[EI_CLASS] != own.e_ident[EI_CLASS] ||
        header.e_ident[EI_DATA] != own.e_ident[EI_DATA] || header.e_machine != own.e_machine)
        return "is for another kind of machine";
    if (header.e_type != ET_DYN) return "is no shared object";
    if (header.e_phentsize != sizeof(ElfW(Phdr))) return "is damaged";
    return "";
}

std::string faultInSegments(const File& file, const ElfW(Ehdr) & header, std::uint64_t size) {
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    std::string fault =
        file.read(segments.data(), segments.size() * sizeof(ElfW(Phdr)), header.e_phoff, "is cut off");
    if (!fault.empty()) return fault;
    for (const ElfW(Phdr) & segment : segments)
        if (segment.p_type == PT_LOAD &&
            (segment.p_filesz > size || segment.p_offset > size - segment.p_filesz))
            return "is cut off";
    return "";
}

}  // namespace

std::string faultInCodeFile(const std::string& path) {
    File file(path.c_str());
    if (!file.isOpen()) return path + ": " + std::strerror(errno);
    off_t size = file.size();
    if (size < 0) return path + " is no plain file";
    ElfW(Ehdr) header;
    std::string fault = file.read(&header, sizeof header, 0, "is no ELF file");
    if (fault.empty()) fault = faultInHeader(header);
    if (fault.empty()) fault = faultInSegments(file, header, static_cast<std::uint64_t>(size));
    return fault.empty() ? "" : path + " " + fault;
}

CodeFile loadCodeFile(const std::string& path) {
    // The function is declared never to throw, but the constructors that it runs may: the compiler would
    // leave out a handler round a direct call.
    void* (*volatile const load)(const char*, int) = dlopen;
    CodeFile code;
    LoaderLock lock;
    try {
        code.handle = load(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!code.handle) code.fault = dlerror();
    } catch (...) {
        code.fault = path + ": a constructor raised: " + currentExceptionReason();
        code.isPartlyConstructed = true;
        lock.restore();
    }
    return code;
}

void* exportedFunction(void* handle, const char* name) {
    void* function = dlsym(handle, name);
    link_map* file = nullptr;
    link_map* holder = nullptr;
    Dl_info info;
    if (!function || dlinfo(handle, RTLD_DI_LINKMAP, &file) != 0 ||
        dladdr1(function, &info, reinterpret_cast<void**>(&holder), RTLD_DL_LINKMAP) == 0)
        return nullptr;
    return holder == file ? function : nullptr;
}

const void* codeBase(const void* address) {
    Dl_info info;
    return dladdr(address, &info) ? info.dli_fbase : nullptr;
}

std::string codePath(const void* address) {
    Dl_info info;
    return dladdr(address, &info) && info.dli_fname ? info.dli_fname : "";
}

}  // namespace pelvor
