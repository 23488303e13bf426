// SPDX-License-Identifier: Apache-2.0
#include "check/CheckXml.h"

namespace mav_platform::check {

namespace xml = mav_host::xml;

void reportBinding(const xml::BindingError& error, const std::string& file, Report& report) {
    const bool isForm = error.kind() == xml::BindingError::Kind::Format;
    report.add(isForm ? "schema" : "syntax", {file, error.line(), error.column()}, error.what());
}

void reportFindings(const xml::Findings& findings, const std::string& file, Report& report) {
    for (const xml::Fault& fault : findings.faults) {
        report.add("schema", {file, fault.line, fault.column}, fault.text);
    }
    report.addMore("schema", file, findings.moreFaults);
    for (const xml::Finding& finding : findings.list) {
        const bool isElement = finding.kind == xml::Finding::Kind::Element;
        report.add("unknown-item", {file, finding.line, finding.column},
                   std::string(isElement ? "element " : "attribute ") + shown(finding.name) +
                       " of " + shown(finding.parent) +
                       " is not part of the format; loading ignores it" + meant(finding.meant));
    }
    report.addMore("unknown-item", file, findings.more);
}

}  // namespace mav_platform::check
