// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mav_host/Export.h"

namespace mav_host::xml::detail {

/// Where an item may stand in its element.
enum class Place { Attribute, Element, Either };

class ElementList;

/// One item of an element, without the type of the struct that it fills.
struct Item {
    using Store = std::function<bool(void* object, std::string_view text)>;
    using Open = std::function<void*(void* object)>;

    std::string name;
    Place place = Place::Attribute;
    bool required = false;
    bool many = false;
    std::string expected;                       ///< for errors, see expectedValue
    Store store;                                ///< set for an item with a value
    Open open;                                  ///< set for an element with items of its own
    std::shared_ptr<const ElementList> nested;  ///< set with `open`
    std::uint64_t choiceBit = 0;                ///< set when a choice names the item
};

/// One alternative of an element's choice, as bits of its items.
struct Alternative {
    std::uint64_t required = 0;
    std::uint64_t allowed = 0;
};

/// The items of one element, found by name in constant time.
class MAV_API ElementList {
  public:
    /// Throws HEXAlgException for a name that the list holds already in the same place.
    void add(Item item);
    /// Throws HEXAlgException for a name that is no child element of the list, for more than 64
    /// names, and for a second choice.
    void addChoice(const std::vector<std::vector<std::string>>& alternatives);

    /// Index of the item of this name, `npos` when there is none. The search for an attribute
    /// begins at `guess`, which then stands behind what was found: most documents keep one order.
    std::size_t findAttribute(std::string_view name, std::size_t& guess) const {
        if (items_.size() > FEW_ITEMS) return find(attributes_, name);
        for (std::size_t tried = 0; tried < items_.size(); ++tried) {
            const std::size_t index = guess < items_.size() ? guess : 0;
            guess = index + 1;
            if (items_[index].name == name && items_[index].place != Place::Element) return index;
        }
        return npos;
    }
    std::size_t findElement(std::string_view name) const { return find(elements_, name); }
    const std::vector<Item>& items() const { return items_; }

    /// True when the children present so far fit an alternative / fit one completely.
    bool choiceOpen(std::uint64_t present) const;
    bool choiceDone(std::uint64_t present) const;
    /// The alternatives in words, such as "'a' and optionally 'b', or 'c'"; empty without a choice.
    const std::string& choiceText() const { return choiceText_; }

    /// True when the end of an element can show that something is missing.
    bool checksContent() const { return checksContent_; }
    /// True when the place of the start tag is asked for after the start tag.
    bool needsStart() const { return checksContent_ || content.store || setLine || setColumn; }

    Item content;  ///< text of the element itself, when it counts
    std::function<void(void*, std::size_t)> setLine;    ///< takes the line of the start tag
    std::function<void(void*, std::size_t)> setColumn;  ///< and its column
    std::function<void(void*, std::size_t)> setOrder;   ///< takes the number of the element

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  private:
    /// Lists with more items are searched by hash.
    static constexpr std::size_t FEW_ITEMS = 32;

    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    using Index = std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>>;

    static std::size_t find(const Index& index, std::string_view name) {
        const auto found = index.find(name);
        return found == index.end() ? npos : found->second;
    }

    std::uint64_t choiceBit(std::string_view name);

    std::vector<Item> items_;
    Index attributes_;
    Index elements_;
    std::vector<Alternative> choice_;
    unsigned choiceBits_ = 0;
    bool checksContent_ = false;
    std::string choiceText_;
};

}  // namespace mav_host::xml::detail
