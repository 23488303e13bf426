// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "capi/Progress.h"
#include "mav_platform/PlatformCheck.h"

using namespace capi;
using mav_platform::CheckFinding;
using mav_platform::PlatformCheck;

namespace {

int severityOf(CheckFinding::Severity severity) {
    if (severity == CheckFinding::ERROR) return HMAV_SEVERITY_ERROR;
    return severity == CheckFinding::WARNING ? HMAV_SEVERITY_WARNING : HMAV_SEVERITY_NOTE;
}

hmav_finding viewOf(const CheckFinding& finding) {
    return {
        sizeof(hmav_finding),         finding.file.c_str(), finding.line,         finding.column,
        severityOf(finding.severity), finding.rule.c_str(), finding.text.c_str(), finding.more};
}

}  // namespace

int hmav_validate(const hmav_session* session, const char* path, hmav_finding_callback on_finding,
                  void* user, const hmav_progress_options* progress, std::size_t* errors,
                  hmav_error** error) noexcept {
    if (errors != nullptr) *errors = 0;
    return call(listenerOf(session), error, HMAV_NOT_LOADABLE, [&] {
        refuseNull(path, "path");
        const hmav_progress_options wanted = optionsOf(progress);
        withProgress(wanted.on_progress, wanted.user, [&](Progress& told) {
            const auto onFile = [&](const std::string& file) { told.step(file, -1); };
            for (const CheckFinding& finding : PlatformCheck::run(path, onFile)) {
                if (errors != nullptr && finding.severity == CheckFinding::ERROR)
                    *errors += std::max<std::size_t>(finding.more, 1);
                const hmav_finding view = viewOf(finding);
                if (on_finding == nullptr || on_finding(&view, user) == 0) continue;
                throw Failure{HMAV_STOPPED, "The caller stopped the work", "Start it anew."};
            }
        });
    });
}
