// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <iostream>
#include <new>

#include "Command.h"
#include "Output.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/PlatformLoader.h"

namespace cli {
namespace {

volatile std::sig_atomic_t caught = 0;

/// Notes the signals that end a command as long as it lives. Ignored ones stay ignored.
class SignalsHeld {
  public:
    SignalsHeld() {
        caught = 0;
        struct sigaction note {};
        note.sa_handler = [](int signal) { caught = signal; };
        for (std::size_t i = 0; i < SIGNALS.size(); ++i) {
            ::sigaction(SIGNALS[i], nullptr, &before_[i]);
            if (before_[i].sa_handler != SIG_IGN) ::sigaction(SIGNALS[i], &note, nullptr);
        }
    }
    ~SignalsHeld() {
        for (std::size_t i = 0; i < SIGNALS.size(); ++i) {
            ::sigaction(SIGNALS[i], &before_[i], nullptr);
        }
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    static constexpr std::array SIGNALS{SIGINT, SIGTERM, SIGHUP};
    std::array<struct sigaction, SIGNALS.size()> before_{};
};

/// The exception's text with those of the ones inside it.
std::string withReasons(const std::exception& error) {
    std::string text = error.what();
    try {
        std::rethrow_if_nested(error);
    } catch (const std::exception& inside) {
        text += ": " + withReasons(inside);
    }
    return text;
}

}  // namespace

std::string shown(const std::string& path) {
    return std::string("'").append(printable(path)).append("'");
}

mav_host::ZipArchive openArchive(const std::string& path) {
    try {
        return mav_host::ZipArchive(path);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(withAdvice(error.what(), "Check the path of ARCHIVE."));
    }
}

std::shared_ptr<HMAVPlatform> loadPlatform(const std::string& path) {
    try {
        mav_platform::PlatformLoader loader(path, mav_platform::HW_METADATA_AUTO);
        return loader.load();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        complain(clause(error.what()) + ".");
        return nullptr;
    }
}

void guarded(const std::string& action, const std::string& path,
             const std::function<void()>& work) {
    const std::string start = "cannot " + action + " " + shown(path) + ": ";
    try {
        work();
    } catch (const UsageError&) {
        throw;
    } catch (const Failure& error) {
        throw Failure(start + error.what());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(
            start + withAdvice(withReasons(error), "Correct the cause and run the command again."));
    }
}

void endingCleanly(const std::function<void()>& work) {
    const SignalsHeld held;
    try {
        work();
    } catch (...) {
        if (caught == 0) throw;
        throw Interrupted{caught};
    }
}

ProgressLine::ProgressLine() : visible_(::isatty(STDERR_FILENO) == 1) {
    HUTZip::setProgress(this);
}

ProgressLine::~ProgressLine() {
    HUTZip::setProgress(nullptr);
    clear();
}

void ProgressLine::advance(const std::string& what, double done) {
    if (!visible_) return;
    const int percent = static_cast<int>(done * 100);
    if (percent == percent_ && what == what_) return;
    if (what != what_) clear();
    percent_ = percent;
    what_ = what;
    std::cerr << "\r\033[K" << percent << " %  " << printable(what) << std::flush;
}

bool ProgressLine::cancelled() {
    return caught != 0;
}

void ProgressLine::clear() {
    if (percent_ >= 0) std::cerr << "\r\033[K" << std::flush;
    percent_ = -1;
}

}  // namespace cli
