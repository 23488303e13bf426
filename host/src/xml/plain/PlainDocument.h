// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "xml/Parse.h"

namespace mav_host::xml::detail {

/// A document of the plain kind, which the machinery of a whole XML parser would not treat
/// otherwise: ASCII, elements with attributes, text, comments, at most the usual declaration. It
/// has no references, DOCTYPE, processing instructions, CDATA, carriage returns, ">" or line ends
/// in attributes. All else, and all that is not well-formed, is left to the parser from its start,
/// so that texts, places and refusals are the parser's.
class PlainDocument final : public Locator {
  public:
    static constexpr std::size_t MOST_ATTRIBUTES = 64;
    static constexpr std::size_t DEEPEST = 256;

    /// The text must outlive the object.
    explicit PlainDocument(std::string_view text);

    /// True when the document is plain and well-formed. Only then it can be replayed.
    bool check();
    /// Hands on the events that the parser would give. What they throw ends the replay.
    void replay(Events& events);

    /// Of the event that is being handed on. Lines are counted up to there when it is asked.
    Position position() const override;

  private:
    struct Name {
        std::uint32_t begin;
        std::uint32_t size;
    };

    const char* markup(const char* cur);
    const char* startTag(const char* cur);
    const char* attribute(const char* cur, std::uint32_t*& out);
    const char* endTag(const char* cur);
    const char* comment(const char* cur) const;
    const char* content(const char* cur);
    bool isRepeated(const std::uint32_t* first, const std::uint32_t* added);
    std::uint32_t* room(std::size_t words);

    std::uint32_t offset(const char* cur) const { return static_cast<std::uint32_t>(cur - text_); }
    std::string_view piece(std::uint32_t begin, std::uint32_t end) const {
        return {text_ + begin, end - begin};
    }

    const char* text_;
    const char* end_;
    std::vector<std::uint32_t> tape_;  ///< the events' places, in their order
    std::size_t used_ = 0;
    std::vector<Name> open_;
    std::uint64_t namesSeen_ = 0;  ///< a bit for each attribute name of the tag, by its hash
    bool rootSeen_ = false;

    std::uint32_t at_ = 0;  ///< where the current event stands
    mutable std::uint32_t counted_ = 0;
    mutable std::uint32_t lineStart_ = 0;
    mutable std::size_t line_ = 1;
};

}  // namespace mav_host::xml::detail
