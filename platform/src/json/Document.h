// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mav_platform::json {

class Node;

/// JSON text as a compact tree of texts. Accepts and refuses exactly what Boost.PropertyTree's
/// reader does and holds the same tree, duplicate keys included; on top of that it refuses nesting
/// deeper than 512 levels. Owns its text, in which escapes are decoded in place; nodes point into
/// it.
class Document {
  public:
    static constexpr unsigned MAX_DEPTH = 512;

    /// Throws Boost's json_parser_error, with the message and the line that Boost's reader gives.
    explicit Document(std::string text);
    /// For text that our own writer made: any depth, and bytes outside ASCII as they stand.
    static Document ofOwnText(std::string text);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();

    Node root() const;
    /// The whole document as a property tree.
    boost::property_tree::ptree tree() const;

    /// One node. Those below it follow at once, up to `end`.
    struct Cell {
        std::uint32_t key, keySize;  ///< place and size in the text
        std::uint32_t data, dataSize;
        std::uint32_t end;  ///< index behind the last cell below this one
    };

  private:
    friend class Node;
    enum class Trust { FOREIGN, OWN };
    Document(std::string text, Trust trust);

    std::string text_;
    std::vector<Cell> cells_;
};

/// One node of a document: its key in the parent, its data, its children in document order. Cheap
/// to copy; valid while the document lives.
class Node {
  public:
    std::string_view key() const { return view(cell().key, cell().keySize); }
    std::string_view data() const { return view(cell().data, cell().dataSize); }
    bool hasChildren() const { return cell().end != index_ + 1; }
    /// The first child of that key; a "." in a key is a character like any other.
    std::optional<Node> find(std::string_view key) const;
    /// The node with all below it as a property tree.
    boost::property_tree::ptree tree() const;

    class Iterator;
    Iterator begin() const;
    Iterator end() const;

  private:
    friend class Document;
    Node(const Document* document, std::uint32_t index) : document_(document), index_(index) {}
    const Document::Cell& cell() const { return document_->cells_[index_]; }
    std::string_view view(std::uint32_t at, std::uint32_t size) const {
        return {document_->text_.data() + at, size};
    }

    const Document* document_;
    std::uint32_t index_;
};

/// Walks the children of a node.
class Node::Iterator {
  public:
    Node operator*() const { return node_; }
    Iterator& operator++() {
        node_.index_ = node_.cell().end;
        return *this;
    }
    bool operator!=(const Iterator& other) const { return node_.index_ != other.node_.index_; }

  private:
    friend class Node;
    explicit Iterator(Node node) : node_(node) {}
    Node node_;
};

inline Node::Iterator Node::begin() const {
    return Iterator(Node(document_, index_ + 1));
}
inline Node::Iterator Node::end() const {
    return Iterator(Node(document_, cell().end));
}
inline Node Document::root() const {
    return Node(this, 0);
}

}  // namespace mav_platform::json
