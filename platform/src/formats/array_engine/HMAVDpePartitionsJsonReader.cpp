// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDpePartitionsJsonReader.h"

#include <boost/container_hash/hash.hpp>
#include <charconv>
#include <exception>
#include <new>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "json/Document.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVDpePartition.h"
#include "mav_platform/HMAVHardwarePlatform.h"

namespace {

using mav_platform::json::Document;
using mav_platform::json::Node;

/// The number of that key; 0 when it is absent or not wholly an integer.
int numberOf(const Node& entry, std::string_view key) {
    const std::optional<Node> found = entry.find(key);
    if (!found) return 0;
    const std::string_view text = found->data();
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? number : 0;
}

struct HashPartition {
    std::size_t operator()(const HMAVDpePartition* partition) const {
        std::size_t seed = 0;
        add(seed, *partition);
        for (const HMAVDpePartition& inner : partition->partitions()) add(seed, inner);
        return seed;
    }
    static void add(std::size_t& seed, const HMAVDpePartition& partition) {
        boost::hash_combine(seed, partition.dpeInst());
        boost::hash_combine(seed, partition.startColumn());
        boost::hash_combine(seed, partition.numColumns());
        boost::hash_combine(seed, partition.uuid());
        boost::hash_combine(seed, partition.plIntefaceID());
    }
};
struct EqualPartition {
    bool operator()(const HMAVDpePartition* a, const HMAVDpePartition* b) const { return *a == *b; }
};

class HMAVDpePartitionsJsonReaderImpl {
  public:
    explicit HMAVDpePartitionsJsonReaderImpl(std::list<HMAVDpePartition>& partitions) {
        for (const HMAVDpePartition& partition : partitions) known_.insert(&partition);
    }

    void parseDpe(const Node& root) {
        const std::optional<Node> dpe = root.find("DPE");
        if (!dpe) return;
        for (const Node& entry : *dpe) {
            if (!hasColumns(entry)) continue;
            HMAVDpePartition& partition = read_.emplace_back();
            populatePartition(entry, true, partition);
            if (const auto children = entry.find("partitions")) {
                addSubPartitions(*children, partition);
            }
            if (!known_.insert(&partition).second) read_.pop_back();
        }
    }
    /// What has been read and was not known before.
    std::list<HMAVDpePartition>& read() { return read_; }

  private:
    static bool hasColumns(const Node& entry) { return numberOf(entry, "numColumns") >= 1; }

    static void addSubPartitions(const Node& children, HMAVDpePartition& parent) {
        for (const Node& entry : children) {
            if (hasColumns(entry)) populatePartition(entry, false, parent.addPartition());
        }
    }

    static void populatePartition(const Node& entry, bool isRoot, HMAVDpePartition& partition) {
        partition.isRoot(isRoot);
        partition.dpeInst(std::string(entry.key()));
        partition.startColumn(numberOf(entry, "startColumn"));
        partition.numColumns(numberOf(entry, "numColumns"));
        partition.uuid(entry.text("uuid"));
        partition.plIntefaceID(entry.text("dpe_pl_intf_id"));
    }

    std::list<HMAVDpePartition> read_;
    std::unordered_set<const HMAVDpePartition*, HashPartition, EqualPartition> known_;
};

Document readDocument(const std::string& path, const std::string& place) {
    try {
        return Document::fromBytes(HUTFileUtils::readWhole(path, HUTZip::MAX_METADATA_SIZE), path);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        throw HEXAlgException("An error occurred while parsing the dpe partitions json file: " +
                              place);
    }
}

}  // namespace

void HMAVDpePartitionsJsonReader::parse(const std::string& path) {
    parse(path, path);
}

void HMAVDpePartitionsJsonReader::parse(const std::string& path, const std::string& place) {
    if (!HUTFile::isFile(path)) return;
    const Document document = readDocument(path, place);
    std::list<HMAVDpePartition>& partitions = platform_->dpePartitions_;
    HMAVDpePartitionsJsonReaderImpl impl(partitions);
    impl.parseDpe(document.root());
    partitions.splice(partitions.end(), impl.read());
}
