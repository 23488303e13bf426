// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "check/CheckReport.h"
#include "mav_platform/PlatformCheck.h"
#include "repository/IgnoreRules.h"

namespace mav_platform::check {

/// How seriously the findings of a rule in a file are told: as the rule's table says, as the levels
/// of the options say, and last as the file of exceptions says that is in force.
class Policy {
  public:
    using Level = std::optional<CheckFinding::Severity>;

    Policy() = default;
    /// Throws HEXUserException for a level of an unknown rule.
    explicit Policy(const CheckOptions& options);

    /// Takes the named file of exceptions, else the one beside the platform, in force; what is
    /// wrong with it is added to the report once. Throws HEXUserException when the named one cannot
    /// be read.
    void enter(const std::string& platform, Report& report);
    /// A file is looked at: exceptions for it can be told to be needless.
    void look(const std::string& file);
    /// Nothing when the finding is not told.
    Level level(const CheckRule& rule, const std::string& file);
    /// A finding "exception" for each exception that is over its date, and for each that matches
    /// nothing: of those files of exceptions whose platforms were all looked at, and else of those
    /// exceptions whose files were.
    void judge(Report& report, bool all) const;

  private:
    struct Exception {
        std::string rule;
        IgnoreRules files;  ///< empty: all
        Level level;
        Place place;
        std::string until;
        bool isOver = false;
        bool isUsed = false;
        bool isSeen = false;  ///< a file was looked at that it speaks of
    };
    struct Exceptions {
        std::string folder;  ///< absolute
        std::vector<Exception> list;
    };

    Exceptions read(const std::string& path, Report& report) const;
    static void readItem(const LocatedJson& json, const json::Node& item, Exceptions& exceptions,
                         Report& report);
    static bool matches(const Exception& exception, const std::string& relative);
    const std::string& relative(const std::string& file);

    std::map<std::string, Level> levels_;
    std::string named_;
    std::map<std::string, Exceptions> files_;  ///< by path
    Exceptions* present_ = nullptr;            ///< those in force
    std::string lastFile_, lastRelative_;
};

}  // namespace mav_platform::check
