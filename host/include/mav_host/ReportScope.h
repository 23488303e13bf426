// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sstream>
#include <string>

#include "mav_host/ComMsgMgr.h"
#include "mav_host/Export.h"

namespace mav_host {

/// Takes what the library tells on this thread as long as it lives, reports and console lines in
/// their order, in place of the process's sink and console. Scopes nest: the innermost one takes
/// all. Both operations run with the scope outside in force, so telling anew is passing on.
/// Derived classes end their destructor with `close()`. Stays on the thread that made it.
class MAV_API ReportScope {
  public:
    ReportScope(const ReportScope&) = delete;
    ReportScope& operator=(const ReportScope&) = delete;
    virtual ~ReportScope();

    /// The innermost scope of this thread; null when there is none.
    static ReportScope* innermost();
    /// Hands a report to the scope. A scope that throws is ignored.
    void take(const ComMsg& message) noexcept;
    /// The stream that gathers console lines for the scope.
    std::ostream& lines() { return lines_; }

  protected:
    ReportScope();
    virtual void onReport(const ComMsg& message) = 0;
    /// Console text since the last report.
    virtual void onLines(const std::string& text) = 0;
    /// Hands out the lines that wait.
    void flush() noexcept;
    /// `flush()`, and nothing is taken any more.
    void close() noexcept;

  private:
    std::ostringstream lines_;
    ReportScope* outside_;
    bool isOpen_ = true;
};

}  // namespace mav_host
