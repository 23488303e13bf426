// SPDX-License-Identifier: Apache-2.0
#include <sodium.h>

#include <optional>
#include <string_view>

#include "mav_host/HEXError.h"
#include "mav_host/Host.h"
#include "zip/zipInternal.h"

namespace mav_host {
namespace {

constexpr std::string_view PLAIN = "mav-digest:1:sha256:";
constexpr std::string_view KEYED = "mav-digest:1:hmac-sha256:";

/// The host's key, wiped when it is done with.
struct HeldKey {
    std::optional<std::string> key = mav_host::key();

    HeldKey() = default;
    HeldKey(const HeldKey&) = delete;
    HeldKey& operator=(const HeldKey&) = delete;
    ~HeldKey() {
        if (key) wipe(*key);
    }
};

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

    ~Hash() { sodium_memzero(&hmac_, sizeof(hmac_)); }
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;

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

std::string hashMembers(const OpenZip& archive, const std::string& path,
                        const std::optional<std::string>& key) {
    if (sodium_init() < 0) throw HEXUserException("The cryptographic library cannot be started");
    zip_t* const zip = archive.zip.get();
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

void checkInflation(const OpenZip& archive, const std::string& path) {
    const std::uint64_t limit = inflationLimit(archive.size);
    std::uint64_t left = limit;
    const zip_int64_t count = zip_get_num_entries(archive.zip.get(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const zip_stat_t status = statMember(archive.zip.get(), static_cast<zip_uint64_t>(i));
        if (status.size > left) {
            throw HEXUserException("The members of the archive '" + path +
                                   "' are not gone through for its digest: they claim more than " +
                                   std::to_string(limit) +
                                   " bytes, too many for the size of the archive");
        }
        left -= status.size;
    }
}

std::string computeDigest(const OpenZip& archive, const std::string& path) {
    const HeldKey held;
    const std::optional<std::string>& secret = held.key;
    return std::string(secret ? KEYED : PLAIN) + hashMembers(archive, path, secret);
}

DigestRefusal::DigestRefusal(const std::string& text) : HEXUserException(text) {}
DigestRefusal::~DigestRefusal() = default;

DigestState checkDigest(const OpenZip& archive, const std::string& path) {
    const std::string& stored = archive.comment;
    if (!stored.starts_with(DIGEST_START)) return DigestState::MISSING;
    const bool keyed = stored.starts_with(KEYED);
    if (!keyed && !stored.starts_with(PLAIN)) return DigestState::MISMATCH;
    const HeldKey held;
    const std::optional<std::string>& secret = held.key;
    const std::optional<std::string> none;
    if (keyed && !secret) return DigestState::NO_KEY;
    checkInflation(archive, path);
    try {
        const std::string expected =
            std::string(keyed ? KEYED : PLAIN) + hashMembers(archive, path, keyed ? secret : none);
        const bool equal = expected.size() == stored.size() &&
                           sodium_memcmp(expected.data(), stored.data(), stored.size()) == 0;
        if (!equal) return DigestState::MISMATCH;
        return secret && !keyed ? DigestState::UNKEYED : DigestState::VALID;
    } catch (const HEXDataException&) {
        // A member that cannot be read whole is not what the digest was made over.
        return DigestState::MISMATCH;
    }
}

}  // namespace mav_host

mav_host::DigestState HUTZip::verifyDigest(const std::string& archive) {
    return mav_host::checkDigest(mav_host::openZip(archive), archive);
}
