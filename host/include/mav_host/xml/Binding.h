// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "mav_host/Export.h"
#include "mav_host/xml/BindingError.h"
#include "mav_host/xml/ElementList.h"
#include "mav_host/xml/Values.h"

/// Binds XML text to plain structs. A format is its structs plus, for each, the list of its items:
///
///     Items<Point> point;
///     point.attribute("m:x", &Point::x, Need::Required).attribute("m:y", &Point::y);
///     Items<Shape> shape;
///     shape.attribute("m:name", &Shape::name).element("m:point", &Shape::points, point);
///     static const Format<Shape> format("m:shape", shape);
///     Shape read = format.parseFile(path);
///
/// The member's type says the rest: a text, `Decimal`, an integer or bool is a value of that type,
/// an optional tells absence from an empty value, a vector takes every occurrence in document
/// order. Any other item may occur once; a second occurrence is an error.
namespace mav_host::xml {

enum class Need { Optional, Required };

/// How names are compared: as written with their prefix, or by what stands behind the prefix.
enum class Names { AsWritten, WithoutPrefix };

/// What a document may cost before it is refused.
struct MAV_API Limits {
    std::size_t bytes = std::size_t{256} << 20;  ///< size of the document
    std::size_t depth = 256;                     ///< elements inside each other, the root included
    std::size_t elements = 1'000'000;            ///< elements that the format's lists know
};

/// Something in a document that its format does not know. Loading ignores it.
struct MAV_API Finding {
    enum class Kind { Element, Attribute };
    Kind kind = Kind::Element;
    std::string name;
    std::string parent;  ///< the element that holds it
    std::string meant;   ///< the item of the format that its name is near to; mostly empty
    std::size_t line = 0;
    std::size_t column = 0;  ///< of the element that it is or stands in
};

/// Something that the format does not allow.
struct MAV_API Fault {
    std::string text;
    std::size_t line = 0;
    std::size_t column = 0;
};

/// The first findings of a document in its order, and how many more there were. Of an unknown
/// element only itself is found, nothing inside it. Namespace declarations and attributes of the
/// prefixes "xml" and "xsi" are never findings.
struct MAV_API Findings {
    static constexpr std::size_t LIMIT = 1000;
    std::vector<Finding> list;
    std::size_t more = 0;
    /// Set by who wants every fault: faults of the items are then kept here, as many as findings,
    /// and what they concern is left out of the structs, instead of the first being thrown. What is
    /// not well-formed, has another root or exceeds a limit is thrown as ever.
    bool keepFaults = false;
    std::vector<Fault> faults;
    std::size_t moreFaults = 0;
};

namespace detail {

/// How a member holds its value: once, once or absent, or every occurrence.
template <class M>
struct Slot {
    using Value = M;
    static constexpr bool many = false;
    static Value& fresh(M& member) { return member; }
};
template <class V>
struct Slot<std::optional<V>> {
    using Value = V;
    static constexpr bool many = false;
    static Value& fresh(std::optional<V>& member) { return member.emplace(); }
};
template <class V>
struct Slot<std::vector<V>> {
    using Value = V;
    static constexpr bool many = true;
    static Value& fresh(std::vector<V>& member) { return member.emplace_back(); }
};

/// A format without the types of its structs.
struct Document {
    std::string root;  ///< empty: any name
    Names names = Names::AsWritten;
    Limits limits;
    std::shared_ptr<const ElementList> list;
};

MAV_API void bindFile(const Document& document, const std::string& path, void* root,
                      Findings* findings);
MAV_API void bindText(const Document& document, std::string_view text, void* root,
                      Findings* findings);

}  // namespace detail

/// The items of the element that fills a `T`. Copies share one list, so a list is complete before
/// it is handed on. Every operation answers the list itself.
template <class T>
class Items {
  public:
    /// An attribute with a value.
    template <class M>
    Items& attribute(const std::string& name, M T::*member, Need need = Need::Optional) {
        static_assert(!detail::Slot<M>::many, "an attribute occurs once");
        return value(name, detail::Place::Attribute, member, need);
    }
    /// A child element whose text is the value.
    template <class M>
    Items& element(const std::string& name, M T::*member, Need need = Need::Optional) {
        return value(name, detail::Place::Element, member, need);
    }
    /// A value that is written as attribute or as child element.
    template <class M>
    Items& either(const std::string& name, M T::*member, Need need = Need::Optional) {
        static_assert(!detail::Slot<M>::many, "an item of two places occurs once");
        return value(name, detail::Place::Either, member, need);
    }
    /// A child element with items of its own.
    template <class M>
    Items& element(const std::string& name, M T::*member,
                   const Items<typename detail::Slot<M>::Value>& nested,
                   Need need = Need::Optional) {
        detail::Item item = make(name, detail::Place::Element, detail::Slot<M>::many, need);
        item.open = [member](void* object) -> void* {
            return &detail::Slot<M>::fresh(static_cast<T*>(object)->*member);
        };
        item.nested = nested.list();
        list_->add(std::move(item));
        return *this;
    }
    /// The text directly inside the element, its pieces joined. Stored only when there is some.
    template <class M>
    Items& text(M T::*member, Need need = Need::Optional) {
        list_->content = valueItem(std::string(), detail::Place::Element, member, need);
        return *this;
    }
    /// The line of the element's start tag.
    Items& line(std::size_t T::*member) {
        list_->setLine = [member](void* object, std::size_t line) {
            static_cast<T*>(object)->*member = line;
        };
        return *this;
    }
    /// The column of the element's start tag.
    Items& column(std::size_t T::*member) {
        list_->setColumn = [member](void* object, std::size_t column) {
            static_cast<T*>(object)->*member = column;
        };
        return *this;
    }
    /// The number of the element in document order, for a format in which the order of differently
    /// named elements counts.
    Items& order(std::size_t T::*member) {
        list_->setOrder = [member](void* object, std::size_t number) {
            static_cast<T*>(object)->*member = number;
        };
        return *this;
    }
    /// Exactly one of the alternatives occurs. Each is the names of child elements listed before; a
    /// "?" behind a name makes it optional.
    Items& choice(const std::vector<std::vector<std::string>>& alternatives) {
        list_->addChoice(alternatives);
        return *this;
    }

    std::shared_ptr<const detail::ElementList> list() const { return list_; }

  private:
    static detail::Item make(const std::string& name, detail::Place place, bool many, Need need) {
        detail::Item item;
        item.name = name;
        item.place = place;
        item.many = many;
        item.required = need == Need::Required;
        return item;
    }
    template <class M>
    static detail::Item valueItem(const std::string& name, detail::Place place, M T::*member,
                                  Need need) {
        detail::Item item = make(name, place, detail::Slot<M>::many, need);
        item.expected = expectedValue<typename detail::Slot<M>::Value>();
        item.store = [member](void* object, std::string_view text) {
            return readValue(text, detail::Slot<M>::fresh(static_cast<T*>(object)->*member));
        };
        return item;
    }
    template <class M>
    Items& value(const std::string& name, detail::Place place, M T::*member, Need need) {
        list_->add(valueItem(name, place, member, need));
        return *this;
    }

    std::shared_ptr<detail::ElementList> list_ = std::make_shared<detail::ElementList>();
};

/// A document format: the root's name and items. Immutable, usable by several threads.
template <class T>
class Format {
  public:
    /// An empty root name lets the root have any name. With `Names::WithoutPrefix` the lists name
    /// their items without prefix.
    Format(std::string root, const Items<T>& items, Names names = Names::AsWritten,
           const Limits& limits = Limits())
        : document_{std::move(root), names, limits, items.list()} {}

    /// Reads the file piece by piece. Throws BindingError; line 0 when the path cannot be read or
    /// is a directory. What the format does not know is added to `findings` when they are given.
    T parseFile(const std::string& path, Findings* findings = nullptr) const {
        T root{};
        detail::bindFile(document_, path, &root, findings);
        return root;
    }
    /// Reads a document in memory. Throws BindingError as above.
    T parseText(std::string_view text, Findings* findings = nullptr) const {
        T root{};
        detail::bindText(document_, text, &root, findings);
        return root;
    }

  private:
    detail::Document document_;
};

}  // namespace mav_host::xml
