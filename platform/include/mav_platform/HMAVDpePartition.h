// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <list>
#include <string>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// A column range of the array engine that an application may be given. Root partitions hold their
/// sub-partitions by value; only these two levels exist.
class MAV_API HMAVDpePartition : public mav_platform::JSONSerializable {
  public:
    HMAVDpePartition() = default;
    HMAVDpePartition(int startColumn, int numColumns)
        : startColumn_(startColumn), numColumns_(numColumns) {}

    bool isRoot() const { return isRoot_; }
    void isRoot(bool value) { isRoot_ = value; }
    int startColumn() const { return startColumn_; }
    void startColumn(int value) { startColumn_ = value; }
    int numColumns() const { return numColumns_; }
    void numColumns(int value) { numColumns_ = value; }
    /// The partition's name.
    const std::string& dpeInst() const { return dpeInst_; }
    void dpeInst(const std::string& value) { dpeInst_ = value; }
    const std::string& uuid() const { return uuid_; }
    void uuid(const std::string& value) { uuid_ = value; }
    /// Id of the programmable-logic interface.
    const std::string& plIntefaceID() const { return plIntefaceID_; }
    void plIntefaceID(const std::string& value) { plIntefaceID_ = value; }

    /// Sub-partitions in the order in which they were added.
    std::list<HMAVDpePartition>& partitions() { return partitions_; }
    const std::list<HMAVDpePartition>& partitions() const { return partitions_; }
    /// Append a sub-partition and answer it; it keeps its place while this partition lives.
    HMAVDpePartition& addPartition();
    HMAVDpePartition& addPartition(int startColumn, int numColumns);
    bool hasPartitions() const { return !partitions_.empty(); }
    /// The first sub-partition with both numbers equal; the shared empty partition when none has.
    const HMAVDpePartition& findPartition(int startColumn, int numColumns) const;
    /// True when some sub-partition's interface id equals `id` exactly.
    bool hasPartition(const std::string& id) const;
    void clear();
    /// Replaces the content by the members that toJSON writes; absent ones become empty or 0.
    void fromJSON(const boost::property_tree::ptree& tree);
    /// False for a partition without columns, such as the shared empty one.
    bool isPartition() const { return numColumns_ > 0; }
    /// What a search answers that finds nothing; always the same object.
    static const HMAVDpePartition& none();

    bool operator==(const HMAVDpePartition& other) const;
    bool operator!=(const HMAVDpePartition& other) const { return !(*this == other); }

    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    bool isRoot_ = false;
    int startColumn_ = 0;
    int numColumns_ = 0;
    std::string dpeInst_;
    std::string uuid_;
    std::string plIntefaceID_;
    std::list<HMAVDpePartition> partitions_;
};
