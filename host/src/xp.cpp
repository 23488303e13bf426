// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xp.h"

#include <sodium.h>

#include <array>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "FileDescriptor.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"

namespace isl::iostreams::xp {
namespace {

/// The file: magic, version byte, key check, size of the plain content (eight bytes, lowest first),
/// stream header, then pieces of PIECE plain bytes each, the last one shorter and tagged final.
/// Everything before the stream header is authenticated with each piece.
constexpr std::string_view MAGIC = "MAVXP\r\n\x1a";
constexpr char VERSION = 1;
constexpr std::size_t CHECK = 16;
constexpr std::size_t LENGTH = 8;
constexpr std::size_t PREFIX = MAGIC.size() + 1 + CHECK + LENGTH;
constexpr std::size_t HEADER = crypto_secretstream_xchacha20poly1305_HEADERBYTES;
constexpr std::size_t EXTRA = crypto_secretstream_xchacha20poly1305_ABYTES;
constexpr std::size_t PIECE = 1U << 16U;
constexpr std::size_t MAX_FILE = std::size_t{1} << 30;

using Key = std::array<unsigned char, crypto_secretstream_xchacha20poly1305_KEYBYTES>;

unsigned char* bytes(char* data) {
    return reinterpret_cast<unsigned char*>(data);
}
const unsigned char* bytes(const char* data) {
    return reinterpret_cast<const unsigned char*>(data);
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw HEXDataException("The protected file '" + path + "' " + reason);
}

struct WipeKey {
    Key key{};
    ~WipeKey() { sodium_memzero(key.data(), key.size()); }
};

using State = crypto_secretstream_xchacha20poly1305_state;

struct WipeState {
    State state{};
    ~WipeState() { sodium_memzero(&state, sizeof(state)); }
};

/// The cipher's key from the host's, whatever its length. False when the host has none.
bool deriveKey(Key& key) {
    if (sodium_init() < 0) return false;
    std::optional<std::string> found = mav_host::key();
    if (!found) return false;
    const mav_host::SecretText secret(std::move(*found));
    constexpr std::string_view CONTEXT = "mav protected container";
    crypto_generichash(key.data(), key.size(), bytes(secret.text().data()), secret.size(),
                       bytes(CONTEXT.data()), CONTEXT.size());
    return true;
}

/// What stands before the stream header. The key check tells a wrong key from changed content.
std::string makePrefix(const Key& key, std::uint64_t size) {
    constexpr std::string_view LABEL = "key check";
    std::array<char, CHECK> check;
    crypto_generichash(bytes(check.data()), check.size(), bytes(LABEL.data()), LABEL.size(),
                       key.data(), key.size());
    std::string prefix(MAGIC);
    prefix += VERSION;
    prefix.append(check.data(), check.size());
    for (unsigned i = 0; i < LENGTH; ++i) prefix += static_cast<char>(size >> (8 * i));
    return prefix;
}

std::uint64_t lengthIn(std::string_view content) {
    std::uint64_t size = 0;
    for (std::size_t i = LENGTH; i-- > 0;) {
        size = size << 8 | static_cast<unsigned char>(content[PREFIX - LENGTH + i]);
    }
    return size;
}

/// Size of a whole container; there is always a last piece, which may be empty.
std::uint64_t containerSize(std::uint64_t plain) {
    const std::uint64_t pieces = plain == 0 ? 1 : (plain + PIECE - 1) / PIECE;
    return PREFIX + HEADER + plain + pieces * EXTRA;
}

std::string readWhole(const std::string& path) {
    const mav_host::FileDescriptor file = mav_host::openRegular(path);
    if (!file.isOpen()) refuse(path, "cannot be read; check path and permissions");
    std::string content;
    if (!mav_host::readAll(file.get(), MAX_FILE, content)) {
        refuse(path, "cannot be read to its end");
    }
    if (content.size() > MAX_FILE) refuse(path, "is larger than 1 GiB");
    return content;
}

constexpr const char* CUT_OFF = "is cut off; copy it afresh";

/// Checks what can be told without a key.
void checkForm(const std::string& path, std::string_view content) {
    if (content.substr(0, MAGIC.size()) != MAGIC) refuse(path, "is not in the protected format");
    if (content.size() == MAGIC.size()) refuse(path, CUT_OFF);
    const int version = static_cast<unsigned char>(content[MAGIC.size()]);
    if (version != VERSION) {
        refuse(path, "is of version " + std::to_string(version) +
                         " of the protected format, and this release reads version " +
                         std::to_string(VERSION) + "; use a newer release");
    }
    if (content.size() < PREFIX) refuse(path, CUT_OFF);
}

/// Compares what stands before the stream header, and the file's size, with what the key expects.
void checkPrefix(const std::string& path, std::string_view content, const Key& key) {
    const std::uint64_t length = lengthIn(content);
    if (content.substr(0, PREFIX) != makePrefix(key, length)) {
        refuse(path, "was made with another key; give the host the key that it was made with");
    }
    const std::uint64_t expected = length > MAX_FILE ? UINT64_MAX : containerSize(length);
    if (content.size() < expected) refuse(path, CUT_OFF);
    if (content.size() > expected) refuse(path, "has bytes behind its end; copy it afresh");
}

/// Deciphers the pieces behind the prefix, whose size has been checked.
std::string decipher(const std::string& path, std::string_view content, const Key& key) {
    constexpr const char* CHANGED = "was changed after it was made; get it afresh";
    const std::string_view prefix = content.substr(0, PREFIX);
    mav_host::SecretText plain(std::string(lengthIn(content), '\0'));
    WipeState cipher;
    State& state = cipher.state;
    crypto_secretstream_xchacha20poly1305_init_pull(&state, bytes(content.data() + PREFIX),
                                                    key.data());
    std::string_view rest = content.substr(PREFIX + HEADER);
    for (std::size_t done = 0; !rest.empty();) {
        const std::string_view piece = rest.substr(0, PIECE + EXTRA);
        rest.remove_prefix(piece.size());
        unsigned char tag = 0;
        if (crypto_secretstream_xchacha20poly1305_pull(&state, bytes(plain.data() + done), nullptr,
                                                       &tag, bytes(piece.data()), piece.size(),
                                                       bytes(prefix.data()), prefix.size()) != 0 ||
            (tag == crypto_secretstream_xchacha20poly1305_TAG_FINAL) != rest.empty()) {
            refuse(path, CHANGED);
        }
        done += piece.size() - EXTRA;
    }
    return std::move(plain.text());
}

/// Its text is wiped with it.
class PlainStream final : public std::istringstream {
  public:
    explicit PlainStream(std::string text) : std::istringstream(std::move(text)) {}
    ~PlainStream() override {
        const std::string_view held = rdbuf()->view();
        sodium_memzero(const_cast<char*>(held.data()), held.size());
    }
};

}  // namespace

bool is_xp_format(const std::string& path) {
    const mav_host::FileDescriptor file = mav_host::openRegular(path);
    std::string start;
    return file.isOpen() && mav_host::readAll(file.get(), MAGIC.size(), start) &&
           is_container(start);
}

bool is_container(std::string_view content) {
    return content.starts_with(MAGIC);
}

std::string read(const std::string& path) {
    return read(path, readWhole(path));
}

std::string read(const std::string& path, std::string_view content) {
    checkForm(path, content);
    WipeKey secret;
    if (!deriveKey(secret.key)) {
        refuse(path, "needs a key, and the host has none; set MAV_KEY_FILE");
    }
    checkPrefix(path, content, secret.key);
    return decipher(path, content, secret.key);
}

std::unique_ptr<std::istream> open(const std::string& path) {
    return std::make_unique<PlainStream>(read(path));
}

void write(const std::string& path, const std::string& content) {
    const auto refuseWrite = [&](const std::string& reason) {
        throw HEXUserException("The protected file '" + path + "' cannot be written: " + reason);
    };
    if (containerSize(content.size()) > MAX_FILE) refuseWrite("it would be larger than 1 GiB");
    WipeKey secret;
    if (!deriveKey(secret.key)) refuseWrite("the host has no key; set MAV_KEY_FILE");
    const std::string prefix = makePrefix(secret.key, content.size());
    std::string out = prefix;
    out.reserve(containerSize(content.size()));
    std::array<char, PIECE + EXTRA> piece;
    WipeState cipher;
    State& state = cipher.state;
    crypto_secretstream_xchacha20poly1305_init_push(&state, bytes(piece.data()), secret.key.data());
    out.append(piece.data(), HEADER);
    std::string_view rest = content;
    do {
        const std::string_view part = rest.substr(0, PIECE);
        rest.remove_prefix(part.size());
        unsigned long long size = 0;
        crypto_secretstream_xchacha20poly1305_push(
            &state, bytes(piece.data()), &size, bytes(part.data()), part.size(),
            bytes(prefix.data()), prefix.size(),
            rest.empty() ? crypto_secretstream_xchacha20poly1305_TAG_FINAL : 0);
        out.append(piece.data(), size);
    } while (!rest.empty());
    HUTFileUtils::writeWhole(path, out);
}

}  // namespace isl::iostreams::xp
