// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xp.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"

namespace isl::iostreams::xp {
namespace {

/// The file: magic, version byte, stream header, then pieces of at most PIECE plain bytes, the last
/// one tagged final. Everything before the pieces is authenticated with the first piece.
constexpr std::string_view MAGIC = "MAVXP\r\n\x1a";
constexpr char VERSION = 1;
constexpr std::size_t PREFIX = MAGIC.size() + 1;
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

std::string prefix() {
    return std::string(MAGIC) + VERSION;
}

/// The cipher's key from the host's, whatever its length. False when the host has none.
bool deriveKey(Key& key) {
    if (sodium_init() < 0) return false;
    const std::optional<std::string> secret = mav_host::key();
    if (!secret) return false;
    constexpr std::string_view CONTEXT = "mav protected container";
    crypto_generichash_state state;
    crypto_generichash_init(&state, bytes(CONTEXT.data()), CONTEXT.size(), key.size());
    crypto_generichash_update(&state, bytes(secret->data()), secret->size());
    crypto_generichash_final(&state, key.data(), key.size());
    return true;
}

std::string readWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!HUTFile::isFile(path) || !file) refuse(path, "cannot be read; check path and permissions");
    const auto size = static_cast<std::size_t>(file.tellg());
    if (size > MAX_FILE) refuse(path, "is larger than 1 GiB");
    std::string content(size, '\0');
    file.seekg(0);
    file.read(content.data(), static_cast<std::streamsize>(size));
    if (!file) refuse(path, "cannot be read to its end");
    return content;
}

/// Checks what stands before the stream and answers the stream.
std::string_view streamOf(const std::string& path, std::string_view content) {
    if (content.substr(0, MAGIC.size()) != MAGIC) refuse(path, "is not in the protected format");
    if (content.size() < PREFIX + HEADER + EXTRA) refuse(path, "is cut off; copy it afresh");
    if (content[MAGIC.size()] != VERSION) {
        refuse(path, "is of another version of the protected format; use a newer release");
    }
    return content.substr(PREFIX);
}

}  // namespace

bool is_xp_format(const std::string& path) {
    if (!HUTFile::isFile(path)) return false;
    std::ifstream file(path, std::ios::binary);
    std::array<char, MAGIC.size()> start{};
    file.read(start.data(), start.size());
    return file && std::string_view(start.data(), start.size()) == MAGIC;
}

std::string read(const std::string& path) {
    const std::string content = readWhole(path);
    std::string_view rest = streamOf(path, content);
    Key key;
    if (!deriveKey(key)) refuse(path, "needs a key, and the host has none; set MAV_KEY_FILE");
    crypto_secretstream_xchacha20poly1305_state state;
    crypto_secretstream_xchacha20poly1305_init_pull(&state, bytes(rest.data()), key.data());
    rest.remove_prefix(HEADER);
    const std::string associated = prefix();
    std::string plain;
    std::array<char, PIECE> piece;
    unsigned char tag = 0;
    while (tag != crypto_secretstream_xchacha20poly1305_TAG_FINAL) {
        if (rest.empty()) refuse(path, "is cut off; copy it afresh");
        const std::size_t size = std::min(rest.size(), PIECE + EXTRA);
        unsigned long long got = 0;
        if (size < EXTRA || crypto_secretstream_xchacha20poly1305_pull(
                                &state, bytes(piece.data()), &got, &tag, bytes(rest.data()), size,
                                bytes(associated.data()), associated.size()) != 0) {
            refuse(path, "was changed, is cut off, or was made with another key");
        }
        plain.append(piece.data(), got);
        rest.remove_prefix(size);
    }
    if (!rest.empty()) refuse(path, "has bytes behind its end; copy it afresh");
    return plain;
}

std::unique_ptr<std::istream> open(const std::string& path) {
    return std::make_unique<std::istringstream>(read(path));
}

void write(const std::string& path, const std::string& content) {
    Key key;
    if (!deriveKey(key)) {
        throw HEXUserException("The protected file '" + path +
                               "' cannot be written: the host has no key; set MAV_KEY_FILE");
    }
    const std::string associated = prefix();
    std::string out = associated;
    std::array<char, PIECE + EXTRA> piece;
    crypto_secretstream_xchacha20poly1305_state state;
    crypto_secretstream_xchacha20poly1305_init_push(&state, bytes(piece.data()), key.data());
    out.append(piece.data(), HEADER);
    std::string_view rest = content;
    bool last = false;
    while (!last) {
        const std::string_view part = rest.substr(0, PIECE);
        rest.remove_prefix(part.size());
        last = rest.empty();
        unsigned long long size = 0;
        crypto_secretstream_xchacha20poly1305_push(
            &state, bytes(piece.data()), &size, bytes(part.data()), part.size(),
            bytes(associated.data()), associated.size(),
            last ? crypto_secretstream_xchacha20poly1305_TAG_FINAL : 0);
        out.append(piece.data(), size);
    }
    HUTFileUtils::writeWhole(path, out);
}

}  // namespace isl::iostreams::xp
