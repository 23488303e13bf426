// SPDX-License-Identifier: Apache-2.0
#include "xml/Binder.h"

#include "mav_host/Nearest.h"
#include "mav_host/Printable.h"

namespace mav_host::xml::detail {
namespace {

constexpr std::size_t SHOWN_BYTES = 80;

/// A foreign text for an error: quoted, cut to a bearable length, on one line.
std::string quoted(std::string_view text) {
    const std::string_view shown = beginning(text, SHOWN_BYTES);
    std::string out = "'";
    out += printable(shown);
    return out += shown.size() < text.size() ? "...'" : "'";
}

std::string clipped(std::string_view name) {
    const std::string shown = quoted(name);
    return shown.substr(1, shown.size() - 2);
}

std::string element(std::string_view name) {
    return "element " + quoted(name);
}
std::string attribute(std::string_view name) {
    return "attribute " + quoted(name);
}

[[noreturn]] void stop(BindingError::Kind kind, const Position& at, const std::string& text) {
    throw BindingError(kind, text, at.line, at.column);
}

/// Namespace declarations and what the XML standards themselves put on elements.
bool isStandard(std::string_view attribute) {
    return attribute.starts_with('x') &&
           (attribute == "xmlns" || attribute.starts_with("xmlns:") ||
            attribute.starts_with("xml:") || attribute.starts_with("xsi:"));
}

std::string missing(const Item& item) {
    const char* kind = item.place == Place::Attribute ? "required attribute "
                       : item.place == Place::Element ? "required element "
                                                      : "required attribute or element ";
    return kind + quoted(item.name) + " is missing";
}

}  // namespace

Binder::Binder(const Document& document, void* root, Findings* findings, const Locator& locator)
    : document_(document), root_(root), findings_(findings), locator_(locator) {}

std::string_view Binder::compared(std::string_view name) const {
    if (document_.names == Names::AsWritten) return name;
    const std::size_t colon = name.rfind(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

void Binder::start(std::string_view name, Attributes attributes) {
    if (open_ + ignored_ >= document_.limits.depth)
        stop(BindingError::Kind::Limit, locator_.position(),
             element(name) + ": nested deeper than " + std::to_string(document_.limits.depth) +
                 " elements");
    if (ignored_ > 0)
        ++ignored_;
    else if (open_ == 0)
        startRoot(name, attributes);
    else
        startChild(name, attributes);
}

void Binder::startRoot(std::string_view name, Attributes attributes) {
    if (!document_.root.empty() && compared(name) != document_.root)
        stop(BindingError::Kind::Format, locator_.position(),
             element(name) + ": the root element must be " + quoted(document_.root));
    open(name, document_.list.get(), nullptr, root_, attributes);
}

void Binder::startChild(std::string_view name, Attributes attributes) {
    Frame& parent = frames_[open_ - 1];
    const std::size_t index =
        parent.list != nullptr ? parent.list->findElement(compared(name)) : ElementList::npos;
    if (index == ElementList::npos) {
        find(Finding::Kind::Element, name, parent);
        ignored_ = 1;
        return;
    }
    const Item& item = parent.list->items()[index];
    if (parent.seen[index] != 0 && !item.many) {
        refuse(locator_.position(),
               element(parent.name) + ": " + element(name) + " occurs a second time");
        ignored_ = 1;
        return;
    }
    parent.seen[index] = 1;
    if (!parent.list->choiceOpen(parent.present | item.choiceBit)) {
        refuse(locator_.position(), element(parent.name) + ": " + element(name) +
                                        " does not go with the elements before it; allowed is " +
                                        parent.list->choiceText());
        ignored_ = 1;
        return;
    }
    parent.present |= item.choiceBit;
    if (item.open)
        open(name, item.nested.get(), nullptr, item.open(parent.object), attributes);
    else
        open(name, nullptr, &item, parent.object, attributes);
}

void Binder::open(std::string_view name, const ElementList* list, const Item* value, void* object,
                  Attributes attributes) {
    if (++elements_ > document_.limits.elements)
        stop(BindingError::Kind::Limit, locator_.position(),
             element(name) + ": the document has more than " +
                 std::to_string(document_.limits.elements) + " elements");
    if (frames_.size() == open_) frames_.emplace_back();
    Frame& frame = frames_[open_++];
    frame.list = list;
    frame.value = value;
    frame.object = object;
    frame.name.assign(name);
    frame.text.clear();
    // Asking costs; errors of the start tag ask when they arise.
    if (list == nullptr || list->needsStart()) frame.start = locator_.position();
    frame.present = 0;
    if (list == nullptr) {
        ignoreAttributes(frame, attributes);
        return;
    }
    if (list->content.store) frame.value = &list->content;
    frame.seen.assign(list->items().size(), 0);
    if (list->setLine) list->setLine(object, frame.start.line);
    if (list->setColumn) list->setColumn(object, frame.start.column);
    if (list->setOrder) list->setOrder(object, elements_);
    bindAttributes(frame, attributes);
}

void Binder::bindAttributes(Frame& frame, Attributes attributes) {
    std::size_t guess = 0;
    for (const auto& [name, text] : attributes) {
        if (isStandard(name)) continue;
        const std::size_t index = frame.list->findAttribute(compared(name), guess);
        if (index == ElementList::npos) {
            find(Finding::Kind::Attribute, name, frame);
            continue;
        }
        const Item& item = frame.list->items()[index];
        if (frame.seen[index] != 0) {
            refuse(locator_.position(),
                   element(frame.name) + ": " + attribute(name) + " occurs a second time");
            continue;
        }
        frame.seen[index] = 1;
        if (!item.store(frame.object, text))
            refuse(locator_.position(), attribute(name) + " of " + element(frame.name) + ": " +
                                            quoted(text) + " is not " + item.expected);
    }
    checkAttributes(frame);
}

void Binder::ignoreAttributes(const Frame& frame, Attributes attributes) {
    for (const AttributeView& attribute : attributes)
        if (!isStandard(attribute.name)) find(Finding::Kind::Attribute, attribute.name, frame);
}

void Binder::checkAttributes(const Frame& frame) {
    const std::vector<Item>& items = frame.list->items();
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].required && items[i].place == Place::Attribute && frame.seen[i] == 0)
            refuse(locator_.position(), element(frame.name) + ": " + missing(items[i]));
}

void Binder::checkContent(const Frame& frame) {
    const std::vector<Item>& items = frame.list->items();
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i].required && frame.seen[i] == 0)
            refuse(frame.start, element(frame.name) + ": " + missing(items[i]));
    if (!frame.list->choiceDone(frame.present))
        refuse(frame.start, element(frame.name) + ": it must hold " + frame.list->choiceText());
}

void Binder::characters(std::string_view text) {
    if (ignored_ > 0 || open_ == 0) return;
    Frame& frame = frames_[open_ - 1];
    if (frame.value != nullptr) frame.text.append(text);
}

void Binder::end() {
    if (ignored_ > 0) {
        --ignored_;
        return;
    }
    Frame& frame = frames_[--open_];
    if (frame.list != nullptr && frame.list->checksContent()) checkContent(frame);
    if (frame.value == nullptr) return;
    const Item& item = *frame.value;
    if (frame.list != nullptr && frame.text.empty()) {
        if (item.required) refuse(frame.start, element(frame.name) + ": its text is missing");
        return;
    }
    if (!item.store(frame.object, frame.text))
        refuse(frame.start,
               element(frame.name) + ": " + quoted(frame.text) + " is not " + item.expected);
}

void Binder::refuse(const Position& at, const std::string& text) {
    if (findings_ == nullptr || !findings_->keepFaults) stop(BindingError::Kind::Format, at, text);
    if (findings_->faults.size() >= Findings::LIMIT) {
        ++findings_->moreFaults;
        return;
    }
    findings_->faults.push_back({text, at.line, at.column});
}

namespace {

/// The name of the list's items of that kind that is nearest to the given one.
std::string meantBy(Finding::Kind kind, std::string_view name, const ElementList* list) {
    if (list == nullptr) return {};
    const Place other = kind == Finding::Kind::Element ? Place::Attribute : Place::Element;
    std::vector<std::string> names;
    for (const Item& item : list->items()) {
        if (item.place != other) names.push_back(item.name);
    }
    return nearest(name, names);
}

}  // namespace

void Binder::find(Finding::Kind kind, std::string_view name, const Frame& parent) {
    if (findings_ == nullptr) return;
    if (findings_->list.size() >= Findings::LIMIT) {
        ++findings_->more;
        return;
    }
    const Position at = locator_.position();
    findings_->list.push_back({kind, clipped(name), clipped(parent.name),
                               meantBy(kind, compared(name), parent.list), at.line, at.column});
}

}  // namespace mav_host::xml::detail
