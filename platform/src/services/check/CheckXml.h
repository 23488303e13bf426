// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "mav_host/xml/Binding.h"
#include "services/check/CheckReport.h"

namespace mav_platform::check {

/// "syntax" for a document that is not well-formed, "schema" for one that does not bind.
void reportBinding(const mav_host::xml::BindingError& error, const std::string& file,
                   Report& report);
/// "unknown-item" for each.
void reportFindings(const mav_host::xml::Findings& findings, const std::string& file,
                    Report& report);

/// The document; nothing after a report when it does not bind.
template <class T>
std::optional<T> bindDocument(const mav_host::xml::Format<T>& format, std::string_view text,
                              const std::string& file, Report& report) {
    mav_host::xml::Findings findings;
    std::optional<T> document;
    try {
        document = format.parseText(text, &findings);
    } catch (const mav_host::xml::BindingError& error) {
        reportBinding(error, file, report);
    }
    reportFindings(findings, file, report);
    return document;
}

}  // namespace mav_platform::check
