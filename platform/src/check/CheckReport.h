// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json/Document.h"
#include "mav_platform/PlatformCheck.h"

namespace mav_platform::check {

struct Place {
    std::string file;
    std::size_t line = 0;
    std::size_t column = 0;
};

/// Collects findings; the severity is that of the rule. It keeps so many of one rule that a report
/// can be read, and counts the rest: none goes unsaid because of others.
class Report {
  public:
    static constexpr std::size_t LIMIT_IN_FILE = 100;  ///< of one rule in one file
    static constexpr std::size_t LIMIT = 1000;         ///< of one rule in all files

    /// Throws HEXAlgException for a rule that is not in the table.
    void add(const char* rule, const Place& place, std::string text);
    bool hasErrors() const { return errors_ > 0; }
    /// Files in order of their first finding, and by line inside each; what is not shown is told
    /// at the end of the file.
    HSTVector<CheckFinding> take();

  private:
    struct Tally {
        std::map<std::string, std::size_t> kept;  ///< by file
        std::map<std::string, std::size_t> more;  ///< by file
        std::size_t all = 0;                      ///< that were kept
        std::string last;                         ///< the file that speaks for all after the limit
    };

    void addMore();

    HSTVector<CheckFinding> findings_;
    std::map<std::string, Tally> tallies_;  ///< by rule
    std::size_t errors_ = 0;
};

/// A JSON document with the text's lines, which tell where its nodes stand.
class LocatedJson {
  public:
    /// Nothing after a finding "syntax" when the text is no JSON document.
    static std::optional<LocatedJson> parse(std::string text, const std::string& file,
                                            Report& report);

    json::Node root() const { return document_.root(); }
    const std::string& file() const { return file_; }
    Place place(const json::Node& node) const;
    /// The place of the item's first such key; of the item when there is none.
    Place place(const json::Node& item, std::string_view key) const;

  private:
    LocatedJson(std::string file, std::vector<std::size_t> lines, json::Document document)
        : file_(std::move(file)), lines_(std::move(lines)), document_(std::move(document)) {}

    std::string file_;
    std::vector<std::size_t> lines_;  ///< where each begins
    json::Document document_;
};

/// The document against its schema: findings "schema", "unknown-item", "file-type" and "duplicate".
/// `name` is that of the schema file without ".schema.json".
void checkSchema(const LocatedJson& json, const std::string& name, Report& report);

/// What a value is called in a sentence: in quotes, cut when long, control characters as "?".
std::string shown(std::string_view text, std::size_t longest = 60);

}  // namespace mav_platform::check
