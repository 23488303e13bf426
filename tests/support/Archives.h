// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "mav_host/HUTZip.h"
#include "support/Doubles.h"

/// Metadata with the identity keys and whatever `more` adds, such as `, "idCode": "x"`.
inline std::string metadata(const std::string& more = "", const std::string& name = "card") {
    return R"({"vendor": "tarvek", "boardId": "b1", "name": ")" + name +
           R"(", "versionMajor": "3", "versionMinor": "1")" + more + "}";
}

/// Packs members into an archive below `dir` and answers its path.
inline std::string packArchive(const TempDir& dir, const std::string& name,
                               const std::vector<std::pair<std::string, std::string>>& members) {
    HSTVector<HUTZip::Source> sources;
    for (const auto& [member, content] : members) sources.push_back({member, "", content});
    HUTZip::create(dir.path(name), sources);
    return dir.path(name);
}
