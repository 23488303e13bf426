// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <new>

#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/PlatformLoader.h"

namespace cli {
namespace {

constexpr const char* INDEX = "vma.json";

void appendPlatform(TypedMembers& out, const HMAVHardwarePlatform* hardware,
                    const std::string& archive) {
    const auto* const platform = dynamic_cast<const HPLPlatform*>(hardware);
    if (platform == nullptr) return;
    const bool inside = HUTFile::getCanonicalName(platform->getPlatformFile()) ==
                        HUTFile::getCanonicalName(archive);
    if (!inside) return;
    const std::string folder =
        platform->isChildHardwareEmuPlatform() ? HMAVHardwarePlatform::getHwEmuDir() + "/" : "";
    for (const HPLFile* file : platform->getFiles()) {
        out.entries.emplace_back(file->getType(), folder + file->getName());
    }
}

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

bool isBelow(const std::string& member, const std::string& folder) {
    return !folder.empty() && member.size() > folder.size() && member.starts_with(folder) &&
           member[folder.size()] == '/';
}

}  // namespace

const std::string* TypedMembers::find(const std::string& type) const {
    for (const auto& entry : entries) {
        if (entry.first == type) return &entry.second;
    }
    return nullptr;
}

std::string TypedMembers::typesOf(const std::string& member) const {
    std::vector<std::string_view> types;
    for (const auto& [type, name] : entries) {
        if (name != member && !isBelow(member, name)) continue;
        if (std::find(types.begin(), types.end(), type) == types.end()) types.emplace_back(type);
    }
    std::string text;
    for (const std::string_view type : types) text.append(text.empty() ? "" : ",").append(type);
    return text;
}

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

bool holdsPlatform(const mav_host::ZipArchive& archive) {
    const std::string extension = HUTPathUtils::extension(archive.path());
    if (!HMAVHardwarePlatform::isValidPlatformExt(extension)) return false;
    const std::string member = extension.substr(1) + ".json";
    return archive.contains(member) || archive.contains("alt_" + member);
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

TypedMembers typedMembers(const mav_host::ZipArchive& archive) {
    TypedMembers out;
    if (holdsPlatform(archive)) {
        if (const auto platform = loadPlatform(archive.path())) {
            appendPlatform(out, platform->getHardwarePlatform(), archive.path());
            appendPlatform(out, platform->getHardwareEmulationPlatform(), archive.path());
        }
    }
    if (archive.contains(INDEX)) {
        HVMAArchive index(archive.path());
        index.parse();
        for (const auto& [type, name] : index.getFiles().getMap()) {
            out.entries.emplace_back(type, type == "DR_BD" ? "bd" : name);
        }
    }
    return out;
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
        throw Failure(start +
                      withAdvice(error.what(), "Correct the cause and run the command again."));
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

const char* digestText(mav_host::DigestState state) {
    switch (state) {
        case mav_host::DigestState::VALID:
            return "valid";
        case mav_host::DigestState::MISSING:
            return "missing";
        case mav_host::DigestState::MISMATCH:
            return "mismatch";
        case mav_host::DigestState::NO_KEY:
            return "no key";
        case mav_host::DigestState::UNKEYED:
            return "unkeyed";
    }
    return "";
}

}  // namespace cli
