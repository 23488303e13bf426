// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mav_platform::json {

class Node;

/// JSON text as a compact tree of texts. Accepts and refuses exactly what Boost.PropertyTree's
/// reader does and holds the same tree, duplicate keys included; on top of that it refuses nesting
/// deeper than 512 levels. Owns its text; nodes point into it.
class Document {
  public:
    static constexpr unsigned MAX_DEPTH = 512;

    /// Throws Boost's json_parser_error (`message()` and `line()` as Boost's reader gives them).
    explicit Document(std::string text);
    Document(Document&&) noexcept;
    ~Document();

    Node root() const;
    /// The whole tree, or the part below a node, as a property tree.
    boost::property_tree::ptree tree() const;

  private:
    friend class Node;
    struct Cell {
        std::uint32_t key, keySize, data, dataSize;
        std::uint32_t end;  ///< index behind the last cell below this one
    };
    std::string text_;
    std::vector<Cell> cells_;
};

/// One node of a document: its key in the parent, its data, its children in document order. Cheap
/// to copy; valid while the document lives.
class Node {
  public:
    std::string_view key() const;
    std::string_view data() const;
    bool hasChildren() const;
    /// The first child of that key (no paths: a "." in a key is a character like any other).
    std::optional<Node> find(std::string_view key) const;
    boost::property_tree::ptree tree() const;

    class Iterator;
    Iterator begin() const;
    Iterator end() const;

  private:
    friend class Document;
    Node(const Document* document, std::uint32_t index) : document_(document), index_(index) {}
    const Document* document_;
    std::uint32_t index_;
};

}  // namespace mav_platform::json
