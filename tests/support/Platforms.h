// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "support/Archives.h"

/// A platform description that names the archive `hardware` beside it and adds `software`, such as
/// R"(<mav:softwarePlatforms mav:path="." mav:name="card.spfm"/>)".
inline std::string descriptionOf(const std::string& hardware, const std::string& more = "") {
    return R"(<?xml version="1.0"?>
<mav:platform xmlns:mav="urn:mav:platform:1" mav:vendor="v" mav:library="l" mav:name="n"
    mav:version="1.0"><mav:hardwarePlatforms><mav:hardwarePlatform mav:path="." mav:name=")" +
           hardware + "\"/></mav:hardwarePlatforms>" + more + "</mav:platform>";
}

/// Metadata with the identity and a device of that part.
inline std::string identity(const std::string& vendor, const std::string& board,
                            const std::string& name, const std::string& major,
                            const std::string& minor, const std::string& more = "") {
    return R"({"vendor": ")" + vendor + R"(", "boardId": ")" + board + R"(", "name": ")" + name +
           R"(", "versionMajor": ")" + major + R"(", "versionMinor": ")" + minor + "\"" + more +
           "}";
}

/// Packs an archive with JSON metadata, making directories on the way, and answers its path.
inline std::string bareArchive(const TempDir& dir, const std::string& file,
                               const std::string& content = metadata()) {
    const std::filesystem::path path = dir.path(file);
    std::filesystem::create_directories(path.parent_path());
    return packArchive(dir, file, {{path.extension().string().substr(1) + ".json", content}});
}

/// A description with an archive of its stem beside it; answers the description's path.
inline std::string described(const TempDir& dir, const std::string& stem,
                             const std::string& content = metadata(),
                             const std::string& extension = ".qpfm") {
    bareArchive(dir, stem + ".pka", content);
    const std::string name = std::filesystem::path(stem).filename();
    return dir.write(stem + extension, descriptionOf(name + ".pka"));
}
