// SPDX-License-Identifier: Apache-2.0
#include "services/ObjectPath.h"

#include <algorithm>
#include <charconv>

#include "services/Children.h"

namespace mav::platform::paths {

namespace {

constexpr std::string_view EVERY_MARKS[] = {"[]", "[*]", ".."};

/// The size of the mark "[]" or "[*]" that the text begins with; 0 for none.
std::size_t markAt(std::string_view text) {
    if (text.starts_with("[]")) return 2;
    return text.starts_with("[*]") ? 3 : 0;
}

std::string withoutMarks(const std::string& path) {
    std::string plain;
    plain.reserve(path.size());
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t size = markAt(std::string_view(path).substr(at));
        if (size == 0) plain += path[at];
        at += size == 0 ? 1 : size;
    }
    return plain;
}

/// The index in brackets at the start of the text, and where the text goes on behind it.
std::optional<std::uint32_t> indexAt(std::string_view text, std::size_t& size) {
    std::uint32_t index = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 1, end, index);
    if (error != std::errc() || stop == end || *stop != ']') return std::nullopt;
    size = static_cast<std::size_t>(stop - text.data()) + 1;
    return index;
}

TreePlace child(const ptree& node, std::string_view key) {
    const auto found = node.find(std::string(key));
    return found != node.not_found() ? &found->second : nullptr;
}
NodePlace child(const Node& node, std::string_view key) {
    return node.find(key);
}

TreePlace element(const ptree& node, std::uint32_t index) {
    if (!isList(node)) return nullptr;
    for (const auto& [key, item] : node)
        if (index-- == 0) return &item;
    return nullptr;
}
NodePlace element(const Node& node, std::uint32_t index) {
    if (!node.isList()) return std::nullopt;
    for (const Node& item : node)
        if (index-- == 0) return item;
    return std::nullopt;
}

template <class Place>
Place walk(Place place, std::string_view path) {
    while (place && !path.empty()) {
        const std::size_t length = path.find('.');
        place = child(*place, path.substr(0, length));
        path.remove_prefix(length == std::string_view::npos ? path.size() : length + 1);
    }
    return place;
}

template <class Place>
Place follow(Place place, const std::string& path) {
    Fragments fragments;
    NativeObjectService::scanJsonPath(path, fragments);
    for (const auto& fragment : fragments) {
        place = walk(place, fragment.path);
        if (place && fragment.hasIndex) place = element(*place, fragment.index);
        if (!place) break;
    }
    return place;
}

/// Puts the elements of a list behind `out`, each with its place in the list.
template <class Place>
void addElements(const At<Place>& list, std::vector<At<Place>>& out) {
    std::size_t index = 0;
    forEachChild(*list.place, [&](std::string_view, const auto& item) {
        out.push_back({placeOf(item), list.indices + "[" + std::to_string(index++) + "]"});
    });
}

/// Where the next mark begins, and its length.
std::size_t nextMark(std::string_view path, std::size_t& size) {
    std::size_t first = std::string_view::npos;
    for (const std::string_view mark : EVERY_MARKS) {
        const std::size_t at = path.find(mark);
        if (at < first) {
            first = at;
            size = mark.size();
        }
    }
    return first;
}

template <class Place>
std::vector<At<Place>> spread(std::vector<At<Place>>& places) {
    std::vector<At<Place>> elements;
    for (At<Place>& at : places) {
        if (isList(*at.place)) {
            addElements(at, elements);
        } else {
            elements.push_back(std::move(at));
        }
    }
    return elements;
}

template <class Place>
std::vector<At<Place>> followAll(Place root, std::string_view path) {
    std::vector<At<Place>> places{{root, {}}};
    for (bool more = true; more && !places.empty();) {
        std::size_t size = 0;
        const std::size_t mark = nextMark(path, size);
        more = mark != std::string_view::npos;
        const std::string piece(path.substr(0, mark));
        std::vector<At<Place>> next;
        for (At<Place>& at : places)
            if (Place found = follow(at.place, piece)) {
                next.push_back({found, std::move(at.indices)});
            }
        places = more ? spread(next) : std::move(next);
        if (!more) break;
        const bool bracket = path[mark] == '[';
        path.remove_prefix(mark + size);
        if (bracket && path.starts_with('.')) path.remove_prefix(1);
    }
    return places;
}

/// Behind the legacy root, and the marks that stand with it, at the start of the path; npos for a
/// path that has another root.
std::size_t legacyEnd(std::string_view path) {
    const std::string_view root = LEGACY_ROOT;
    std::size_t at = 0;
    for (std::size_t matched = 0;; ++matched, ++at) {
        for (std::size_t size = 0; (size = markAt(path.substr(at))) != 0;) at += size;
        if (matched == root.size()) break;
        if (at == path.size() || path[at] != root[matched]) return std::string_view::npos;
    }
    return at == path.size() || path[at] == '.' ? at : std::string_view::npos;
}

template <class Tree>
std::string rootOf(const Tree& root) {
    for (const char* path : {DEFAULT_ROOT, PARTITION_ROOT, PARTITION_ROOT_ALT, LEGACY_ROOT})
        if (find(root, path)) return path;
    return DEFAULT_ROOT;
}

}  // namespace

TreePlace find(const ptree& root, const std::string& path) {
    return follow(placeOf(root), path);
}
NodePlace find(const Node& root, const std::string& path) {
    return follow(placeOf(root), path);
}

bool isList(const ptree& node) {
    return !node.empty() &&
           std::all_of(node.begin(), node.end(),
                       [](const ptree::value_type& item) { return item.first.empty(); });
}
bool isList(const Node& node) {
    return node.hasChildren() && node.isList();
}

std::vector<At<TreePlace>> findAll(const ptree& root, const std::string& path) {
    return followAll(placeOf(root), path);
}
std::vector<At<NodePlace>> findAll(const Node& root, const std::string& path) {
    return followAll(placeOf(root), path);
}

bool marksEvery(const std::string& path) {
    std::size_t size = 0;
    return nextMark(path, size) != std::string_view::npos;
}

bool hasBoostArray(const std::string& path) {
    return path.find("..") != std::string::npos;
}

bool isLegacy(const std::string& path) {
    return legacyEnd(path) != std::string_view::npos;
}

std::string replaceLegacy(const std::string& path, const std::string& root) {
    const std::size_t end = legacyEnd(path);
    return end != std::string_view::npos ? root + path.substr(end) : path;
}

std::string actualRoot(const ptree& root) {
    return rootOf(root);
}

std::string withActualRoot(const ptree& root, const std::string& path) {
    return isLegacy(path) ? replaceLegacy(path, rootOf(root)) : path;
}
std::string withActualRoot(const Node& root, const std::string& path) {
    return isLegacy(path) ? replaceLegacy(path, rootOf(root)) : path;
}

ptree objectsAt(const Node& root, const std::string& path, bool& found) {
    const std::string actual = withActualRoot(root, path);
    if (!hasBoostArray(actual)) {
        const NodePlace node = find(root, actual);
        found = node.has_value();
        if (found) return node->tree();
        if (!marksEvery(actual)) return {};
    }
    ptree list;
    for (const auto& at : findAll(root, actual)) {
        ptree item = at.place->tree();
        list.push_back({"", ptree()})->second.swap(item);
    }
    found = !list.empty();
    return list;
}

}  // namespace mav::platform::paths

namespace mav::platform {

void NativeObjectService::scanJsonPath(const std::string& path, HSTVector<PathFragment>& out) {
    const std::string plain = paths::withoutMarks(path);
    PathFragment fragment;
    bool pending = false;
    for (std::size_t at = 0; at < plain.size();) {
        std::size_t size = 0;
        const auto index = plain[at] == '['
                               ? paths::indexAt(std::string_view(plain).substr(at), size)
                               : std::nullopt;
        pending = !index;
        if (!index) {
            fragment.path += plain[at++];
            continue;
        }
        fragment.hasIndex = true;
        fragment.index = *index;
        out.push_back(std::move(fragment));
        fragment = PathFragment();
        at += size;
        if (at < plain.size() && plain[at] == '.') ++at;
    }
    if (pending) out.push_back(std::move(fragment));
}

}  // namespace mav::platform
