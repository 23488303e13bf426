// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <set>
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

class Policy;

/// Collects findings; the severity is that of the rule unless a policy knows better. It keeps so
/// many of one rule that a report can be read, and counts the rest: none goes unsaid because of
/// others.
class Report {
  public:
    static constexpr std::size_t LIMIT_IN_FILE = 100;  ///< of one rule in one file
    static constexpr std::size_t LIMIT = 1000;         ///< of one rule in all files

    /// The policy is not owned.
    explicit Report(Policy* policy = nullptr) : policy_(policy) {}

    /// Throws HEXAlgException for a rule that is not in the table.
    void add(const char* rule, const Place& place, std::string text);
    /// So many further findings of the rule in the file, which nobody wrote down.
    void addMore(const char* rule, const std::string& file, std::size_t count);
    /// Whether a finding of the rule was added.
    bool has(const std::string& rule) const { return tallies_.count(rule) > 0; }
    /// Whether a further finding of the rule in the file is only counted.
    bool isFull(const std::string& rule, const std::string& file) const;
    bool hasErrors() const { return errors_ > 0; }
    /// What is told of a file behind this path and a "/" is about its members.
    void archive(const std::string& path) { archives_.insert(path); }
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

    using Level = std::optional<CheckFinding::Severity>;

    static const CheckRule& known(const std::string& rule);
    Level level(const CheckRule& rule, const std::string& file);
    void tellMore();

    Policy* policy_;
    HSTVector<CheckFinding> findings_;
    std::set<std::string> archives_;
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
/// " (did you mean 'WORD'?)"; empty without a word.
std::string meant(std::string_view word);
/// That about the candidate nearest to the word.
std::string meant(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace mav_platform::check
