// SPDX-License-Identifier: Apache-2.0
#pragma once

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

/// Collects findings; the severity is that of the rule.
class Report {
  public:
    static constexpr std::size_t LIMIT = 10'000;

    /// Throws HEXAlgException for a rule that is not in the table.
    void add(const char* rule, const Place& place, std::string text);
    bool hasErrors() const { return errors_ > 0; }
    /// Files in order of their first finding, and by line inside each.
    HSTVector<CheckFinding> take();

  private:
    HSTVector<CheckFinding> findings_;
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

/// What a value is called in a sentence: in quotes, cut when long, control characters shown.
std::string shown(std::string_view text);

}  // namespace mav_platform::check
