// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "check/CheckReport.h"
#include "mav_host/xml/Binding.h"

namespace mav_platform::check {

/// "syntax" for a document that is not well-formed, "schema" for one that does not bind.
void reportBinding(const mav_host::xml::BindingError& error, const std::string& file,
                   Report& report);
/// "unknown-item" for each, and "schema" for each fault.
void reportFindings(const mav_host::xml::Findings& findings, const std::string& file,
                    Report& report);

/// The document, with each fault reported and what it concerns left out; nothing when it is not
/// well-formed or is of another kind. `whole` tells that there was no fault.
template <class T>
std::optional<T> bindDocument(const mav_host::xml::Format<T>& format, std::string_view text,
                              const std::string& file, Report& report, bool* whole = nullptr) {
    mav_host::xml::Findings findings;
    findings.keepFaults = true;
    std::optional<T> document;
    try {
        document = format.parseText(text, &findings);
    } catch (const mav_host::xml::BindingError& error) {
        reportBinding(error, file, report);
    }
    reportFindings(findings, file, report);
    if (whole != nullptr) *whole = document && findings.faults.empty();
    return document;
}

}  // namespace mav_platform::check
