// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "json/GrowingMemory.h"

namespace mav_platform {
class JSONSerializable;
}

namespace mav_platform::json {

class Node;
class TextSink;

/// What a node is in the text, whatever its children are called.
enum class Kind : std::uint8_t { SCALAR, LIST, OBJECT };

/// One node of the compact tree. A node is followed by all that is below it.
struct Cell {
    std::uint32_t key, keySize;
    std::uint32_t data, dataSize;  ///< of an object or a list: the closing bracket, and 0
    std::uint32_t span : 30;       ///< number of cells from this one to the last one below it
    Kind kind : 2;
};

/// JSON text as a compact tree of texts. Accepts and refuses exactly what Boost.PropertyTree's
/// reader does and holds the same tree, duplicate keys included; on top of that it refuses nesting
/// deeper than a number of levels and, for memory's sake, texts above 1 GiB or with more than 2^27
/// values.
/// Owns its text, which it decodes in place; nodes point into it, also after a move.
class Document {
  public:
    static constexpr unsigned MAX_DEPTH = 512;
    /// For documents of our own, which hold what a member holds some levels deeper.
    static constexpr unsigned MAX_OWN_DEPTH = MAX_DEPTH + 64;
    static constexpr std::size_t MAX_SIZE = std::size_t{1} << 30;
    static constexpr std::size_t MAX_VALUES = std::size_t{1} << 27;

    /// `text` is any movable owner of mutable bytes (`data()`, `size()`), such as a std::string;
    /// hand it over by move. `fileName` only appears in errors. Throws Boost's json_parser_error
    /// (`what()`, `message()`, `filename()` and `line()` as Boost's reader gives them).
    template <class Owner>
    requires requires(Owner& owner) {
        { owner.data() } -> std::convertible_to<char*>;
        { owner.size() } -> std::convertible_to<std::size_t>;
    }
    explicit Document(Owner text, std::string_view fileName = {}, unsigned maxDepth = MAX_DEPTH)
        : owner_(std::make_shared<Owner>(std::move(text))) {
        Owner& owner = *static_cast<Owner*>(owner_.get());
        parse(owner.data(), owner.size(), fileName, maxDepth);
    }
    explicit Document(const char* text) : Document(std::string(text)) {}
    /// The way in for what stands in files and members: bytes that are not UTF-8 are taken as
    /// ISO-8859-1. Throws as the constructor does.
    static Document fromBytes(std::string bytes, std::string_view fileName = {},
                              unsigned maxDepth = MAX_DEPTH);
    Document(Document&&) noexcept = default;
    Document& operator=(Document&&) noexcept = default;

    Node root() const;
    /// The whole tree as a property tree.
    boost::property_tree::ptree tree() const;

  private:
    friend class TextSink;
    template <class Owner>
    Document(std::shared_ptr<Owner> owner, GrowingMemory cells)
        : owner_(std::move(owner)),
          text_(static_cast<const Owner*>(owner_.get())->data()),
          cells_(std::move(cells)) {}
    void parse(char* text, std::size_t size, std::string_view fileName, unsigned maxDepth);

    std::shared_ptr<void> owner_;
    const char* text_ = nullptr;
    GrowingMemory cells_;
};

/// One node of a document: its key in the parent, its data, its children in document order. Cheap
/// to copy; valid while the document lives. An empty object, an empty array and an empty string all
/// have no data and no children, as in a property tree, which cannot tell them apart.
class Node {
  public:
    /// Empty for array items and for the root.
    std::string_view key() const { return {text_ + cell_->key, cell_->keySize}; }
    /// The scalar's text; empty for objects and arrays.
    std::string_view data() const { return {text_ + cell_->data, cell_->dataSize}; }
    bool hasChildren() const { return cell_->span > 1; }
    Kind kind() const { return cell_->kind; }
    bool isList() const { return cell_->kind == Kind::LIST; }
    /// The first child of that key (no paths: a "." in a key is a character like any other).
    std::optional<Node> find(std::string_view key) const;
    /// The data of that child; empty when there is none.
    std::string text(std::string_view key) const;
    /// The node and all below it as a property tree.
    boost::property_tree::ptree tree() const;
    /// Where the node stands in the text that was parsed, in bytes: its key, else its data, each
    /// with the quote before it, else the first of its children that has a place; 0 for what is
    /// empty.
    std::size_t offset() const;
    /// Where the data begins in the text that was parsed, behind the quote of a text; where the
    /// closing bracket of an object or a list stands.
    std::size_t dataOffset() const { return cell_->data; }

    class Iterator;
    Iterator begin() const;
    Iterator end() const;

  private:
    friend class Document;
    friend class Iterator;
    Node(const char* text, const Cell* cell) : text_(text), cell_(cell) {}
    const char* text_;
    const Cell* cell_;
};

/// Walks the children of one node.
class Node::Iterator {
  public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = Node;
    using difference_type = std::ptrdiff_t;
    using pointer = const Node*;
    using reference = const Node&;

    Iterator() : node_(nullptr, nullptr) {}
    explicit Iterator(Node node) : node_(node) {}
    const Node& operator*() const { return node_; }
    const Node* operator->() const { return &node_; }
    Iterator& operator++() {
        node_.cell_ += node_.cell_->span;
        return *this;
    }
    Iterator operator++(int) {
        Iterator old = *this;
        ++*this;
        return old;
    }
    friend bool operator==(const Iterator& a, const Iterator& b) { return a.cell() == b.cell(); }

  private:
    const Cell* cell() const { return node_.cell_; }
    Node node_;
};

inline Node::Iterator Node::begin() const {
    return Iterator(Node(text_, cell_ + 1));
}
inline std::size_t Node::offset() const {
    for (const Cell* cell = cell_; cell != cell_ + cell_->span; ++cell) {
        // Only the root and array items have no place of a key, and no key begins at 0.
        if (cell->key > 0) return cell->key - 1;
        if (cell->kind == Kind::SCALAR) return cell->data - (text_[cell->data - 1] == '"' ? 1 : 0);
    }
    return 0;
}
inline Node::Iterator Node::end() const {
    return Iterator(Node(text_, cell_ + cell_->span));
}

/// The document that an object writes of itself, as the constructor reads it from the text, but
/// without the text. Nothing when writing it needs a property tree, or when it would be too large.
std::optional<Document> compactDocument(const JSONSerializable& object);

inline Node Document::root() const {
    return {text_, static_cast<const Cell*>(static_cast<const void*>(cells_.data()))};
}

}  // namespace mav_platform::json
