// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmulationJsonReader.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <utility>

#include "formats/emulation/EmulationSource.h"
#include "formats/emulation/MAVEmulationLMX.h"

namespace emulation = mav_platform::emulation;
namespace lmx = mav_platform::lmx;
using mav_platform::json::Node;
using namespace mav_platform::metadata;

namespace {

constexpr bool REQUIRED = true;

template <auto Member, class T>
void value(T& target, const Node& node, Trail&) {
    requireText(node);
    target.*Member = std::string(node.data());
}

void parseFiles(lmx::Emulation& emulation, const Node& node, Trail& trail) {
    using File = lmx::EmulationFile;
    static constexpr Field<File> FIELDS[] = {
        {"type", &value<&File::type>, REQUIRED},
        {"name", &value<&File::name>, REQUIRED},
        {"inst_path", &value<&File::instPath>},
    };
    readItems(node, trail, [&](const Node& item) {
        requireObject(item);
        readFields(FIELDS, item, emulation.files.files.emplace_back(), trail);
    });
}

void parseEmulations(lmx::EmulationMetadata& document, const Node& node, Trail& trail) {
    using Emulation = lmx::Emulation;
    static constexpr Field<Emulation> FIELDS[] = {
        {"name", &value<&Emulation::name>},
        {"files", &parseFiles, REQUIRED},
    };
    readItems(node, trail, [&](const Node& item) {
        requireObject(item);
        readFields(FIELDS, item, document.emulations.emulations.emplace_back(), trail);
    });
}

void parseRoot(lmx::EmulationMetadata& document, const Node& root, Trail& trail) {
    using Document = lmx::EmulationMetadata;
    static constexpr Field<Document> FIELDS[] = {
        {"pfm_metadata_version", &value<&Document::pfmMetadataVersion>},
        {"emulations", &parseEmulations, REQUIRED},
    };
    readFields(FIELDS, root, document, trail);
}

}  // namespace

bool HMAVEmulationJsonReader::parseJson() {
    auto text = emulation::readFile(path_);
    return text && parse_(std::move(*text), {path_, {}});
}

bool HMAVEmulationJsonReader::parseFromDsa(const std::string& archive, const std::string& member,
                                           HMAVEmulations* emulations) {
    const emulation::Place place{archive, emulation::normalizedMember(member)};
    emulations_ = emulations;
    auto text = emulation::readMember(place);
    return text && parse_(std::move(*text), place);
}

bool HMAVEmulationJsonReader::parseFromDsa(const mav_host::ZipArchive& archive,
                                           const std::string& member, HMAVEmulations* emulations) {
    const emulation::Place place{archive.path(), emulation::normalizedMember(member)};
    emulations_ = emulations;
    auto text = emulation::readMember(archive, place);
    return text && parse_(std::move(*text), place);
}

bool HMAVEmulationJsonReader::isJsonValid(const std::string& text) {
    try {
        const auto document = mav_platform::json::Document::fromBytes(text);
        return document.root().find("emulations").has_value();
    } catch (const boost::property_tree::json_parser::json_parser_error&) {
        return false;
    }
}

bool HMAVEmulationJsonReader::parse_(std::string text, const emulation::Place& place) const {
    lmx::EmulationMetadata document;
    const bool read = emulation::readJson(
        std::move(text), place,
        [&](const Node& root, Trail& trail) { parseRoot(document, root, trail); });
    if (read) emulation::fill(std::move(document), *emulations_);
    return read;
}
