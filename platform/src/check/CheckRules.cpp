// SPDX-License-Identifier: Apache-2.0
#include "check/CheckReport.h"
#include "mav_host/HEXError.h"

namespace mav_platform {

const HSTVector<CheckRule>& PlatformCheck::rules() {
    using enum CheckFinding::Severity;
    static const HSTVector<CheckRule> RULES = {
        {"array-engine", ERROR, "The array-engine project holds readable partitions"},
        {"array-geometry", ERROR, "Columns, rows and addresses of the array engine fit each other"},
        {"clock-reference", ERROR, "A bus interface refers to a clock of the platform"},
        {"contradiction", WARNING, "What is told in several places is the same everywhere"},
        {"dangling-name", WARNING, "Names lead to something that the platform has"},
        {"default-clock", WARNING, "One of the clocks is the default one"},
        {"default-partition", ERROR, "The default partition is one of the partitions"},
        {"digest", ERROR, "The archive carries a digest that its members match"},
        {"digest-key", NOTE,
         "The key of the archive's digest is at hand, so that it can be checked"},
        {"duplicate", ERROR, "Names and ids that tell things apart occur once"},
        {"exception", WARNING, "Exceptions from rules are needed and within their time"},
        {"extension", ERROR, "A file's name ends as what the file is"},
        {"file-type", WARNING, "Files are listed under known types"},
        {"hbm-preferred", WARNING, "All assignable HBM banks are preferred, or none"},
        {"library-report", WARNING,
         "The library has nothing to report while it loads the platform"},
        {"load", ERROR, "The platform loads"},
        {"member-name", ERROR, "Names of members are relative paths without \"..\""},
        {"memory-overlap", ERROR, "Address ranges of memories of one type lie apart"},
        {"metadata", ERROR, "A hardware archive holds its metadata member"},
        {"missing-file", ERROR, "The files that a description names exist"},
        {"missing-member", ERROR, "The files that the metadata lists are in the archive"},
        {"release", WARNING, "The support policy takes the platform with this tool release"},
        {"reset-reference", ERROR, "A bus interface refers to a reset of the platform"},
        {"schema", ERROR, "Items have the form that their format asks for"},
        {"software-default", WARNING, "Defaults of a software platform name what is there"},
        {"software-empty", WARNING, "A software platform has configurations with processor groups"},
        {"syntax", ERROR, "Documents are well-formed"},
        {"unknown-item", WARNING, "Items are part of their format"},
        {"unlisted-member", NOTE, "The files in the archive are listed"},
        {"unreadable", ERROR, "Files can be read"},
        {"value-change", WARNING, "Values mean the same when they are read"},
        {"vocabulary", WARNING, "Words are those that readers know"},
    };
    return RULES;
}

const char* PlatformCheck::severityText(CheckFinding::Severity severity) {
    static constexpr const char* TEXTS[] = {"error", "warning", "note"};
    return TEXTS[severity];
}

std::optional<CheckFinding::Severity> PlatformCheck::severityOf(const std::string& text) {
    if (text == "error") return CheckFinding::ERROR;
    if (text == "warning") return CheckFinding::WARNING;
    if (text == "note") return CheckFinding::NOTE;
    if (text == "off") return std::nullopt;
    throw HEXUserException("'" + text + "' is no severity; use off, note, warning or error");
}

}  // namespace mav_platform
