// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <libdeflate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mav_host/Host.h"

/// One member of an archive that is put together byte by byte, so that each field can lie.
struct RawMember {
    std::string name;
    std::string data;  ///< as it stands in the archive
    std::uint16_t method = 0;
    std::uint16_t flags = 0;
    std::uint32_t crc = 0;
    std::uint32_t packed = 0;
    std::uint32_t size = 0;
    std::uint32_t attributes = 0;
    std::uint32_t dosTime = 0x00210000;  ///< date in the upper half
};

inline RawMember storedMember(const std::string& name, const std::string& content) {
    const auto size = static_cast<std::uint32_t>(content.size());
    return {name, content, 0, 0, libdeflate_crc32(0, content.data(), content.size()), size, size};
}

inline RawMember deflatedMember(const std::string& name, const std::string& content) {
    RawMember member = storedMember(name, content);
    const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
        libdeflate_alloc_compressor(6), libdeflate_free_compressor);
    std::string packed(libdeflate_deflate_compress_bound(compressor.get(), content.size()), '\0');
    packed.resize(libdeflate_deflate_compress(compressor.get(), content.data(), content.size(),
                                              packed.data(), packed.size()));
    member.method = 8;
    member.packed = static_cast<std::uint32_t>(packed.size());
    member.data = std::move(packed);
    return member;
}

/// `number` in `bytes` bytes, lowest first.
inline std::string little(std::uint64_t number, unsigned bytes) {
    std::string text;
    for (unsigned i = 0; i < bytes; ++i) text += static_cast<char>(number >> (8 * i));
    return text;
}

/// The fields that both headers of a member share.
inline std::string rawFields(const RawMember& member, std::uint64_t extra = 0) {
    return little(20, 2) + little(member.flags, 2) + little(member.method, 2) +
           little(member.dosTime, 4) + little(member.crc, 4) + little(member.packed, 4) +
           little(member.size, 4) + little(member.name.size(), 2) + little(extra, 2);
}

inline std::string rawLocal(const RawMember& member) {
    return "PK\3\4" + rawFields(member) + member.name + member.data;
}

/// Directory entry of a member whose local header stands at `offset`.
inline std::string rawEntry(const RawMember& member, std::uint64_t offset,
                            const std::string& extra = "") {
    return "PK\1\2" + little(0x031e, 2) + rawFields(member, extra.size()) + little(0, 2) +
           little(0, 2) + little(0, 2) + little(member.attributes, 4) + little(offset, 4) +
           member.name + extra;
}

/// End of an archive whose directory of `size` bytes stands at `offset`.
inline std::string rawEnd(std::uint64_t count, std::uint64_t size, std::uint64_t offset,
                          const std::string& comment = "") {
    return std::string("PK\5\6", 4) + little(0, 4) + little(count, 2) + little(count, 2) +
           little(size, 4) + little(offset, 4) + little(comment.size(), 2) + comment;
}

/// The bytes of an archive with these members and this comment.
inline std::string rawZip(const std::vector<RawMember>& members, const std::string& comment = "") {
    std::string bytes;
    std::string directory;
    for (const RawMember& member : members) {
        directory += rawEntry(member, bytes.size());
        bytes += rawLocal(member);
    }
    return bytes + directory + rawEnd(members.size(), directory.size(), bytes.size(), comment);
}

/// The end of an archive that has its numbers in the wide record too, which stands at `at`.
inline std::string rawWideEnd(std::uint64_t at, std::uint64_t count, std::uint64_t size,
                              std::uint64_t offset, const std::string& narrow) {
    return std::string("PK\6\6", 4) + little(44, 8) + little(45, 2) + little(45, 2) + little(0, 8) +
           little(count, 8) + little(count, 8) + little(size, 8) + little(offset, 8) +
           std::string("PK\6\7", 4) + little(0, 4) + little(at, 8) + little(1, 4) + narrow;
}

/// A host key for the time of a test, made long enough to be one; no value is a host without one.
class HostKey final : public mav_host::KeyProvider {
  public:
    explicit HostKey(std::optional<std::string> key)
        : key_(std::move(key)), before_(mav_host::setKeyProvider(this)) {
        if (key_ && key_->size() < 16) key_->append(16 - key_->size(), '.');
    }
    ~HostKey() override { mav_host::setKeyProvider(before_); }
    std::optional<std::string> key() const override { return key_; }

  private:
    std::optional<std::string> key_;
    mav_host::KeyProvider* before_;
};
