// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string_view>

#include "json/TextBuffer.h"

namespace mav_platform::json {

/// Where the members of a writer go when somebody asked for its tree or an operation needs the
/// tree's own rules. A list ignores keys; what is not UTF-8 is converted.
class TreeSink {
  public:
    using ptree = boost::property_tree::ptree;

    TreeSink(ptree tree, bool list) : list_(list) { tree_.swap(tree); }

    ptree& tree() { return tree_; }
    /// A scalar at a path, in the place of the one that is there.
    void put(std::string_view path, std::string_view value);
    /// One more scalar, under a key as it stands.
    void add(std::string_view key, std::string_view value);
    /// One more sub-tree at a path; it is used up.
    void addAtPath(std::string_view path, ptree& sub);
    /// One more sub-tree under a key as it stands; it is used up.
    void addChild(std::string_view key, ptree& sub);

    /// The whole as text, in UTF-8 whatever was put into the tree; valid until asked again. Throws
    /// json_parser_error for what JSON cannot express.
    std::string_view text();
    /// Moves what `text` answered last to `out` and leaves the sink empty.
    void drainTo(char* out) noexcept;

  private:
    ptree& addNode(std::string_view key);
    ptree& addNodeAtPath(std::string_view path);

    ptree tree_;
    TextBuffer rendered_;
    const bool list_;
};

}  // namespace mav_platform::json
