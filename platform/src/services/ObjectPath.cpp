// SPDX-License-Identifier: Apache-2.0
#include "services/ObjectPath.h"

#include <charconv>

namespace mav::platform::paths {

namespace {

constexpr std::string_view EVERY_MARKS[] = {"[]", "[*]", ".."};

std::string withoutMarks(const std::string& path) {
    std::string plain;
    plain.reserve(path.size());
    for (std::size_t at = 0; at < path.size();) {
        const std::string_view rest = std::string_view(path).substr(at);
        if (rest.starts_with("[]")) {
            at += 2;
        } else if (rest.starts_with("[*]")) {
            at += 3;
        } else {
            plain += path[at++];
        }
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
    for (const auto& [key, item] : node)
        if (key.empty() && index-- == 0) return &item;
    return nullptr;
}
NodePlace element(const Node& node, std::uint32_t index) {
    for (const Node& item : node)
        if (item.key().empty() && index-- == 0) return item;
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

void addElements(TreePlace place, std::vector<TreePlace>& out) {
    for (const auto& [key, item] : *place)
        if (key.empty()) out.push_back(&item);
}
void addElements(const NodePlace& place, std::vector<NodePlace>& out) {
    for (const Node& item : *place)
        if (item.key().empty()) out.emplace_back(item);
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
std::vector<Place> spread(const std::vector<Place>& places) {
    std::vector<Place> elements;
    for (const Place& place : places) {
        if (isList(*place)) {
            addElements(place, elements);
        } else {
            elements.push_back(place);
        }
    }
    return elements;
}

template <class Place>
std::vector<Place> followAll(Place root, std::string_view path) {
    std::vector<Place> places{root};
    for (bool more = true; more && !places.empty();) {
        std::size_t size = 0;
        const std::size_t mark = nextMark(path, size);
        more = mark != std::string_view::npos;
        const std::string piece(path.substr(0, mark));
        std::vector<Place> next;
        for (const Place& place : places)
            if (Place found = follow(place, piece)) next.push_back(found);
        places = more ? spread(next) : std::move(next);
        if (!more) break;
        const bool bracket = path[mark] == '[';
        path.remove_prefix(mark + size);
        if (bracket && path.starts_with('.')) path.remove_prefix(1);
    }
    return places;
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
    return !node.empty() && node.front().first.empty();
}
bool isList(const Node& node) {
    return node.hasChildren() && node.begin()->key().empty();
}

std::vector<TreePlace> findAll(const ptree& root, const std::string& path) {
    return followAll(placeOf(root), path);
}
std::vector<NodePlace> findAll(const Node& root, const std::string& path) {
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
    const std::string_view root = LEGACY_ROOT;
    return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '.');
}

std::string replaceLegacy(const std::string& path, const std::string& root) {
    return isLegacy(path) ? root + path.substr(std::string_view(LEGACY_ROOT).size()) : path;
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
    for (const NodePlace& node : findAll(root, actual)) {
        ptree item = node->tree();
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
