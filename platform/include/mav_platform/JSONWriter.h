// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "mav_host/Export.h"

namespace mav_platform {

/// Common base of the writers. To its users a writer is a property tree of texts. Inside, members
/// go straight into JSON text; the tree is made when somebody asks for it, or when an operation
/// needs the tree's own rules (dotted keys, replacing a value).
class MAV_API JSONWriter {
  public:
    using ptree = boost::property_tree::ptree;

    JSONWriter(const JSONWriter&) = delete;
    JSONWriter& operator=(const JSONWriter&) = delete;

    /// The writer's tree. Valid until the writer is destroyed; the non-const form may be changed by
    /// the caller, the const form is a picture that the next added member makes stale.
    ptree& getTree();
    const ptree& getTree() const;
    ptree& getOtherTree(JSONWriter& other) const;
    const ptree& getOtherTree(const JSONWriter& other) const;

    /// True when the tree has no children.
    bool empty() const;

    /// Pretty JSON text, byte for byte what Boost's writer prints for the tree, with a line end and
    /// a flush behind it. Throws Boost's json_parser_error for a tree that JSON cannot express and
    /// for a stream that fails.
    void write(std::ostream& out) const;
    /// The same text as a string.
    std::string text() const;

  protected:
    JSONWriter();
    ~JSONWriter();
};

}  // namespace mav_platform
