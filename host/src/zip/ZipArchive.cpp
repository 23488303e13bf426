// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <libdeflate.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <system_error>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "zip/zipInternal.h"

namespace mav_host {
namespace {

/// The most that one packed byte can inflate to under deflate (RFC 1951: 258 bytes for 2 bits).
constexpr std::uint64_t MAX_RATIO = 1032;

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
constexpr const char* CUT_OFF = "is cut off; the archive is damaged";

struct FreeDecompressor {
    void operator()(libdeflate_decompressor* it) const { libdeflate_free_decompressor(it); }
};

/// The thread's own: making one costs as much as inflating a small member.
libdeflate_decompressor* decompressor() {
    thread_local const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> OWN(
        libdeflate_alloc_decompressor());
    if (!OWN) throw std::bad_alloc();
    return OWN.get();
}

/// Room for `size` bytes. Large texts are asked of the system in large pages: taking them page by
/// page costs more than inflating them.
std::string makeRoom(std::size_t size) {
    constexpr std::uintptr_t PAGE = std::uintptr_t{2} << 20;
    std::string room;
    room.reserve(size);
    const auto start = reinterpret_cast<std::uintptr_t>(room.data());
    const std::uintptr_t first = (start + PAGE - 1) / PAGE * PAGE;
    const std::uintptr_t end = (start + size) / PAGE * PAGE;
    if (first < end) ::madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    room.resize(size);
    return room;
}

/// Fills `to` with the member's bytes as they stand in the archive.
void readPacked(zip_t* zip, zip_uint64_t index, const zip_stat_t& status, const std::string& path,
                char* to) {
    const ZipFileHandle file(zip_fopen_index(zip, index, ZIP_FL_COMPRESSED));
    if (!file) refuseMember(path, status.name, CUT_OFF);
    std::uint64_t done = 0;
    while (done < status.comp_size) {
        const zip_int64_t count = zip_fread(file.get(), to + done, status.comp_size - done);
        if (count <= 0) refuseMember(path, status.name, CUT_OFF);
        done += static_cast<std::uint64_t>(count);
    }
}

std::string inflateMember(zip_t* zip, zip_uint64_t index, const zip_stat_t& status,
                          const std::string& path) {
    if (status.size > status.comp_size * MAX_RATIO) refuseMember(path, status.name, WRONG_SIZE);
    const auto packed = std::make_unique_for_overwrite<char[]>(status.comp_size);
    readPacked(zip, index, status, path, packed.get());
    std::string content = makeRoom(status.size);
    std::size_t size = 0;
    const libdeflate_result result = libdeflate_deflate_decompress(
        decompressor(), packed.get(), status.comp_size, content.data(), content.size(), &size);
    if (result == LIBDEFLATE_INSUFFICIENT_SPACE) refuseMember(path, status.name, WRONG_SIZE);
    if (result != LIBDEFLATE_SUCCESS) refuseMember(path, status.name, DAMAGED);
    if (size != status.size) refuseMember(path, status.name, WRONG_SIZE);
    return content;
}

std::string copyStored(zip_t* zip, zip_uint64_t index, const zip_stat_t& status,
                       const std::string& path) {
    if (status.size != status.comp_size) refuseMember(path, status.name, WRONG_SIZE);
    std::string content = makeRoom(status.size);
    readPacked(zip, index, status, path, content.data());
    return content;
}

/// Packed data far larger than the content does not come from a packer; it is not taken into
/// memory.
bool isOverlong(const zip_stat_t& status) {
    return status.comp_size > status.size + status.size / 8 + 1024;
}

}  // namespace

std::string memberName(zip_t* zip, zip_uint64_t index) {
    const char* const name = zip_get_name(zip, index, 0);
    return name != nullptr ? name : "";
}

zip_stat_t statMember(zip_t* zip, zip_uint64_t index) {
    zip_stat_t status;
    zip_stat_init(&status);
    zip_stat_index(zip, index, 0, &status);
    if (status.name == nullptr) status.name = "";
    return status;
}

zip_int64_t findMember(zip_t* zip, const std::string& name) {
    if (name.find('\0') != std::string::npos) return -1;
    return zip_name_locate(zip, name.c_str(), 0);
}

ZipFileHandle openMember(zip_t* zip, zip_uint64_t index, const std::string& path) {
    const zip_stat_t status = statMember(zip, index);
    if (status.encryption_method != ZIP_EM_NONE) {
        refuseMember(path, status.name, "is encrypted, which is not supported; pack it plain");
    }
    if (zip_compression_method_supported(status.comp_method, 0) == 0) {
        refuseMember(path, status.name,
                     "is packed by method " + std::to_string(status.comp_method) +
                         ", which is not supported; pack it with deflate");
    }
    ZipFileHandle file(zip_fopen_index(zip, index, 0));
    if (!file) {
        refuseMember(path, status.name, std::string("cannot be read: ") + zip_strerror(zip));
    }
    return file;
}

void streamMember(zip_t* zip, zip_uint64_t index, const std::string& path, std::uint64_t limit,
                  const std::function<void(const char*, std::size_t)>& sink) {
    const zip_stat_t status = statMember(zip, index);
    if (status.size > limit) refuseMember(path, status.name, limitText(limit));
    const ZipFileHandle file = openMember(zip, index, path);
    std::array<char, 1U << 16U> piece;
    std::uint64_t left = status.size;
    ProgressTeller progress(status.name, status.size);
    for (;;) {
        const zip_int64_t count = zip_fread(file.get(), piece.data(), piece.size());
        if (count < 0) refuseMember(path, status.name, DAMAGED);
        if (count == 0) break;
        if (static_cast<std::uint64_t>(count) > left) refuseMember(path, status.name, WRONG_SIZE);
        left -= static_cast<std::uint64_t>(count);
        sink(piece.data(), static_cast<std::size_t>(count));
        progress.done(status.size - left);
        if (isCancelled()) {
            throw HEXUserException("The archive '" + path + "' is not read to its end: stopped");
        }
    }
    if (left != 0) refuseMember(path, status.name, WRONG_SIZE);
}

zip_uint64_t ZipArchive::Impl::find(const std::string& member) const {
    const zip_int64_t index = findMember(zip(), member);
    if (index < 0) refuseMember(path, member, "does not exist");
    return static_cast<zip_uint64_t>(index);
}

ZipArchive::ZipArchive(const std::string& path) : impl_(std::make_shared<Impl>()) {
    impl_->path = path;
    impl_->open = openZip(path);
}

const std::string& ZipArchive::path() const {
    return impl_->path;
}

bool ZipArchive::contains(const std::string& member) const {
    return findMember(impl_->zip(), member) >= 0;
}

HSTVector<ZipMember> ZipArchive::members() const {
    HSTVector<ZipMember> members;
    const zip_int64_t count = zip_get_num_entries(impl_->zip(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const zip_stat_t status = statMember(impl_->zip(), index);
        members.push_back({memberName(impl_->zip(), index), status.size, status.comp_size});
    }
    return members;
}

void ZipArchive::checkInflation() const {
    mav_host::checkInflation(impl_->open, impl_->path);
}

std::string ZipArchive::read(const std::string& member, std::uint64_t limit) const {
    zip_t* const zip = impl_->zip();
    const zip_uint64_t index = impl_->find(member);
    const zip_stat_t status = statMember(zip, index);
    if (status.size > limit) refuseMember(impl_->path, member, limitText(limit));
    const bool plain = status.encryption_method == ZIP_EM_NONE && !isOverlong(status);
    if (plain && status.comp_size > impl_->open.size) refuseMember(impl_->path, member, CUT_OFF);
    std::string content;
    if (plain && status.comp_method == ZIP_CM_DEFLATE) {
        content = inflateMember(zip, index, status, impl_->path);
    } else if (plain && status.comp_method == ZIP_CM_STORE) {
        content = copyStored(zip, index, status, impl_->path);
    } else {
        streamMember(zip, index, impl_->path, limit,
                     [&](const char* data, std::size_t size) { content.append(data, size); });
        return content;
    }
    if (libdeflate_crc32(0, content.data(), content.size()) != status.crc) {
        refuseMember(impl_->path, member, DAMAGED);
    }
    return content;
}

void ZipArchive::read(const std::string& member, std::uint64_t limit,
                      const std::function<void(const char*, std::size_t)>& sink) const {
    const zip_uint64_t index = impl_->find(member);
    streamMember(impl_->zip(), index, impl_->path, limit, sink);
}

MemberBuffer::MemberBuffer(const ZipArchive& archive, const std::string& member)
    : archive_(archive.impl_), piece_(1U << 16U) {
    const zip_uint64_t index = archive_->find(member);
    file_ = openMember(archive_->zip(), index, archive_->path);
    left_ = statMember(archive_->zip(), index).size;
}

MemberBuffer::int_type MemberBuffer::underflow() {
    const zip_int64_t count = zip_fread(file_.get(), piece_.data(), piece_.size());
    if (count < 0) throw std::ios_base::failure(DAMAGED);
    const auto size = static_cast<std::uint64_t>(count);
    if (size > left_ || (size == 0 && left_ > 0)) throw std::ios_base::failure(WRONG_SIZE);
    if (size == 0) return traits_type::eof();
    left_ -= size;
    setg(piece_.data(), piece_.data(), piece_.data() + size);
    return traits_type::to_int_type(piece_.front());
}

}  // namespace mav_host
