// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "mav_host/Export.h"

namespace mav_platform {

class JSONObjectWriter;
class JSONListWriter;
class JSONSerializable;

namespace detail {
class TextBuffer;
}

/// Common base of the writers. To its users a writer is a property tree of texts. Inside, members
/// go straight into JSON text; the tree is made when somebody asks for it, or when an operation
/// needs the tree's own rules (dotted keys, replacing a value).
class MAV_API JSONWriter {
  public:
    using ptree = boost::property_tree::ptree;

    JSONWriter(const JSONWriter&) = delete;
    JSONWriter& operator=(const JSONWriter&) = delete;

    /// The writer's tree, owned by the writer and valid while it lives. The non-const form may be
    /// changed by the caller; the const form is a picture that the next added member makes stale.
    ptree& getTree();
    const ptree& getTree() const;
    ptree& getOtherTree(JSONWriter& other) const;
    const ptree& getOtherTree(const JSONWriter& other) const;

    /// True when the tree has no children.
    bool empty() const;

    /// Pretty JSON text, byte for byte what Boost's writer prints for the tree, with a line end and
    /// a flush behind it. Throws Boost's json_parser_error "ptree contains data that cannot be
    /// represented in JSON format" for a tree that JSON cannot express and "write error" for a
    /// stream that fails.
    void write(std::ostream& out) const;
    /// The same text as a string.
    std::string text() const;
    /// The same text, NUL-terminated, in memory made with array new; the caller owns it.
    std::unique_ptr<char[]> newText() const;

  protected:
    enum class Kind : std::uint8_t { OBJECT, LIST };
    /// Calls the caller's function for a member that it fills.
    template <class Writer>
    struct FillCall {
        void (*call)(void* function, Writer& writer);
        void* function;
    };

    explicit JSONWriter(Kind kind);
    /// A writer for a member or item of `parent`, which writes into the parent's text and must be
    /// closed or destroyed before the parent is used again.
    JSONWriter(JSONWriter& parent, Kind kind);
    ~JSONWriter();

    /// True when members go into the text.
    bool streams_() const { return !inTree_; }
    /// Turns the text into the tree; from here on the tree is the writer's content.
    ptree& useTree_();
    /// The member's start: separator, indentation and key. Empty key for list items.
    void beginMember_(std::string_view key);
    void addText_(std::string_view value);
    /// A member or item that `fill` writes; nothing when it writes nothing or throws.
    template <class Child>
    void addChild_(std::string_view key, FillCall<Child> fill);
    /// Where the text stands before a member is begun, to go back to.
    struct Mark {
        std::size_t size;
        std::size_t count;
        std::size_t keys;
        std::uint64_t bloom;
    };
    Mark mark_() const;
    void goBack_(const Mark& mark);
    /// True when a member of that key may be there already, which only the tree can replace.
    bool mayHave_(std::string_view key) const;
    /// Appends the content of a writer that stands alone. False when JSON cannot express it.
    bool appendWriter_(std::string_view key, const JSONWriter& sub);
    bool appendTree_(std::string_view key, const ptree& sub);
    /// Ends a child: closes its text or takes it back. `before` is the parent's mark.
    void closeChild_(JSONWriter& child, std::string_view key, const Mark& before);
    void addToTree_(std::string_view key, const ptree& sub);

  private:
    std::size_t levels_() const { return depth_ + 1; }
    std::string_view content_() const;
    ptree makeTree_() const;
    template <class Take>
    void render_(Take take) const;

    std::unique_ptr<detail::TextBuffer> own_;
    detail::TextBuffer* buffer_;
    mutable std::unique_ptr<ptree> tree_;
    std::size_t begin_ = 0;      ///< where this writer's content begins in the text
    std::size_t keysBegin_ = 0;  ///< where its key hashes begin
    std::size_t count_ = 0;      ///< members so far
    std::uint64_t bloom_ = 0;    ///< which keys have surely not been written
    std::uint32_t depth_ = 0;
    Kind kind_;
    bool inTree_ = false;
};

}  // namespace mav_platform
