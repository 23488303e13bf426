// SPDX-License-Identifier: Apache-2.0
#include "zip/zipSources.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "FileDescriptor.h"
#include "mav_host/HUTFolder.h"

namespace mav_host {
namespace {

/// What every source of ours answers libzip; a derived one adds its own commands.
class Source {
  public:
    Source() { zip_error_init(&error_); }
    virtual ~Source() { zip_error_fini(&error_); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// The callback of a libzip source, which owns `self`.
    static zip_int64_t call(void* self, void* data, zip_uint64_t size, zip_source_cmd_t command) {
        auto* const source = static_cast<Source*>(self);
        switch (command) {
            case ZIP_SOURCE_FREE:
                delete source;
                return 0;
            case ZIP_SOURCE_ERROR:
                return zip_error_to_data(&source->error_, data, size);
            default:
                return source->answer(data, size, command);
        }
    }

  protected:
    virtual zip_int64_t answer(void* data, zip_uint64_t size, zip_source_cmd_t command) = 0;

    /// Fails with the system's reason.
    zip_int64_t fail(int code) {
        zip_error_set(&error_, code, errno);
        return -1;
    }
    zip_int64_t tellSize(int file, void* to) {
        struct stat status = {};
        if (::fstat(file, &status) != 0) return fail(ZIP_ER_READ);
        auto* const out = static_cast<zip_stat_t*>(to);
        zip_stat_init(out);
        out->size = static_cast<zip_uint64_t>(status.st_size);
        out->valid = ZIP_STAT_SIZE;
        return sizeof(*out);
    }

    zip_error_t error_;
};

class FileBytes final : public Source {
  public:
    FileBytes(const HUTZip::Source& source, std::string& failure)
        : source_(source), failure_(failure) {}

  private:
    zip_int64_t answer(void* data, zip_uint64_t size, zip_source_cmd_t command) override {
        switch (command) {
            case ZIP_SOURCE_SUPPORTS:
                return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ,
                                                      ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                                                      ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, -1);
            case ZIP_SOURCE_STAT: {
                const FileDescriptor file = open();
                return file.isOpen() ? tellSize(file.get(), data) : -1;
            }
            case ZIP_SOURCE_OPEN:
                file_ = open();
                return file_.isOpen() ? 0 : -1;
            case ZIP_SOURCE_READ:
                return read(data, size);
            case ZIP_SOURCE_CLOSE:
                file_ = FileDescriptor();
                return 0;
            default:
                zip_error_set(&error_, ZIP_ER_OPNOTSUPP, 0);
                return -1;
        }
    }

    FileDescriptor open() {
        FileDescriptor file = source_.folder ? FileDescriptor(source_.folder->open(source_.file))
                                             : openRegular(source_.file);
        if (!file.isOpen()) note(ZIP_ER_OPEN);
        return file;
    }

    zip_int64_t read(void* to, zip_uint64_t size) {
        for (;;) {
            const ssize_t count = ::read(file_.get(), to, size);
            if (count >= 0) return count;
            if (errno != EINTR) return note(ZIP_ER_READ);
        }
    }

    zip_int64_t note(int code) {
        const std::string path =
            source_.folder ? source_.folder->pathOf(source_.file) : source_.file;
        failure_ = "the file '" + path + "' cannot be read: " +
                   (errno == 0 ? "it is not a regular file"
                               : std::error_code(errno, std::generic_category()).message());
        return fail(code);
    }

    const HUTZip::Source& source_;
    std::string& failure_;
    FileDescriptor file_;
};

/// libzip writes in small pieces, which are gathered here.
class FileSink final : public Source {
  public:
    explicit FileSink(int file) : file_(file) { gathered_.reserve(ROOM); }

  private:
    static constexpr std::size_t ROOM = 1U << 16U;

    zip_int64_t answer(void* data, zip_uint64_t size, zip_source_cmd_t command) override {
        switch (command) {
            case ZIP_SOURCE_SUPPORTS:
                return ZIP_SOURCE_SUPPORTS_WRITABLE;
            case ZIP_SOURCE_STAT:
                return tellSize(file_, data);
            case ZIP_SOURCE_OPEN:
            case ZIP_SOURCE_BEGIN_WRITE:
            case ZIP_SOURCE_ROLLBACK_WRITE:
            case ZIP_SOURCE_REMOVE:
            case ZIP_SOURCE_CLOSE:
                return 0;
            case ZIP_SOURCE_COMMIT_WRITE:
                return flush();
            case ZIP_SOURCE_WRITE:
                return write(static_cast<const char*>(data), size);
            case ZIP_SOURCE_TELL_WRITE:
                return static_cast<zip_int64_t>(at_ + gathered_.size());
            case ZIP_SOURCE_SEEK_WRITE:
                return seek(data, size);
            default:
                zip_error_set(&error_, ZIP_ER_OPNOTSUPP, 0);
                return -1;
        }
    }

    zip_int64_t write(const char* data, zip_uint64_t size) {
        if (gathered_.size() + size > ROOM && flush() != 0) return -1;
        gathered_.append(data, size);
        end_ = std::max(end_, at_ + gathered_.size());
        return static_cast<zip_int64_t>(size);
    }

    zip_int64_t flush() {
        if (!writeAll(file_, gathered_)) return fail(ZIP_ER_WRITE);
        at_ += gathered_.size();
        gathered_.clear();
        return 0;
    }

    zip_int64_t seek(void* data, zip_uint64_t size) {
        if (flush() != 0) return -1;
        const zip_int64_t to = zip_source_seek_compute_offset(at_, end_, data, size, &error_);
        if (to < 0) return -1;
        if (::lseek(file_, to, SEEK_SET) < 0) return fail(ZIP_ER_SEEK);
        at_ = static_cast<std::uint64_t>(to);
        return 0;
    }

    int file_;
    std::string gathered_;
    std::uint64_t at_ = 0;   ///< where the gathered bytes go
    std::uint64_t end_ = 0;  ///< of what was written
};

/// libzip takes the object over when it makes the source of it.
zip_source_t* makeSource(std::unique_ptr<Source> own) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_function_create(&Source::call, own.get(), &error);
    zip_error_fini(&error);
    if (source != nullptr) static_cast<void>(own.release());
    return source;
}

}  // namespace

zip_source_t* readingSource(const HUTZip::Source& source, std::string& failure) {
    return makeSource(std::make_unique<FileBytes>(source, failure));
}

zip_source_t* writingSource(int file) {
    return makeSource(std::make_unique<FileSink>(file));
}

}  // namespace mav_host
