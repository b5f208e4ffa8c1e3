// SPDX-License-Identifier: Apache-2.0
// Packs a file or a folder into a gzip-compressed cpio archive:
//
//     ditto -c [-X] [-z] [--rsrc] SOURCE ARCHIVE
//
// A file is archived under its own name; of a folder, what is in it. A link that SOURCE names is followed,
// others are kept. The archive is new, and for the user alone; it gets its name when it is complete: whatever
// ends the program before, no file of that name is left. With -X, what is mounted inside a folder is left
// out. Linux files have no second fork for --rsrc, and the archive is always compressed.
#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

struct Arguments {
    bool isCreating = false;
    bool staysOnDisk = false;
    std::string source, target;
};

// Throws the usage for arguments that mean nothing.
Arguments argumentsOf(int count, char** words) {
    const std::invalid_argument usage("usage: ditto -c [-X] [-z] [--rsrc] SOURCE ARCHIVE");
    Arguments arguments;
    int place = 1;
    for (; place < count && words[place][0] == '-'; ++place) {
        const std::string_view word = words[place];
        if (word == "-c")
            arguments.isCreating = true;
        else if (word == "-X")
            arguments.staysOnDisk = true;
        else if (word != "-z" && word != "--rsrc")
            throw usage;
    }
    if (!arguments.isCreating || count - place != 2) throw usage;
    arguments.source = words[place];
    arguments.target = words[place + 1];
    return arguments;
}

[[noreturn]] void fail(const std::string& path, const char* reason) {
    throw std::runtime_error("ditto: " + path + ": " + reason);
}

void check(const std::string& path, bool isDone) {
    if (!isDone) fail(path, std::strerror(errno));
}

// The new archive. It has no name before it is complete or, where the file system has no files without names,
// a hidden one.
class Target {
  public:
    explicit Target(const std::string& path) : _path(path) {
        const std::size_t slash = path.rfind('/');
        const std::string folder = slash == path.npos ? "." : path.substr(0, slash + 1);
        _folder = ::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        check(path, _folder >= 0);
        _name = slash == path.npos ? path : path.substr(slash + 1);
        _file = ::openat(_folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
        if (_file >= 0) return;
        _hidden = ".ditto-" + std::to_string(::getpid());
        _file = ::openat(_folder, _hidden.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        check(path, _file >= 0);
    }
    Target(const Target&) = delete;
    ~Target() {
        if (_file >= 0 && !_hidden.empty()) ::unlinkat(_folder, _hidden.c_str(), 0);
        if (_file >= 0) ::close(_file);
        ::close(_folder);
    }

    int file() const { return _file; }
    const std::string& path() const { return _path; }
    void finish() {
        const std::string link = "/proc/self/fd/" + std::to_string(_file);
        check(_path, _hidden.empty()
                         ? ::linkat(AT_FDCWD, link.c_str(), _folder, _name.c_str(), AT_SYMLINK_FOLLOW) == 0
                         : giveNameToHidden());
    }

  private:
    // File systems lack one or the other of these, which replace nothing.
    bool giveNameToHidden() {
        const char *from = _hidden.c_str(), *to = _name.c_str();
        return ::renameat2(_folder, from, _folder, to, RENAME_NOREPLACE) == 0 ||
               (errno == EINVAL && ::linkat(_folder, from, _folder, to, 0) == 0);
    }

    std::string _path, _name, _hidden;
    int _folder = -1, _file = -1;
};

using Handle = std::unique_ptr<archive, int (*)(archive*)>;

class Packer {
  public:
    Packer(const Arguments& arguments, const Target& target)
        : _source(arguments.source),
          _target(target.path()),
          _reader(archive_read_disk_new(), archive_read_free),
          _writer(archive_write_new(), archive_write_free) {
        archive_read_disk_set_symlink_hybrid(_reader.get());
        if (arguments.staysOnDisk)
            archive_read_disk_set_behavior(_reader.get(), ARCHIVE_READDISK_NO_TRAVERSE_MOUNTS);
        require(_writer.get(), archive_write_add_filter_gzip(_writer.get()));
        require(_writer.get(), archive_write_set_format_cpio(_writer.get()));
        require(_writer.get(), archive_write_open_fd(_writer.get(), target.file()));
    }

    // Goes to the source's folder, so that the names in the archive are short.
    void pack() {
        struct stat status;
        check(_source, ::stat(_source.c_str(), &status) == 0);
        const std::size_t end = _source.find_last_not_of('/') + 1;
        const std::size_t start = _source.substr(0, end).rfind('/') + 1;
        const bool isFolder = S_ISDIR(status.st_mode);
        const std::string folder = isFolder ? _source : _source.substr(0, start);
        check(_source, folder.empty() || ::chdir(folder.c_str()) == 0);
        const std::string name = isFolder ? "." : _source.substr(start, end - start);
        require(_reader.get(), archive_read_disk_open(_reader.get(), name.c_str()));
        packEntries();
        require(_writer.get(), archive_write_close(_writer.get()));
    }

  private:
    void require(archive* of, int result) {
        if (result < ARCHIVE_WARN) failBecauseOf(of);
    }

    [[noreturn]] void failBecauseOf(archive* of) {
        const char* text = archive_error_string(of);
        std::string reason = text ? text : "unknown error";
        if (archive_errno(of) > 0) reason += std::string(": ") + std::strerror(archive_errno(of));
        fail(of == _writer.get() ? _target : _source, reason.c_str());
    }

    void packEntries() {
        std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                       archive_entry_free);
        for (;;) {
            const int result = archive_read_next_header2(_reader.get(), entry.get());
            if (result == ARCHIVE_EOF) return;
            require(_reader.get(), result);
            archive_read_disk_descend(_reader.get());
            require(_writer.get(), archive_write_header(_writer.get(), entry.get()));
            if (archive_entry_filetype(entry.get()) == AE_IFREG) packContent(archive_entry_size(entry.get()));
        }
    }

    // Holes become zeros; a file that grows or shrinks meanwhile keeps the size that it began with.
    void packContent(la_int64_t size) {
        la_int64_t place = 0;
        for (;;) {
            const void* block = nullptr;
            std::size_t length = 0;
            la_int64_t offset = 0;
            const int result = archive_read_data_block(_reader.get(), &block, &length, &offset);
            if (result == ARCHIVE_EOF) break;
            require(_reader.get(), result);
            packZeros(std::min(offset, size) - place);
            place = std::max(place, std::min(offset, size));
            packBytes(block, std::min(length, static_cast<std::size_t>(size - place)));
            place = std::min<la_int64_t>(size, offset + static_cast<la_int64_t>(length));
        }
        packZeros(size - place);
    }

    void packZeros(la_int64_t count) {
        static constexpr char kZeros[65536] = {};
        for (; count > 0; count -= sizeof kZeros)
            packBytes(kZeros, std::min<std::size_t>(sizeof kZeros, static_cast<std::size_t>(count)));
    }

    void packBytes(const void* bytes, std::size_t length) {
        if (length > 0 && archive_write_data(_writer.get(), bytes, length) != static_cast<la_ssize_t>(length))
            failBecauseOf(_writer.get());
    }

    std::string _source, _target;
    Handle _reader, _writer;
};

}  // namespace

int main(int count, char** words) {
    try {
        const Arguments arguments = argumentsOf(count, words);
        Target target(arguments.target);
        Packer(arguments, target).pack();
        target.finish();
        return 0;
    } catch (const std::invalid_argument& usage) {
        std::fprintf(stderr, "%s\n", usage.what());
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
