// SPDX-License-Identifier: Apache-2.0
#include "mav_host/Host.h"

#include <sodium.h>
#include <sys/stat.h>

#include <mutex>
#include <utility>

#include "FileDescriptor.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HBOBoardCDataManager.h"
#include "mav_host/HEXError.h"
#include "mav_host/HHSMHwManager.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Messages.h"
#include "mav_host/Printable.h"
#include "mav_host/ReportScope.h"

namespace mav_host {
namespace {

std::ostream* theConsole = nullptr;
KeyProvider* theKeyProvider = nullptr;

constexpr std::size_t MIN_KEY_SIZE = 16;
constexpr std::size_t MAX_KEY_SIZE = 1U << 16U;

[[noreturn]] void refuseKeyFile(const std::string& path, const std::string& reason) {
    throw HEXUserException("The key file '" + path + "' " + reason);
}

/// Once for a file, although its key is read for each piece of work.
void warnOfReaders(const std::string& path) {
    static std::mutex guard;
    static std::string last;
    {
        const std::lock_guard<std::mutex> hold(guard);
        if (std::exchange(last, path) == path) return;
    }
    report(messages::KEY_FILE_OPEN_TO_OTHERS, path);
}

/// The content of the file that MAV_KEY_FILE names.
std::optional<std::string> keyFromFile() {
    const char* const path = HUTEnv::getEnv("MAV_KEY_FILE");
    if (path == nullptr || *path == '\0') return std::nullopt;
    const FileDescriptor file = openRegular(path);
    if (!file.isOpen()) {
        refuseKeyFile(path,
                      "that MAV_KEY_FILE names cannot be read; correct the variable or the file's "
                      "permissions");
    }
    SecretText key;
    if (!readAll(file.get(), MAX_KEY_SIZE, key.text())) {
        refuseKeyFile(path, "cannot be read to its end; copy it afresh");
    }
    if (key.size() < MIN_KEY_SIZE || key.size() > MAX_KEY_SIZE) {
        refuseKeyFile(path,
                      "is shorter than 16 bytes or larger than 64 KiB; give a file that holds a "
                      "key");
    }
    struct stat status = {};
    const bool known = ::fstat(file.get(), &status) == 0;
    if (known && (status.st_mode & (S_IRGRP | S_IROTH)) != 0) warnOfReaders(path);
    return std::move(key.text());
}

}  // namespace

std::ostream& console() {
    if (ReportScope* const scope = ReportScope::innermost()) return scope->lines();
    return theConsole != nullptr ? *theConsole : shownOutput();
}

std::ostream* setConsole(std::ostream* stream) {
    std::ostream* const before = theConsole;
    theConsole = stream;
    return before;
}

void wipe(std::string& secret) {
    sodium_memzero(secret.data(), secret.capacity());
    secret.clear();
}

KeyProvider::~KeyProvider() = default;

std::optional<std::string> key() {
    if (theKeyProvider == nullptr) return keyFromFile();
    std::optional<std::string> given = theKeyProvider->key();
    if (given && given->size() < MIN_KEY_SIZE) {
        wipe(*given);
        throw HEXUserException(
            "The key that the host gives is shorter than 16 bytes; give a longer one");
    }
    return given;
}

KeyProvider* setKeyProvider(KeyProvider* provider) {
    KeyProvider* const before = theKeyProvider;
    theKeyProvider = provider;
    return before;
}

void resetHost() {
    setConsole(nullptr);
    setKeyProvider(nullptr);
    ComMsgMgr::setSink(nullptr);
    HUTEnv::setProvider(nullptr);
    HBOBoardCDataManager::setFactory(nullptr);
    HHSMHwManager::set(nullptr);
    HUTZip::setProgress(nullptr);
    HUTDirWalk::setProgress(nullptr);
}

}  // namespace mav_host
