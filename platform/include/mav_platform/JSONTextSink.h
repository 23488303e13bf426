// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace mav_platform {
class JSONWriter;
}

namespace mav_platform::json {

class Document;
struct KeyLook;
struct KeyPlace;
class KeySet;
struct SharedText;

/// Inner part of the writers: one level of pretty JSON text, where members go straight in as long
/// as text can hold them. The level of a child is begun inside its parent's text. Keys are to be
/// UTF-8; a list ignores them.
class TextSink {
  public:
    using ptree = boost::property_tree::ptree;
    enum class Existing : std::uint8_t { REPLACED, KEPT };

    /// A text of its own, with `writer` as its innermost open one.
    TextSink(JSONWriter& writer, bool list);
    /// The level of a child in the text of `parent`.
    TextSink(JSONWriter& writer, TextSink& parent, std::string_view key, const KeyLook& look,
             bool list);
    TextSink(const TextSink&) = delete;
    TextSink& operator=(const TextSink&) = delete;
    ~TextSink();

    /// The innermost open writer of the text.
    JSONWriter*& active() const;
    bool isList() const { return list_; }
    bool ownsText() const { return ownsText_; }
    bool shares(const TextSink& other) const { return shared_ == other.shared_; }
    bool empty() const;
    /// True when a member of that path can go into text.
    bool takes(std::string_view path) const;

    /// False, with nothing written, when the key is there already and its value must be replaced.
    bool addScalar(std::string_view key, std::uint64_t hash, std::string_view value,
                   Existing existing);
    /// Copies another text, moved to the depth it gets here.
    void addCopy(std::string_view key, const TextSink& sub);
    /// False, with nothing written, when the tree holds what text cannot, or not as it stands.
    bool addTree(std::string_view key, const ptree& sub);

    /// Ends the level of a child, which `parent` then knows.
    void close(TextSink& parent);
    /// Takes what a child has written out of its parent's text.
    void forget() noexcept;
    /// Forgets the members.
    void clear() noexcept;
    /// Goes on in a text of its own; `parent` is the innermost writer of the text that is left.
    void moveApart(JSONWriter& writer, JSONWriter* parent);

    /// The members as a tree.
    ptree tree() const;
    /// True when `text` can be asked: an object in a text of its own.
    bool isDocument() const;
    /// The whole text, valid until the next member.
    std::string_view text() const;
    /// Moves the whole text to `out` and leaves the sink empty.
    void drainTo(char* out);

    /// From its beginning on, takes members as the cells of a document; what needs a tree throws.
    void becomeCompact();
    /// The document that was filled, which leaves the sink of no use.
    Document takeDocument();

  private:
    std::size_t memberRoom(std::string_view key) const;
    char* putMemberStart(char* out, std::string_view key, KeyPlace& place) const;
    void beginCompact(std::string_view key, const KeyLook& look);
    bool addCompact(std::string_view key, std::uint64_t hash, std::string_view value,
                    Existing existing);
    void makeRoomForKey();
    bool knows(const KeyPlace& place);
    void remember(const KeyPlace& place) noexcept;

    SharedText* shared_;     ///< by a writer of its own and the open children below it
    std::size_t mark_ = 0;   ///< size of the text before this level
    std::size_t start_ = 0;  ///< size of the text before the first member
    std::size_t firstKey_ = 0;
    std::uint64_t keyMask_ = 0;
    std::unique_ptr<KeySet> manyKeys_;
    std::uint32_t depth_ = 0;
    std::uint32_t cell_ = 0;  ///< the level's own, in a compact document
    const bool list_;
    bool ownsText_ = true;
    bool keyed_ = false;  ///< the level stands under a key
};

}  // namespace mav_platform::json
