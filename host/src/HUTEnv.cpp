// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HUTEnv.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Printable.h"

namespace fs = std::filesystem;

namespace {

/// The release that this library belongs to.
constexpr unsigned COMPILED_MAJOR = 2026;
constexpr unsigned COMPILED_MINOR = 1;

HUTEnvProvider* theProvider = nullptr;
std::mutex theProductGuard;
std::string theProductName;

/// A directory that this process made, and what tells it from another one of its name.
struct OwnDir {
    std::string path;
    dev_t device = 0;
    ino_t inode = 0;

    bool isThere(struct stat& status) const {
        return ::lstat(path.c_str(), &status) == 0 && status.st_dev == device &&
               status.st_ino == inode && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid();
    }
    bool isPrivate() const {
        struct stat status = {};
        return isThere(status) && (status.st_mode & 07777U) == 0700U;
    }
};

/// Removes the process's temporary directories at exit, but not in a child that inherited them.
struct TmpDir {
    std::vector<OwnDir> made;  ///< the last one is in use
    pid_t owner = 0;
    ~TmpDir() {
        if (owner != ::getpid()) return;
        struct stat status = {};
        for (const OwnDir& dir : made) {
            if (dir.isThere(status)) HUTFileUtils::removeDirs(dir.path);
        }
    }
};

/// The file that this code was loaded from, links followed; empty when the system does not tell.
fs::path ownFile() {
    Dl_info own;
    Dl_info program;
    std::error_code error;
    if (::dladdr(reinterpret_cast<const void*>(&ownFile), &own) == 0) return {};
    // Linked into a program, the name would be argv[0], which need not be a path.
    const bool linkedIn =
        ::dladdr(reinterpret_cast<const void*>(::getauxval(AT_PHDR)), &program) != 0 &&
        program.dli_fbase == own.dli_fbase;
    return fs::canonical(linkedIn ? "/proc/self/exe" : own.dli_fname, error);
}

// Asked when the library is loaded: a relative name no longer holds once the tool changes folders.
const fs::path theLibrary = ownFile();

/// The share directory beside the library that this code is in; empty when that is not known.
std::string shareDir(const fs::path& library) {
    if (library.empty()) return "";
    const fs::path beside = library.parent_path().parent_path() / "share" / "mav";
    // A library directory may have one level more, such as lib/x86_64-linux-gnu.
    const fs::path above = library.parent_path().parent_path().parent_path() / "share" / "mav";
    return !HUTFile::isDir(beside) && HUTFile::isDir(above) ? above : beside;
}

/// "2026.1" into two numbers; a part that is no number is 0.
void splitRelease(std::string_view text, unsigned& major, unsigned& minor) {
    major = minor = 0;
    const char* const end = text.data() + text.size();
    const auto [dot, error] = std::from_chars(text.data(), end, major);
    if (error == std::errc() && dot != end && *dot == '.') std::from_chars(dot + 1, end, minor);
}

class DefaultProvider final : public HUTEnvProvider {
  public:
    const char* getEnv(const std::string& name) const override {
        return ::secure_getenv(name.c_str());
    }

    void getAppRootList(HSTVector<std::string>& out) const override {
        const char* const roots = ::secure_getenv("MAV_APP_ROOT");
        if (roots == nullptr || *roots == '\0') {
            const std::string share = shareDir(theLibrary);
            if (!share.empty()) out.push_back(share);
            return;
        }
        std::string_view rest = roots;
        while (!rest.empty()) {
            const std::string_view root = rest.substr(0, rest.find(':'));
            if (!root.empty()) out.emplace_back(root);
            rest.remove_prefix(std::min(root.size() + 1, rest.size()));
        }
    }

    std::string getTmpDir() const override {
        static std::mutex guard;
        static TmpDir dir;
        const std::lock_guard<std::mutex> hold(guard);
        if (dir.owner != ::getpid()) dir.made.clear();
        dir.owner = ::getpid();
        // A cleaner of old temporary files may have removed it from a tool that runs for days, and
        // somebody else made one of that name.
        if (dir.made.empty() || !dir.made.back().isPrivate()) dir.made.push_back(makeTmpDir());
        return dir.made.back().path;
    }

    unsigned getMajor() const override { return release().first; }
    unsigned getMinor() const override { return release().second; }

  private:
    static OwnDir makeTmpDir() {
        const char* const variable = ::secure_getenv("TMPDIR");
        const std::string parent =
            HUTFile::getCanonicalName(variable != nullptr && *variable != '\0' ? variable : "/tmp");
        OwnDir own;
        own.path = parent + "/mav-XXXXXX";
        struct stat status = {};
        if (::mkdtemp(own.path.data()) == nullptr || ::lstat(own.path.c_str(), &status) != 0) {
            const std::error_code error(errno, std::generic_category());
            throw HEXUserException(
                "HUTEnv::getHDITmpDir() - no temporary directory can be made in '" + parent +
                "': " + error.message() + "; set TMPDIR to a directory that can be written");
        }
        own.device = status.st_dev;
        own.inode = status.st_ino;
        return own;
    }

    static std::pair<unsigned, unsigned> release() {
        std::pair<unsigned, unsigned> result(COMPILED_MAJOR, COMPILED_MINOR);
        const char* const text = ::secure_getenv("MAV_TOOL_RELEASE");
        if (text != nullptr && *text != '\0') splitRelease(text, result.first, result.second);
        return result;
    }
};

HUTEnvProvider& provider() {
    static DefaultProvider standard;
    return theProvider != nullptr ? *theProvider : standard;
}

}  // namespace

HUTEnvProvider::~HUTEnvProvider() = default;

const char* HUTEnv::getEnv(const std::string& name) {
    return provider().getEnv(name);
}

std::string HUTEnv::getHDIAppRoot() {
    HSTVector<std::string> roots;
    getRDIAppRootList(roots);
    return roots.empty() ? "" : roots.front();
}

void HUTEnv::getRDIAppRootList(HSTVector<std::string>& out) {
    provider().getAppRootList(out);
}

std::string HUTEnv::getHDITmpDir() {
    return provider().getTmpDir();
}

unsigned HUTEnv::getMajor() {
    return provider().getMajor();
}

unsigned HUTEnv::getMinor() {
    return provider().getMinor();
}

std::string HUTEnv::getProductName() {
    const std::lock_guard<std::mutex> hold(theProductGuard);
    return theProductName;
}

void HUTEnv::setProductName(const std::string& name) {
    const std::lock_guard<std::mutex> hold(theProductGuard);
    theProductName = name;
}

bool HUTEnv::isRelease(std::string_view text) {
    const auto digits = [](std::string_view part) {
        return !part.empty() && part.size() < 7 &&
               part.find_first_not_of("0123456789") == std::string_view::npos;
    };
    const std::size_t dot = text.find('.');
    return dot != std::string_view::npos && digits(text.substr(0, dot)) &&
           digits(text.substr(dot + 1));
}

std::string HUTEnv::getReleaseFault() {
    const char* const text = getEnv("MAV_TOOL_RELEASE");
    if (theProvider != nullptr || text == nullptr || *text == '\0' || isRelease(text)) return "";
    return "the variable MAV_TOOL_RELEASE is '" + mav_host::printable(text) +
           "', which is no release; set it to a year and a number, such as 2026.1, or unset it.";
}

void HUTEnv::pinTimeZone() {
    ::setenv("TZ", ":/etc/localtime", 0);
}

HUTEnvProvider* HUTEnv::setProvider(HUTEnvProvider* newProvider) {
    HUTEnvProvider* const before = theProvider;
    theProvider = newProvider;
    setProductName("");
    return before;
}
