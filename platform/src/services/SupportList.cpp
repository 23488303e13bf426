// SPDX-License-Identifier: Apache-2.0
#include "services/SupportList.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <optional>

#include "json/Document.h"
#include "mav_host/ComMsgMgr.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/xp.h"

namespace mav::platform {

using mav_platform::json::Document;
using mav_platform::json::Node;

namespace {

constexpr std::string_view BLACK = "black_list";
constexpr std::string_view WHITE = "white_list";

void report(const char* id, const std::string& path) {
    ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::WARNING, id, {path});
}

/// The list's content; nothing when it cannot be used at all.
std::optional<Document> readProtected(const std::string& path) {
    namespace xp = isl::iostreams::xp;
    if (HUTFile::isDir(path) || !xp::is_xp_format(path)) return std::nullopt;
    try {
        Document list(xp::read(path), path);
        if (list.root().hasChildren()) return list;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // Whatever keeps the list from being read, the platform is judged without it.
    }
    return std::nullopt;
}

bool isArray(const Node& node) {
    return node.data().empty() && std::all_of(node.begin(), node.end(),
                                              [](const Node& item) { return item.key().empty(); });
}

std::string text(const Node& entry, std::string_view key) {
    const auto member = entry.find(key);
    return member ? std::string(member->data()) : "";
}

/// False for a malformed entry.
bool addEntry(const Node& node, bool good, HSTVector<SupportEntry>& out) {
    const auto products = node.find("products");
    if (!products || !isArray(*products)) return false;
    SupportEntry& entry = out.emplace_back();
    entry.good = good;
    for (const Node& product : *products) entry.products.emplace_back(product.data());
    entry.key = text(node, "key");
    entry.value = text(node, "value");
    entry.reason = text(node, "reason");
    return true;
}

/// False for a malformed list.
bool addEntries(const Node& root, std::string_view name, HSTVector<SupportEntry>& out) {
    for (const Node& list : root) {
        if (list.key() != name) continue;
        if (!isArray(list)) return false;
        for (const Node& entry : list)
            if (!addEntry(entry, name == WHITE, out)) return false;
    }
    return true;
}

bool isKnown(const Node& list) {
    return list.key() == BLACK || list.key() == WHITE;
}

}  // namespace

std::string supportListPath() {
    static const std::string& separator = HUTFile::getDirSeparator();
    return HUTEnv::getHDIAppRoot() + separator + "platforms" + separator + "achromatic";
}

HSTVector<SupportEntry> readSupportList() {
    const std::string path = supportListPath();
    if (!HUTFile::exists(path)) return {};
    const auto list = readProtected(path);
    if (!list) {
        report("@74-49@%s", path);
        return {};
    }
    const Node root = list->root();
    HSTVector<SupportEntry> entries;
    if (!std::all_of(root.begin(), root.end(), isKnown) || !addEntries(root, BLACK, entries) ||
        !addEntries(root, WHITE, entries)) {
        report("@74-50@%s", path);
        return {};
    }
    return entries;
}

}  // namespace mav::platform
