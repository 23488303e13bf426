// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "mav_host/ReportScope.h"
#include "mav_platform/JSONValue.h"

namespace cli {

/// Keeps the library's reports for an answer in JSON and passes them on. One for the whole run;
/// of a flood the first hundred are kept.
class KeptReports final : public mav_host::ReportScope {
  public:
    KeptReports();
    ~KeptReports() override;

    /// The list of what was reported since the last call: "id", "severity" and "text" of each.
    /// Empty when nobody keeps reports.
    static mav_platform::JSONValue take();

  private:
    void onReport(const ComMsg& message) override;
    void onLines(const std::string& text) override;

    std::vector<ComMsg> messages_;
};

/// Adds "message", "hint" (null without one) and "reports" of a failure to an object. The hint is
/// what follows the first sentence.
void addError(mav_platform::JSONValue& object, const std::string& sentences);

/// What a failed command answers with.
std::string errorAnswer(int code, const std::string& sentences);

}  // namespace cli
