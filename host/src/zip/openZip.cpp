// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "zip/ZipDirectory.h"
#include "zip/zipInternal.h"

namespace mav_host {
namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw HEXUserException("The archive '" + path + "' " + reason);
}

[[noreturn]] void refuseUnreadable(const std::string& path, const std::error_code& reason) {
    refuse(path, "cannot be read: " + reason.message() + "; check its permissions");
}

constexpr const char* NO_FILE = "is not a file; give the path of an archive";

FileDescriptor openFile(const std::string& path) {
    // Without waiting for the writer of a named pipe.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    const std::error_code reason(errno, std::generic_category());
    if (!file.isOpen()) {
        if (!HUTPathUtils::exists(path)) throw HEXFileNotFoundException(path);
        if (!HUTFile::isFile(path)) refuse(path, NO_FILE);
        refuseUnreadable(path, reason);
    }
    return file;
}

/// The bytes of an archive as libzip gets them: without the comment, and with nothing but the
/// checked directory while that is read, so that it finds no other one.
class ArchiveBytes {
  public:
    ArchiveBytes(FileDescriptor file, ZipDirectory& directory)
        : file_(std::move(file)),
          bytes_(std::move(directory.bytes)),
          from_(directory.from),
          size_(directory.end),
          hidden_(directory.start) {
        zip_error_init(&error_);
    }
    ~ArchiveBytes() { zip_error_fini(&error_); }
    ArchiveBytes(const ArchiveBytes&) = delete;
    ArchiveBytes& operator=(const ArchiveBytes&) = delete;

    /// The directory was read. What is wholly in memory needs no file any more, and other
    /// archives no memory.
    void showAll() {
        hidden_ = 0;
        if (from_ == 0) {
            file_.close();
        } else {
            from_ = size_;
            bytes_ = std::string();
        }
    }

    /// The callback of a libzip source; owns `self` as that asks.
    static zip_int64_t call(void* self, void* data, zip_uint64_t size, zip_source_cmd_t command) {
        auto* const bytes = static_cast<ArchiveBytes*>(self);
        if (command == ZIP_SOURCE_FREE) {
            delete bytes;
            return 0;
        }
        return bytes->answer(data, size, command);
    }

  private:
    zip_int64_t answer(void* data, zip_uint64_t size, zip_source_cmd_t command) {
        switch (command) {
            case ZIP_SOURCE_OPEN:
                at_ = 0;
                return 0;
            case ZIP_SOURCE_CLOSE:
                return 0;
            case ZIP_SOURCE_READ:
                return read(static_cast<char*>(data), size);
            case ZIP_SOURCE_SEEK:
                return seek(data, size);
            case ZIP_SOURCE_TELL:
                return static_cast<zip_int64_t>(at_);
            case ZIP_SOURCE_STAT: {
                auto* const status = static_cast<zip_stat_t*>(data);
                zip_stat_init(status);
                status->size = size_;
                status->valid = ZIP_STAT_SIZE;
                return sizeof(*status);
            }
            case ZIP_SOURCE_ERROR:
                return zip_error_to_data(&error_, data, size);
            case ZIP_SOURCE_SUPPORTS:
                return ZIP_SOURCE_SUPPORTS_SEEKABLE;
            default:
                zip_error_set(&error_, ZIP_ER_OPNOTSUPP, 0);
                return -1;
        }
    }

    zip_int64_t seek(void* data, zip_uint64_t size) {
        const zip_int64_t at = zip_source_seek_compute_offset(at_, size_, data, size, &error_);
        if (at < 0) return -1;
        at_ = static_cast<std::uint64_t>(at);
        return 0;
    }

    zip_int64_t read(char* to, std::uint64_t size) {
        size = std::min(size, size_ - at_);
        if (size == 0) return 0;
        if (at_ < hidden_) {
            size = std::min(size, hidden_ - at_);
            std::memset(to, 0, size);
        } else if (at_ >= from_) {
            std::memcpy(to, bytes_.data() + (at_ - from_), size);
        } else {
            size = std::min(size, from_ - at_);
            const ssize_t count = pread(to, size);
            if (count < 0) {
                zip_error_set(&error_, ZIP_ER_READ, errno);
                return -1;
            }
            size = static_cast<std::uint64_t>(count);
        }
        at_ += size;
        return static_cast<zip_int64_t>(size);
    }
    ssize_t pread(char* to, std::uint64_t size) const {
        for (;;) {
            const ssize_t count = ::pread(file_.get(), to, size, static_cast<off_t>(at_));
            if (count >= 0 || errno != EINTR) return count;
        }
    }

    FileDescriptor file_;
    std::string bytes_;
    std::uint64_t from_;
    std::uint64_t size_;
    std::uint64_t hidden_;  ///< what lies before reads as zeros
    std::uint64_t at_ = 0;
    zip_error_t error_;
};

/// Null when libzip cannot read what was checked.
ZipHandle openBytes(FileDescriptor file, ZipDirectory& directory) {
    auto owned = std::make_unique<ArchiveBytes>(std::move(file), directory);
    ArchiveBytes* const bytes = owned.get();
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_function_create(&ArchiveBytes::call, bytes, &error);
    if (source == nullptr) throw std::bad_alloc();
    static_cast<void>(owned.release());
    ZipHandle zip(zip_open_from_source(source, ZIP_RDONLY, &error));
    zip_error_fini(&error);
    if (zip) {
        bytes->showAll();
    } else {
        zip_source_free(source);
    }
    return zip;
}

/// The file begins with a zip signature.
bool beginsAsZip(const FileDescriptor& file) {
    std::string start;
    return readAt(file.get(), 0, 4, start) &&
           (start == std::string_view("PK\3\4", 4) || start == std::string_view("PK\5\6", 4));
}

}  // namespace

OpenZip openZip(const std::string& path) {
    return openZip(openFile(path), path);
}

OpenZip openZip(FileDescriptor file, const std::string& path) {
    OpenZip out;
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) refuse(path, NO_FILE);
    out.size = static_cast<std::uint64_t>(status.st_size);
    const bool begins = beginsAsZip(file);
    ZipDirectory directory;
    errno = 0;
    const bool found = directory.read(file, out.size, path);
    if (!found && errno != 0) {
        refuseUnreadable(path, std::error_code(errno, std::generic_category()));
    }
    if (found) {
        out.comment = std::move(directory.comment);
        out.ambiguous = directory.ambiguous;
        out.zip = openBytes(std::move(file), directory);
    }
    if (out.zip && (begins || zip_get_num_entries(out.zip.get(), 0) > 0)) return out;
    if (!begins) refuse(path, "is not a zip archive; check that it is the file you mean");
    refuse(path, "is cut off or damaged: its directory cannot be read; copy it afresh");
}

}  // namespace mav_host
