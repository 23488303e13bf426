// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "check/CheckHpfm.h"
#include "check/CheckReport.h"

namespace mav_platform::check {

/// The items of a list; none when there is no such list.
std::vector<json::Node> itemsOf(const json::Node& node, std::string_view key);

/// The number without sign and leading zeros; any other text as it is.
std::string sameNumber(std::string_view text);
/// A finding "duplicate" for each item whose key has the text, or is the number, of an earlier one.
/// `list` is what the sentence calls the list.
void checkUnique(const LocatedJson& json, const std::vector<json::Node>& items, const char* key,
                 const std::string& list, Report& report);
/// The items of archive metadata: what must be unique, clocks, memories, banks and references.
/// `documents` are the hpfm documents that it lists; their resets are the platform's too.
void checkItems(const LocatedJson& json, const std::vector<const HpfmNames*>& documents,
                Report& report);
/// The references of one of the documents, against the clocks of the metadata and its own, and the
/// resets of all.
void checkReferences(const HpfmNames& document, const std::string& file, const LocatedJson& json,
                     const std::vector<const HpfmNames*>& documents, Report& report);
/// A finding "hbm-preferred" when some but not all of the assignable banks are preferred; `banks`
/// holds the text of `auto` of each.
void checkBanks(const Place& place, const std::vector<std::string>& banks, Report& report);

/// Address segments of one bus interface: those with a name and an index that stood before.
class SegmentNames {
  public:
    explicit SegmentNames(std::string bus) : bus_(std::move(bus)) {}
    void add(const std::string& name, const std::string& index, const Place& place, Report& report);

  private:
    std::string bus_;
    std::map<std::pair<std::string, std::string>, std::size_t> lines_;
};

}  // namespace mav_platform::check
