// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "formats/Fields.h"
#include "json/Document.h"
#include "mav_host/HUTZip.h"

class HMAVEmulations;

namespace mav_platform::lmx {
struct EmulationMetadata;
}

/// What the readers of emulation metadata share.
namespace mav_platform::emulation {

/// Where a document stands. In an archive, `member` is the normalised name; a file of its own has
/// none.
struct Place {
    std::string path;
    std::string member;

    /// As a report names the document by one text: PATH, or PATH/MEMBER.
    std::string text() const { return member.empty() ? path : path + "/" + member; }
};

/// The member name without one leading character that slashes follow, and without these slashes,
/// so that "./x" is "x".
std::string normalizedMember(const std::string& member);

/// Text of the member `place.member`, of the size that an XML document may have. Nothing after a
/// report "@74-34@%s%s" (archive, member); the first form opens the archive `place.path`.
std::optional<std::string> readMember(const Place& place);
std::optional<std::string> readMember(const mav_host::ZipArchive& archive, const Place& place);

/// Text of the file `path`, of that size. Nothing after a report "@74-63@%s%s" (path, reason).
std::optional<std::string> readFile(const std::string& path);

/// Parses a JSON text and hands its root to `read`, which throws for what it refuses. False after a
/// report: "@74-64@%s%s%s" (archive, member, text) for a text that is no JSON, "@74-63@%s%s"
/// (path, text) for all else.
using ReadRoot = std::function<void(const json::Node& root, metadata::Trail& trail)>;
bool readJson(std::string text, const Place& place, const ReadRoot& read);

/// Appends the document's emulations and sets the versions that it states.
void fill(lmx::EmulationMetadata document, HMAVEmulations& emulations);

}  // namespace mav_platform::emulation
