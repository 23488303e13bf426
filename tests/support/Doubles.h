// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "mav_host/ComMsgMgr.h"
#include "mav_host/Host.h"

/// As long as it lives, the tool speaks a language in which "I" is no capital "i".
class OwnLetters final {
  public:
    OwnLetters() : before_(std::locale::global(std::locale(std::locale(), new Letters))) {}
    ~OwnLetters() { std::locale::global(before_); }
    OwnLetters(const OwnLetters&) = delete;
    OwnLetters& operator=(const OwnLetters&) = delete;

  private:
    class Letters final : public std::ctype<char> {
        char do_tolower(char c) const override {
            return c == 'I' ? c : std::ctype<char>::do_tolower(c);
        }
        char do_toupper(char c) const override {
            return c == 'i' ? c : std::ctype<char>::do_toupper(c);
        }
    };

    std::locale before_;
};

/// Collects the reports of a test in place of printing them.
class CapturedMessages final : public ComMsgSink {
  public:
    CapturedMessages() : before_(ComMsgMgr::setSink(this)) {}
    ~CapturedMessages() override { ComMsgMgr::setSink(before_); }
    void send(const ComMsg& message) override { all.push_back(message); }

    /// One line per report: id and arguments, joined with "|".
    std::string text() const {
        std::string lines;
        for (const ComMsg& message : all) {
            lines += message.id;
            for (const std::string& arg : message.args) lines += "|" + arg;
            lines += "\n";
        }
        return lines;
    }
    bool has(const std::string& part) const { return text().find(part) != std::string::npos; }

    HSTVector<ComMsg> all;

  private:
    ComMsgSink* before_;
};

/// Collects the lines that the library prints on its console stream.
class CapturedConsole {
  public:
    CapturedConsole() : before_(mav_host::setConsole(&stream_)) {}
    ~CapturedConsole() { mav_host::setConsole(before_); }
    CapturedConsole(const CapturedConsole&) = delete;
    CapturedConsole& operator=(const CapturedConsole&) = delete;
    std::string text() const { return stream_.str(); }

  private:
    std::ostringstream stream_;
    std::ostream* before_;
};

/// A directory that lives as long as the test.
class TempDir {
  public:
    TempDir() {
        std::string name = std::filesystem::temp_directory_path() / "mav-test-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
        path_ = std::filesystem::canonical(name);
    }
    ~TempDir() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return path_; }
    std::string path(const std::string& name) const { return path_ + "/" + name; }
    /// Writes a file, making directories on the way, and answers its path.
    std::string write(const std::string& name, const std::string& content) const {
        const std::filesystem::path file = path(name);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }
    std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// Names in the directory, sorted, a line each.
    std::string list() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            names.insert(entry.path().filename());
        }
        std::string text;
        for (const std::string& name : names) text += name + "\n";
        return text;
    }

  private:
    std::string path_;
};

/// Sets a variable for the time of a test; no value removes it.
class EnvVar {
  public:
    EnvVar(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
        if (const char* const before = ::getenv(name_.c_str())) before_ = before;
        apply(value);
    }
    ~EnvVar() { apply(before_); }
    EnvVar(const EnvVar&) = delete;
    EnvVar& operator=(const EnvVar&) = delete;

  private:
    void apply(const std::optional<std::string>& value) const {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }
    std::string name_;
    std::optional<std::string> before_;
};

/// Takes the super-user's rights away for the time of a test, so that permissions count.
class Unprivileged {
  public:
    Unprivileged() : root_(::geteuid() == 0) {
        if (root_ && ::seteuid(65534) != 0) throw std::runtime_error("the rights do not go");
    }
    ~Unprivileged() {
        if (root_ && ::seteuid(0) != 0) std::abort();
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

  private:
    bool root_;
};

/// Exception type and whole text in one assertion.
#define EXPECT_THROW_MSG(statement, Type, expected)                       \
    do {                                                                  \
        try {                                                             \
            statement;                                                    \
            ADD_FAILURE() << #statement " threw nothing";                 \
        } catch (const Type& caught) {                                    \
            EXPECT_EQ(std::string(caught.what()), std::string(expected)); \
        }                                                                 \
    } while (false)
