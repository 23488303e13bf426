// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDpePartition.h"

#include <boost/property_tree/ptree.hpp>

#include "mav_platform/HMAVJSONUtils.h"
#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"

HMAVDpePartition& HMAVDpePartition::addPartition() {
    return partitions_.emplace_back();
}

HMAVDpePartition& HMAVDpePartition::addPartition(int startColumn, int numColumns) {
    return partitions_.emplace_back(startColumn, numColumns);
}

const HMAVDpePartition& HMAVDpePartition::none() {
    static const HMAVDpePartition EMPTY;
    return EMPTY;
}

const HMAVDpePartition& HMAVDpePartition::findPartition(int startColumn, int numColumns) const {
    for (const HMAVDpePartition& partition : partitions_) {
        if (partition.startColumn_ == startColumn && partition.numColumns_ == numColumns) {
            return partition;
        }
    }
    return none();
}

bool HMAVDpePartition::hasPartition(const std::string& id) const {
    for (const HMAVDpePartition& partition : partitions_) {
        if (partition.plIntefaceID_ == id) return true;
    }
    return false;
}

void HMAVDpePartition::clear() {
    *this = HMAVDpePartition();
}

void HMAVDpePartition::fromJSON(const boost::property_tree::ptree& tree) {
    const auto read = [](HMAVDpePartition& target, const boost::property_tree::ptree& source) {
        target.dpeInst_ = HMAVJSONUtils::getValue(source, "dpeInst");
        target.startColumn_ = HMAVJSONUtils::getIntValue(source, "startColumn");
        target.numColumns_ = HMAVJSONUtils::getIntValue(source, "numColumns");
        target.uuid_ = HMAVJSONUtils::getValue(source, "uuid");
        target.plIntefaceID_ = HMAVJSONUtils::getValue(source, "plInterfaceID");
    };
    const bool wasRoot = isRoot_;
    clear();
    isRoot_ = wasRoot;
    read(*this, tree);
    const auto below = tree.get_child_optional("partitions");
    if (!below) return;
    for (const auto& child : *below) read(addPartition(), child.second);
}

bool HMAVDpePartition::operator==(const HMAVDpePartition& other) const {
    return isRoot_ == other.isRoot_ && startColumn_ == other.startColumn_ &&
           numColumns_ == other.numColumns_ && dpeInst_ == other.dpeInst_ && uuid_ == other.uuid_ &&
           plIntefaceID_ == other.plIntefaceID_ && partitions_ == other.partitions_;
}

void HMAVDpePartition::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("dpeInst", dpeInst_);
    writer.addKey("startColumn", startColumn_);
    writer.addKey("numColumns", numColumns_);
    writer.addKey("uuid", uuid_);
    writer.addKey("plInterfaceID", plIntefaceID_);
    writer.addList("partitions", [this](mav_platform::JSONListWriter& list) {
        for (const HMAVDpePartition& partition : partitions_) list.addItem(&partition);
    });
}
