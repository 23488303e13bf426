// SPDX-License-Identifier: Apache-2.0
#include "mav_host/ReportScope.h"

#include <utility>

namespace mav_host {
namespace {

thread_local ReportScope* theInnermost = nullptr;

/// Puts the scope outside in force while one of its inside works.
class Outside {
  public:
    explicit Outside(ReportScope* outside) : inside_(std::exchange(theInnermost, outside)) {}
    ~Outside() { theInnermost = inside_; }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

  private:
    ReportScope* inside_;
};

}  // namespace

ReportScope::ReportScope() : outside_(std::exchange(theInnermost, this)) {}

ReportScope::~ReportScope() {
    if (isOpen_) theInnermost = outside_;
}

ReportScope* ReportScope::innermost() {
    return theInnermost;
}

void ReportScope::take(const ComMsg& message) noexcept {
    flush();
    const Outside outside(outside_);
    try {
        onReport(message);
    } catch (...) {
        // A report that cannot be delivered must not end what is being reported on.
    }
}

void ReportScope::flush() noexcept {
    const Outside outside(outside_);
    try {
        const std::string text = std::move(lines_).str();
        lines_.str({});
        if (!text.empty()) onLines(text);
    } catch (...) {
        // Lines that cannot be passed on must not end what they tell of.
    }
}

void ReportScope::close() noexcept {
    if (!isOpen_) return;
    flush();
    isOpen_ = false;
    theInnermost = outside_;
}

}  // namespace mav_host
