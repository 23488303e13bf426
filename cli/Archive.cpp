// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <iostream>
#include <map>
#include <new>
#include <numeric>
#include <set>
#include <string_view>

#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HPLPlatform.h"
#include "mav_platform/HVMAArchive.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/TypedMembers.h"

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
    for (const HPLFile* file : platform->getFiles()) {
        out.entries.emplace_back(file->getType(), platform->memberName(file->getName()));
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

/// Orders paths so that what lies in a folder follows the folder at once.
struct PathBefore {
    bool operator()(std::string_view a, std::string_view b) const {
        const auto [atA, atB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
        if (atA == a.end() || atB == b.end()) return atB != b.end();
        return rank(*atA) < rank(*atB);
    }
    static int rank(char c) { return c == '/' ? -1 : static_cast<unsigned char>(c); }
};

bool isAtOrBelow(std::string_view member, std::string_view folder) {
    if (!member.starts_with(folder)) return false;
    return member.size() == folder.size() || (!folder.empty() && member[folder.size()] == '/');
}

/// What one text of types may take, in bytes; whoever made the archive wrote the types.
constexpr std::size_t MAX_TYPES = 256;

/// The types that a path is listed under, each with its first place among the entries.
using Types = std::map<std::string_view, std::size_t>;
using Listed = std::map<std::string_view, Types, PathBefore>;

/// The distinct types of all these paths, in the order of their places.
HSTVector<std::string> distinct(const std::vector<Listed::const_iterator>& paths) {
    std::map<std::size_t, std::string_view> places;
    for (const auto& path : paths) {
        for (const auto& [type, place] : path->second) places.emplace(place, type);
    }
    HSTVector<std::string> types;
    std::size_t taken = 0;
    std::set<std::string_view> seen;
    for (const auto& [place, type] : places) {
        if (!seen.insert(type).second) continue;
        taken += type.size() + 1;
        const bool fits = taken <= MAX_TYPES + 1;
        types.emplace_back(fits ? type : "...");
        if (!fits) break;
    }
    return types;
}

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

const std::string* TypedMembers::find(const std::string& type) const {
    for (const auto& entry : entries) {
        if (entry.first == type) return &entry.second;
    }
    return nullptr;
}

std::vector<HSTVector<std::string>> TypedMembers::typesOf(
    const HSTVector<mav_host::ZipMember>& members) const {
    Listed listed;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        Types& types = listed[entries[i].second];
        if (types.size() <= MAX_TYPES) types.emplace(entries[i].first, i);
    }
    std::vector<std::size_t> order(members.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return PathBefore()(members[a].name, members[b].name);
    });
    std::vector<HSTVector<std::string>> types(members.size());
    std::vector<Listed::const_iterator> around;  // the listed paths that hold the present one
    const auto leave = [&](std::string_view path) {
        while (!around.empty() && !isAtOrBelow(path, around.back()->first)) around.pop_back();
    };
    auto next = listed.cbegin();
    for (const std::size_t index : order) {
        const std::string& name = members[index].name;
        for (; next != listed.cend() && !PathBefore()(name, next->first); ++next) {
            leave(next->first);
            around.push_back(next);
        }
        leave(name);
        types[index] = distinct(around);
    }
    return types;
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
    return mav_platform::holdsPlatform(archive);
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
            out.entries.emplace_back(type, HVMAArchive::placeOf(type, name));
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
