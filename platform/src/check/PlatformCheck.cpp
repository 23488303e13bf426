// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/PlatformCheck.h"

#include <algorithm>
#include <fstream>

#include "check/CheckLoad.h"
#include "check/CheckPolicy.h"
#include "check/CheckSource.h"
#include "check/CheckWalk.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTDirWalk.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Letters.h"

namespace mav_platform {
namespace {

using namespace check;

/// The paths of one call, with the files that were looked at for any of them.
class Session {
  public:
    Session(const CheckOptions& options, const PlatformCheck::OnFindings& onFindings)
        : options_(options), onFindings_(onFindings), policy_(options) {}

    void path(const std::string& path) {
        if (HUTFile::isDir(path)) {
            folder(tidied(path));
        } else {
            platform(path.empty() ? path : tidied(path));
        }
    }
    /// What is to be said when all is looked at; answers whether anything could be judged.
    bool end() {
        Report report(&policy_);
        policy_.judge(report, isWhole_);
        handOut(report);
        return isJudged_;
    }

  private:
    void folder(const std::string& path) {
        HSTVector<std::string> files;
        Report report(&policy_);
        try {
            files = platformsBelow(path);
            if (files.empty()) {
                report.add("unreadable", {path},
                           "no platform description, archive or software platform is below this "
                           "directory");
            }
        } catch (const HEXUserException& error) {
            report.add("unreadable", {path}, error.what());
        }
        handOut(report);
        isWhole_ = true;
        for (const std::string& file : files) platform(file);
    }

    /// Descriptions first, for they say what belongs together.
    static HSTVector<std::string> platformsBelow(const std::string& path) {
        HSTVector<std::string> files;
        HUTDirWalk::walk(path, {}, [&](const HUTDirWalk::Entry& entry) {
            const std::string extension = mav_host::lowerCase(HUTPathUtils::extension(entry.path));
            const auto known = {".qpfm", ".pka", ".dsa", ".spfm"};
            if (!entry.isDir && std::find(known.begin(), known.end(), extension) != known.end()) {
                files.push_back(tidied(entry.path));
            }
            return true;
        });
        std::stable_partition(files.begin(), files.end(), [](const std::string& file) {
            return HUTPathUtils::extension(file) == ".qpfm";
        });
        return files;
    }

    void platform(const std::string& path) {
        if (seen_.count(HUTFile::getCanonicalName(path)) > 0) return;
        Report report(&policy_);
        policy_.enter(path, report);
        Walk walk(seen_, options_.onFile, policy_, report);
        checkPlatform(path, walk, report);
        isJudged_ = isJudged_ || (HUTFile::isFile(path) && std::ifstream(path).good());
        handOut(report);
    }

    void handOut(Report& report) const {
        HSTVector<CheckFinding> findings = report.take();
        std::erase_if(findings, [&](const CheckFinding& finding) {
            return finding.severity > options_.least;
        });
        if (options_.sources) fillSources(findings);
        onFindings_(findings);
    }

    const CheckOptions& options_;
    const PlatformCheck::OnFindings& onFindings_;
    Policy policy_;
    Walk::Seen seen_;
    bool isWhole_ = false;  ///< a directory was looked at as a whole
    bool isJudged_ = false;
};

}  // namespace

HSTVector<CheckFinding> PlatformCheck::run(const std::string& path, const OnFile& onFile) {
    CheckOptions options;
    options.onFile = onFile;
    HSTVector<CheckFinding> all;
    run({path}, options, [&](const HSTVector<CheckFinding>& findings) {
        all.insert(all.end(), findings.begin(), findings.end());
    });
    return all;
}

bool PlatformCheck::run(const HSTVector<std::string>& paths, const CheckOptions& options,
                        const OnFindings& onFindings) {
    Session session(options, onFindings);
    for (const std::string& path : paths) session.path(path);
    return session.end();
}

}  // namespace mav_platform
