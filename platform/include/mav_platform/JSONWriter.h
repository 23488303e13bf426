// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"
#include "mav_platform/JSONTextSink.h"

namespace mav_platform {

class JSONSerializable;
namespace json {
class Document;
class TreeSink;
std::optional<Document> compactDocument(const JSONSerializable& object);
}  // namespace json

/// Common base of the writers. To its users a writer is a property tree of texts. Inside, members
/// go straight into JSON text; the tree is made when somebody asks for it, or when an operation
/// needs the tree's own rules (dotted keys, replacing a value). A writer belongs to one thread.
class MAV_API JSONWriter {
  public:
    using ptree = boost::property_tree::ptree;

    JSONWriter(const JSONWriter&) = delete;
    JSONWriter& operator=(const JSONWriter&) = delete;

    /// The writer's tree itself: it shows what is added later, and the caller may change it through
    /// the non-const form. Valid until the writer is destroyed.
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
    /// The same text where it lies, without a terminating null. Valid until the writer is changed,
    /// asked for its text again, or destroyed.
    std::string_view textView() const;
    /// The same text, NUL-terminated, in memory made with array new that the caller owns. Leaves
    /// the writer empty: a large text is given back to the system while it is copied.
    std::unique_ptr<char[]> newText();

  protected:
    /// A writer of its own.
    explicit JSONWriter(bool list);
    /// A child that is attached to `parent` when it is finished: under `key`, as it stands, when
    /// the parent has keys. The key must outlive it.
    JSONWriter(JSONWriter& parent, std::string_view key, bool list);
    /// A child that was not finished leaves no trace in its parent.
    ~JSONWriter();

    /// Calls `fill` with a child and attaches it.
    template <class Child, class Fill>
    void addFilled(std::string_view key, Fill&& fill) {
        Child child(*this, key);
        std::forward<Fill>(fill)(child);
        child.finish();
    }
    /// Attaches a child to its parent; one that wrote nothing is skipped.
    void finish();
    void addText(std::string_view key, std::string_view value);
    void addLiteralText(std::string_view name, std::string_view value);
    void addWriter(std::string_view key, const JSONWriter& sub);
    void addTexts(std::string_view key, const HSTVector<std::string>& values);
    void addTree(std::string_view key, const ptree& sub);
    void addObjectAt(std::string_view key, const JSONSerializable* object);

  private:
    friend std::optional<json::Document> json::compactDocument(const JSONSerializable& object);
    static json::TextSink begun(JSONWriter& child, JSONWriter& parent, std::string_view key,
                                bool list);
    void settle() const;
    void detach();
    json::TreeSink& useTree() const;
    void leaveParent() noexcept;
    void rollBack() noexcept;
    void finishTree();
    bool takes(std::string_view path) const;
    void attach(std::string_view key, ptree& sub);

    mutable json::TextSink text_;
    mutable std::unique_ptr<json::TreeSink> tree_;  ///< instead of the text once it is there
    JSONWriter* parent_ = nullptr;
    std::string_view key_;  ///< of a child, in its parent
};

}  // namespace mav_platform
