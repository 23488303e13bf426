// SPDX-License-Identifier: Apache-2.0
#include "formats/Fields.h"
#include "formats/metadata/HMAVDsaJsonReaderImpl.h"
#include "mav_platform/HMAVDpeHardware.h"
#include "mav_platform/HMAVDpePartition.h"
#include "mav_platform/HPLPlatform.h"

using namespace mav_platform::metadata;

namespace {

using mav_platform::json::Node;

/// The "start" and "num" members of one kind of row.
template <auto SetStart, auto SetNum>
void rows(HMAVDpeHardware& hardware, const Node& node, Trail& trail) {
    static constexpr Field<HMAVDpeHardware> FIELDS[] = {
        {"start", &integer<SetStart>},
        {"num", &integer<SetNum>},
    };
    if (requireObject(node)) readFields(FIELDS, node, hardware, trail);
}

struct Partition {
    HMAVDpePartition value;
    std::optional<Node> partitions;
};

/// Partition's setters share their names with the getters, which a table cannot tell apart.
template <void (HMAVDpePartition::*Setter)(const std::string&)>
void partitionText(Partition& partition, const Node& node, Trail&) {
    requireText(node);
    (partition.value.*Setter)(std::string(node.data()));
}

template <void (HMAVDpePartition::*Setter)(int)>
void partitionNumber(Partition& partition, const Node& node, Trail&) {
    requireText(node);
    (partition.value.*Setter)(mav_platform::json::toInt(node.data(), 0));
}

Partition readPartition(const Node& node, Trail& trail) {
    using P = HMAVDpePartition;
    static constexpr Field<Partition> FIELDS[] = {
        {"dpeInst", &partitionText<&P::dpeInst>},
        {"startColumn", &partitionNumber<&P::startColumn>},
        {"numColumns", &partitionNumber<&P::numColumns>},
        {"uuid", &partitionText<&P::uuid>},
        {"plInterfaceID", &partitionText<&P::plIntefaceID>},
        {"partitions",
         +[](Partition& partition, const Node& n, Trail&) {
             if (requireList(n)) partition.partitions = n;
         }},
    };
    Partition partition;
    readFields(FIELDS, node, partition, trail);
    return partition;
}

}  // namespace

void HMAVDsaJsonReaderImpl::parseDpeHardware_(HPLPlatform& platform, const Node& node,
                                              Trail& trail) {
    using Dpe = HMAVDpeHardware;
    static constexpr Field<Dpe> FIELDS[] = {
        {"arch",
         +[](Dpe& dpe, const Node& n, Trail&) {
             requireText(n);
             dpe.setArch(std::string(n.data()));
         }},
        {"npiBaseAddress", &unsignedNumber<&Dpe::setNpiBaseAddress>},
        {"axiBaseAddress", &text<&Dpe::setAxiBaseAddress>},
        {"axiHighAddress", &text<&Dpe::setAxiHighAddress>},
        {"shimRows", &rows<&Dpe::setStartShimRow, &Dpe::setNumShimRows>},
        {"coreRows", &rows<&Dpe::setStartCoreRow, &Dpe::setNumCoreRows>},
        {"memRows", &rows<&Dpe::setStartMemRow, &Dpe::setNumMemRows>},
        {"colDict", &text<&Dpe::setColDict>},
    };
    readFields(FIELDS, node, platform.getDpeHardware(), trail);
}

void HMAVDsaJsonReaderImpl::parseDpePartitions_(HPLPlatform& platform, const Node& node,
                                                Trail& trail) {
    readItems(node, trail, [&](const Node& item) {
        Partition root = readPartition(item, trail);
        if (!root.value.isPartition()) return;
        root.value.isRoot(true);
        HMAVDpePartition& added = platform.addDpePartition();
        added = root.value;
        if (!root.partitions) return;
        trail.enter("partitions");
        readItems(*root.partitions, trail, [&](const Node& sub) {
            const Partition inner = readPartition(sub, trail);
            if (inner.value.isPartition()) added.addPartition() = inner.value;
        });
        trail.leave();
    });
}
