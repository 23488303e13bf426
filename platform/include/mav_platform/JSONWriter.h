// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

namespace mav_platform {

class JSONSerializable;
namespace json {
struct KeyPlace;
struct SharedText;
struct WriterExtra;
}  // namespace json

/// Common base of the writers. To its users a writer is a property tree of texts. Inside, members
/// go straight into JSON text; the tree is made when somebody asks for it, or when an operation
/// needs the tree's own rules (dotted keys, replacing a value). A writer belongs to one thread.
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
    /// The same text where it lies, without a terminating null. Valid until the writer is changed,
    /// asked for its text again, or destroyed.
    std::string_view textView() const;
    /// The same text, NUL-terminated, in memory made with array new that the caller owns. Leaves
    /// the writer empty: a large text is given back to the system while it is copied.
    std::unique_ptr<char[]> newText();

  protected:
    /// A writer of its own.
    explicit JSONWriter(bool list);
    /// A child that writes into the text of `parent`, under `key`, as it stands, when the parent
    /// has keys. Until it is finished or destroyed the parent takes no members. The key must
    /// outlive it.
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
    enum class Existing : std::uint8_t { REPLACED, KEPT };

    void checkIdle() const;
    json::WriterExtra& extra() const;
    void useTree();
    ptree parsedTree() const;
    void clear() noexcept;
    void leaveParent() noexcept;
    void rollBack() noexcept;
    void finishText();
    void finishTree();
    static std::uint64_t hashOf(std::string_view key);
    std::size_t memberRoom(std::string_view key) const;
    char* putMemberStart(char* out, std::string_view key, json::KeyPlace& place) const;
    bool appendScalar(std::string_view key, std::uint64_t hash, std::string_view value,
                      Existing existing);
    void appendCopy(std::string_view key, const JSONWriter& sub);
    bool appendRendered(std::string_view key, const ptree& sub);
    bool takes(std::string_view key) const;
    void appendChild(std::string_view key, ptree& sub);
    ptree& addNode(std::string_view key);
    ptree& addNodeAtPath(std::string_view path);
    void makeRoomForKey();
    bool knows(const json::KeyPlace& place) const;
    void remember(const json::KeyPlace& place) noexcept;

    json::SharedText* out_;  ///< shared by a writer of its own and the open children below it
    JSONWriter* parent_ = nullptr;
    std::string_view key_;  ///< of a child, in its parent
    std::uint64_t keyHash_ = 0;
    std::size_t mark_ = 0;   ///< size of the text before this child
    std::size_t start_ = 0;  ///< size of the text before this writer's first member
    std::size_t firstKey_ = 0;
    std::uint64_t keyMask_ = 0;
    std::uint32_t depth_ = 0;
    const bool list_;
    bool ownsText_ = true;
    bool treeMode_ = false;
    mutable std::unique_ptr<json::WriterExtra> extra_;
};

}  // namespace mav_platform
