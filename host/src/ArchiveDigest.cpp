// SPDX-License-Identifier: Apache-2.0
#include <sodium.h>

#include <optional>
#include <string_view>

#include "mav_host/HEXError.h"
#include "mav_host/Host.h"
#include "zipInternal.h"

namespace mav_host {
namespace {

constexpr std::string_view PLAIN = "mav-digest:1:sha256:";
constexpr std::string_view KEYED = "mav-digest:1:hmac-sha256:";

/// SHA-256 with a key, or without one.
class Hash {
  public:
    explicit Hash(const std::optional<std::string>& key) : keyed_(key.has_value()) {
        if (keyed_) {
            crypto_auth_hmacsha256_init(&hmac_, bytes(key->data()), key->size());
        } else {
            crypto_hash_sha256_init(&plain_);
        }
    }

    void add(const char* data, std::size_t size) {
        if (keyed_) {
            crypto_auth_hmacsha256_update(&hmac_, bytes(data), size);
        } else {
            crypto_hash_sha256_update(&plain_, bytes(data), size);
        }
    }

    /// Eight bytes, lowest first.
    void add(std::uint64_t number) {
        char little[8];
        for (unsigned i = 0; i < 8; ++i) little[i] = static_cast<char>(number >> (8 * i));
        add(little, sizeof(little));
    }

    std::string hex() {
        unsigned char sum[crypto_hash_sha256_BYTES];
        static_assert(crypto_auth_hmacsha256_BYTES == crypto_hash_sha256_BYTES);
        if (keyed_) {
            crypto_auth_hmacsha256_final(&hmac_, sum);
        } else {
            crypto_hash_sha256_final(&plain_, sum);
        }
        char text[2 * sizeof(sum) + 1];
        return sodium_bin2hex(text, sizeof(text), sum, sizeof(sum));
    }

  private:
    static const unsigned char* bytes(const char* data) {
        return reinterpret_cast<const unsigned char*>(data);
    }

    bool keyed_;
    crypto_auth_hmacsha256_state hmac_;
    crypto_hash_sha256_state plain_;
};

std::string hashMembers(zip_t* zip, const std::string& path,
                        const std::optional<std::string>& key) {
    if (sodium_init() < 0) throw HEXUserException("The cryptographic library cannot be started");
    Hash hash(key);
    const zip_int64_t count = zip_get_num_entries(zip, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const std::string name = memberName(zip, index);
        const zip_stat_t status = statMember(zip, index);
        hash.add(name.size());
        hash.add(name.data(), name.size());
        hash.add(status.size);
        streamMember(zip, index, path, UINT64_MAX,
                     [&](const char* data, std::size_t size) { hash.add(data, size); });
    }
    return hash.hex();
}

}  // namespace

std::string computeDigest(zip_t* zip, const std::string& path) {
    const std::optional<std::string> secret = key();
    return std::string(secret ? KEYED : PLAIN) + hashMembers(zip, path, secret);
}

}  // namespace mav_host

mav_host::DigestState HUTZip::verifyDigest(const std::string& archive) {
    using mav_host::DigestState;
    const mav_host::ZipHandle zip = mav_host::openZip(archive);
    int size = 0;
    const char* const comment = zip_get_archive_comment(zip.get(), &size, ZIP_FL_ENC_RAW);
    const std::string_view stored(comment != nullptr ? comment : "",
                                  static_cast<std::size_t>(size));
    if (!stored.starts_with(mav_host::DIGEST_START)) return DigestState::MISSING;
    const bool keyed = stored.starts_with(mav_host::KEYED);
    if (!keyed && !stored.starts_with(mav_host::PLAIN)) return DigestState::MISMATCH;
    const std::optional<std::string> secret = mav_host::key();
    if (keyed && !secret) return DigestState::NO_KEY;
    try {
        const std::string expected =
            std::string(keyed ? mav_host::KEYED : mav_host::PLAIN) +
            mav_host::hashMembers(zip.get(), archive, keyed ? secret : std::nullopt);
        const bool equal = expected.size() == stored.size() &&
                           sodium_memcmp(expected.data(), stored.data(), stored.size()) == 0;
        if (!equal) return DigestState::MISMATCH;
        return secret && !keyed ? DigestState::UNKEYED : DigestState::VALID;
    } catch (const HEXDataException&) {
        // A member that cannot be read whole is not what the digest was made over.
        return DigestState::MISMATCH;
    }
}
