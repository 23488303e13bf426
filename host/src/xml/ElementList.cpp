// SPDX-License-Identifier: Apache-2.0
#include "mav_host/xml/ElementList.h"

#include <utility>

#include "mav_host/HEXError.h"

namespace mav_host::xml::detail {
namespace {

[[noreturn]] void refuse(const std::string& text) {
    throw HEXAlgException("ElementList::add() - " + text);
}

}  // namespace

void ElementList::add(Item item) {
    const std::size_t index = items_.size();
    const bool clash =
        (item.place != Place::Element && !attributes_.emplace(item.name, index).second) ||
        (item.place != Place::Attribute && !elements_.emplace(item.name, index).second);
    if (clash) refuse("item '" + item.name + "' is listed already");
    checksContent_ = checksContent_ || (item.required && item.place != Place::Attribute);
    items_.push_back(std::move(item));
}

void ElementList::addChoice(const std::vector<std::vector<std::string>>& alternatives) {
    if (!choice_.empty()) refuse("an element has one choice at most");
    checksContent_ = true;
    for (const std::vector<std::string>& names : alternatives) {
        if (!choiceText_.empty()) choiceText_ += ", or ";
        Alternative alternative;
        const char* joint = "";
        for (std::string_view name : names) {
            const bool optional = name.ends_with('?');
            if (optional) name.remove_suffix(1);
            const std::uint64_t bit = choiceBit(name);
            alternative.allowed |= bit;
            if (!optional) alternative.required |= bit;
            choiceText_.append(joint).append(optional ? "optionally '" : "'").append(name) += '\'';
            joint = " and ";
        }
        choice_.push_back(alternative);
    }
}

std::uint64_t ElementList::choiceBit(std::string_view name) {
    const std::size_t index = findElement(name);
    if (index == npos) refuse("a choice names the unknown element '" + std::string(name) + "'");
    std::uint64_t& bit = items_[index].choiceBit;
    if (bit == 0) {
        if (choiceBits_ == 64) refuse("a choice names more than 64 elements");
        bit = std::uint64_t{1} << choiceBits_++;
    }
    return bit;
}

bool ElementList::choiceOpen(std::uint64_t present) const {
    for (const Alternative& alternative : choice_)
        if ((present & ~alternative.allowed) == 0) return true;
    return choice_.empty();
}

bool ElementList::choiceDone(std::uint64_t present) const {
    for (const Alternative& alternative : choice_)
        if ((present & ~alternative.allowed) == 0 && (alternative.required & ~present) == 0)
            return true;
    return choice_.empty();
}

}  // namespace mav_host::xml::detail
