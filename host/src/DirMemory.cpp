// SPDX-License-Identifier: Apache-2.0
#include "DirMemory.h"

#include <dirent.h>

#include <algorithm>
#include <utility>

namespace mav_host {
namespace {

constexpr unsigned char UNSEEN = DT_UNKNOWN;

thread_local DirMemory* theMemory = nullptr;

unsigned char typeIn(const DirItems& items, std::string_view name) {
    const auto found = std::lower_bound(
        items.begin(), items.end(), name,
        [](const DirItem& item, std::string_view text) { return item.name < text; });
    return found != items.end() && found->name == name ? found->type : UNSEEN;
}

/// The path's parent and last component. Both are empty when there is no parent to be known.
std::pair<std::string_view, std::string_view> split(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos) return {};
    return {path.substr(0, std::max<std::size_t>(slash, 1)), path.substr(slash + 1)};
}

}  // namespace

DirMemory* DirMemory::current() {
    return theMemory;
}

DirMemory* DirMemory::install(DirMemory* memory) {
    return std::exchange(theMemory, memory);
}

const DirMemory::Dir* DirMemory::find(std::string_view dir) const {
    if (last_ != nullptr && last_->first == dir) return &last_->second;
    const auto found = dirs_.find(dir);
    if (found == dirs_.end()) return nullptr;
    last_ = &*found;
    return &found->second;
}

DirMemory::Dir& DirMemory::entry(std::string_view dir) {
    const auto found = dirs_.find(dir);
    auto& known = found != dirs_.end() ? *found : *dirs_.emplace(dir, Dir()).first;
    last_ = &known;
    return known.second;
}

std::shared_ptr<const DirItems> DirMemory::items(const DirIdentity& identity) const {
    const auto found = items_.find(identity);
    return found != items_.end() ? found->second : nullptr;
}

void DirMemory::keep(std::string_view dir, Dir known) {
    items_.emplace(known.identity, known.items);
    entry(dir) = std::move(known);
}

unsigned char DirMemory::typeOf(std::string_view path) const {
    const auto [parent, name] = split(path);
    const Dir* const known = find(parent);
    return known != nullptr && known->items ? typeIn(*known->items, name) : UNSEEN;
}

bool DirMemory::isCanonical(std::string_view path) const {
    const Dir* const dir = find(path);
    if (dir != nullptr && dir->canonical) return true;
    const auto [parent, name] = split(path);
    const Dir* const known = find(parent);
    if (known == nullptr || !known->canonical || !known->items) return false;
    // Below a canonical directory, whatever is no link is canonical too.
    const unsigned char type = typeIn(*known->items, name);
    return type == DT_REG || type == DT_DIR;
}

}  // namespace mav_host
