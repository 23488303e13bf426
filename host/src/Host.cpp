// SPDX-License-Identifier: Apache-2.0
#include "mav_host/Host.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include "mav_host/ComMsgMgr.h"
#include "mav_host/HBOBoardCDataManager.h"
#include "mav_host/HEXError.h"
#include "mav_host/HHSMHwManager.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"

namespace mav_host {
namespace {

std::ostream* theConsole = nullptr;
KeyProvider* theKeyProvider = nullptr;

/// The content of the file that MAV_KEY_FILE names.
std::optional<std::string> keyFromFile() {
    constexpr std::size_t MAX_KEY_SIZE = 1U << 16U;
    const char* const path = HUTEnv::getEnv("MAV_KEY_FILE");
    if (path == nullptr || *path == '\0') return std::nullopt;
    // Asked before opening, which would wait for a writer of a named pipe.
    std::ifstream file;
    if (HUTFile::isFile(path)) file.open(path, std::ios::binary);
    if (!file.is_open()) {
        throw HEXUserException(std::string("The key file '") + path +
                               "' that MAV_KEY_FILE names cannot be read; correct the variable or "
                               "the file's permissions");
    }
    std::string key(MAX_KEY_SIZE + 1, '\0');
    file.read(key.data(), static_cast<std::streamsize>(key.size()));
    key.resize(static_cast<std::size_t>(file.gcount()));
    if (file.bad()) {
        throw HEXUserException(std::string("The key file '") + path +
                               "' cannot be read to its end; copy it afresh");
    }
    if (key.empty() || key.size() > MAX_KEY_SIZE) {
        throw HEXUserException(std::string("The key file '") + path +
                               "' is empty or larger than 64 KiB; give a file that holds a key");
    }
    return key;
}

}  // namespace

std::ostream& console() {
    return theConsole != nullptr ? *theConsole : std::cout;
}

std::ostream* setConsole(std::ostream* stream) {
    std::ostream* const before = theConsole;
    theConsole = stream;
    return before;
}

KeyProvider::~KeyProvider() = default;

std::optional<std::string> key() {
    return theKeyProvider != nullptr ? theKeyProvider->key() : keyFromFile();
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
