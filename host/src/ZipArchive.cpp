// SPDX-License-Identifier: Apache-2.0
#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "zipInternal.h"

namespace mav_host {
namespace {

/// The most that one packed byte can inflate to under deflate (RFC 1951: 258 bytes for 2 bits).
constexpr std::uint64_t MAX_RATIO = 1032;

bool beginsLikeZip(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 4> magic{};
    file.read(magic.data(), magic.size());
    return file && magic[0] == 'P' && magic[1] == 'K' &&
           ((magic[2] == 3 && magic[3] == 4) || (magic[2] == 5 && magic[3] == 6));
}

[[noreturn]] void refuseArchive(const std::string& path, const std::string& reason) {
    throw HEXUserException("The archive '" + path + "' " + reason);
}

[[noreturn]] void refuseMember(const std::string& path, const std::string& member,
                               const std::string& reason) {
    throw HEXDataException("The member '" + member + "' of the archive '" + path + "' " + reason);
}

std::string limitText(std::uint64_t limit) {
    return "is larger than the " + std::to_string(limit) + " bytes that are read of it";
}

constexpr const char* WRONG_SIZE =
    "holds another number of bytes than its header claims; the archive is damaged";
constexpr const char* DAMAGED = "is damaged: its checksum or its packed data is wrong";

zip_stat_t statMember(zip_t* zip, zip_uint64_t index) {
    zip_stat_t status;
    zip_stat_init(&status);
    zip_stat_index(zip, index, 0, &status);
    return status;
}

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* it) const { libdeflate_free_decompressor(it); }
};

/// The member's bytes as they stand in the archive.
std::string readPacked(zip_t* zip, zip_uint64_t index, const zip_stat_t& status,
                       const std::string& path) {
    const ZipFileHandle file(zip_fopen_index(zip, index, ZIP_FL_COMPRESSED));
    if (!file) refuseMember(path, status.name, std::string("cannot be read: ") + zip_strerror(zip));
    std::string packed(status.comp_size, '\0');
    std::size_t done = 0;
    while (done < packed.size()) {
        const zip_int64_t count = zip_fread(file.get(), packed.data() + done, packed.size() - done);
        if (count <= 0) refuseMember(path, status.name, "is cut off; the archive is damaged");
        done += static_cast<std::size_t>(count);
    }
    return packed;
}

/// Inflates a whole member at once. The memory taken is bounded by what the packed bytes can hold.
std::string inflateMember(zip_t* zip, zip_uint64_t index, const zip_stat_t& status,
                          const std::string& path, std::uint64_t fileSize) {
    if (status.comp_size > fileSize) {
        refuseMember(path, status.name, "is cut off; the archive is damaged");
    }
    if (status.size > status.comp_size * MAX_RATIO) refuseMember(path, status.name, WRONG_SIZE);
    const std::string packed = readPacked(zip, index, status, path);
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor(
        libdeflate_alloc_decompressor());
    if (!decompressor) throw std::bad_alloc();
    std::string content(status.size, '\0');
    std::size_t size = 0;
    switch (libdeflate_deflate_decompress(decompressor.get(), packed.data(), packed.size(),
                                          content.data(), content.size(), &size)) {
        case LIBDEFLATE_SUCCESS:
            break;
        case LIBDEFLATE_INSUFFICIENT_SPACE:
            refuseMember(path, status.name, WRONG_SIZE);
        default:
            refuseMember(path, status.name, DAMAGED);
    }
    if (size != status.size) refuseMember(path, status.name, WRONG_SIZE);
    if (libdeflate_crc32(0, content.data(), size) != status.crc) {
        refuseMember(path, status.name, DAMAGED);
    }
    return content;
}

}  // namespace

ZipHandle openZip(const std::string& path) {
    if (!HUTPathUtils::exists(path)) throw HEXFileNotFoundException(path);
    if (!HUTFile::isFile(path)) refuseArchive(path, "is not a file; give the path of an archive");
    int code = 0;
    errno = 0;
    ZipHandle zip(zip_open(path.c_str(), ZIP_RDONLY, &code));
    if (zip) return zip;
    const std::error_code system(errno, std::generic_category());
    if (code == ZIP_ER_OPEN || code == ZIP_ER_READ) {
        refuseArchive(path, "cannot be read: " + system.message() + "; check its permissions");
    }
    if (!beginsLikeZip(path)) {
        refuseArchive(path, "is not a zip archive; check that it is the file you mean");
    }
    refuseArchive(path, "is cut off or damaged: its directory cannot be read; copy it afresh");
}

void streamMember(zip_t* zip, zip_uint64_t index, const std::string& path, std::uint64_t limit,
                  const std::function<void(const char*, std::size_t)>& sink) {
    const zip_stat_t status = statMember(zip, index);
    const ZipFileHandle file(zip_fopen_index(zip, index, 0));
    if (!file) refuseMember(path, status.name, std::string("cannot be read: ") + zip_strerror(zip));
    std::array<char, 1U << 16U> piece;
    std::uint64_t done = 0;
    for (;;) {
        const zip_int64_t count = zip_fread(file.get(), piece.data(), piece.size());
        if (count < 0) refuseMember(path, status.name, DAMAGED);
        if (count == 0) break;
        done += static_cast<std::uint64_t>(count);
        if (done > limit) refuseMember(path, status.name, limitText(limit));
        if (done > status.size) refuseMember(path, status.name, WRONG_SIZE);
        sink(piece.data(), static_cast<std::size_t>(count));
    }
    if (done != status.size) refuseMember(path, status.name, WRONG_SIZE);
}

struct ZipArchive::Impl {
    std::string path;
    ZipHandle zip;
    std::uint64_t fileSize;

    zip_uint64_t find(const std::string& member) const {
        const zip_int64_t index = zip_name_locate(zip.get(), member.c_str(), 0);
        if (index < 0) refuseMember(path, member, "does not exist");
        return static_cast<zip_uint64_t>(index);
    }
};

ZipArchive::ZipArchive(const std::string& path)
    : impl_(std::make_shared<Impl>(Impl{path, openZip(path), std::filesystem::file_size(path)})) {}

const std::string& ZipArchive::path() const {
    return impl_->path;
}

bool ZipArchive::contains(const std::string& member) const {
    return zip_name_locate(impl_->zip.get(), member.c_str(), 0) >= 0;
}

HSTVector<ZipMember> ZipArchive::members() const {
    HSTVector<ZipMember> members;
    const zip_int64_t count = zip_get_num_entries(impl_->zip.get(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const zip_stat_t status = statMember(impl_->zip.get(), index);
        const char* const name = zip_get_name(impl_->zip.get(), index, 0);
        members.push_back({name != nullptr ? name : "", status.size, status.comp_size});
    }
    return members;
}

std::string ZipArchive::read(const std::string& member, std::uint64_t limit) const {
    zip_t* const zip = impl_->zip.get();
    const zip_uint64_t index = impl_->find(member);
    const zip_stat_t status = statMember(zip, index);
    if (status.size > limit) refuseMember(impl_->path, member, limitText(limit));
    if (status.comp_method == ZIP_CM_DEFLATE && status.encryption_method == ZIP_EM_NONE) {
        return inflateMember(zip, index, status, impl_->path, impl_->fileSize);
    }
    std::string content;
    streamMember(zip, index, impl_->path, limit,
                 [&](const char* data, std::size_t size) { content.append(data, size); });
    return content;
}

void ZipArchive::read(const std::string& member, std::uint64_t limit,
                      const std::function<void(const char*, std::size_t)>& sink) const {
    const zip_uint64_t index = impl_->find(member);
    streamMember(impl_->zip.get(), index, impl_->path, limit, sink);
}

}  // namespace mav_host
