// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "json/Document.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/Host.h"

/// What a fuzzer calls for every input, and the replay for every file of a corpus.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Formats every report and keeps none; console lines go nowhere. Owns a directory, in memory where
/// the machine has one, that lives as long as the process.
class Surroundings final : public ComMsgSink {
  public:
    Surroundings() {
        const char* const memory = "/dev/shm";
        std::string name =
            (std::filesystem::is_directory(memory) ? std::filesystem::path(memory)
                                                   : std::filesystem::temp_directory_path()) /
            "mav-fuzz-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory for files");
        dir_ = name;
        ComMsgMgr::setSink(this);
        mav_host::setConsole(&console_);
    }
    ~Surroundings() override {
        mav_host::resetHost();
        std::error_code error;
        std::filesystem::remove_all(dir_, error);
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    void send(const ComMsg& message) override { size_ = ComMsgMgr::format(message).size(); }
    const std::string& dir() const { return dir_; }

  private:
    std::string dir_;
    std::ostream console_{nullptr};
    std::size_t size_ = 0;
};

inline Surroundings& surroundings() {
    static Surroundings one;
    return one;
}

inline std::string text(const std::uint8_t* data, std::size_t size) {
    surroundings();
    return {data, data + size};
}

/// An empty directory of that name.
inline std::string freshDir(const std::string& name) {
    std::string path = surroundings().dir() + "/" + name;
    std::filesystem::remove_all(path);
    std::filesystem::create_directories(path);
    return path;
}

/// Writes the input to a file of that name and answers its path.
inline std::string file(const char* name, const std::uint8_t* data, std::size_t size) {
    std::string path = surroundings().dir() + "/" + name;
    std::ofstream(path, std::ios::binary) << text(data, size);
    return path;
}

inline std::string content(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Gives the host the key of protected files.
inline void useKey() {
    class Key final : public mav_host::KeyProvider {
        std::optional<std::string> key() const override { return "a key for fuzzing"; }
    };
    static Key key;
    mav_host::setKeyProvider(&key);
}

/// Ends the process as a fault does when something that must hold does not.
inline void require(bool holds, const std::string& what) {
    if (holds) return;
    std::fprintf(stderr, "fuzz: %s\n", what.c_str());
    std::abort();
}

/// The text is JSON; else what the reader throws ends the process.
inline void requireJson(std::string text) {
    const mav_platform::json::Document document(std::move(text));
}

}  // namespace fuzz
