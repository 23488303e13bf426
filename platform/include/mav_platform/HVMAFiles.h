// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// The typed members of an archive: member type to member name, one name per type.
class MAV_API HVMAFiles : public mav_platform::JSONSerializable {
  public:
    /// Replaces the name of a type that is there already.
    void add(const std::string& type, const std::string& name) { names_[type] = name; }
    /// Name of the member of exactly that type; empty when there is none.
    std::string get(const std::string& type) const;
    bool has(const std::string& type) const { return names_.count(type) != 0; }
    bool empty() const { return names_.empty(); }
    void clear() { names_.clear(); }
    /// In the order of the types' bytes.
    const std::map<std::string, std::string>& getMap() const { return names_; }
    /// The list "files" of objects with "name" and "type", in map order; nothing when it is empty.
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::map<std::string, std::string> names_;
};
