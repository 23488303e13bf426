// SPDX-License-Identifier: Apache-2.0
#include "services/SupportList.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <optional>

#include "json/Document.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_host/xp.h"

namespace mav::platform {

using mav_platform::json::Document;
using mav_platform::json::Node;

namespace {

constexpr std::string_view BLACK = "black_list";
constexpr std::string_view WHITE = "white_list";

/// The list's content; nothing when it cannot be used at all.
std::optional<Document> readProtected(const std::string& path) {
    try {
        mav_host::SecretText text(isl::iostreams::xp::read(path));
        if (!HI18N_isUTF8(text.text())) {
            text = mav_host::SecretText(HI18N_convertToUTF8(text.text()));
        }
        Document list(std::move(text), path);
        if (list.root().hasChildren()) return list;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        // Whatever keeps the list from being read, the platform is judged without it.
    }
    return std::nullopt;
}

bool isArray(const Node& node) {
    return node.hasChildren() ? node.isList() : node.data().empty();
}

/// False for a malformed entry.
bool addEntry(const Node& node, bool good, HSTVector<SupportEntry>& out) {
    const auto products = node.find("products");
    if (!products || !isArray(*products)) return false;
    SupportEntry& entry = out.emplace_back();
    entry.good = good;
    for (const Node& product : *products) entry.products.emplace_back(product.data());
    entry.key = node.text("key");
    entry.value = node.text("value");
    entry.reason = node.text("reason");
    return true;
}

/// False for a malformed list.
bool addEntries(const Node& root, std::string_view name, HSTVector<SupportEntry>& out) {
    for (const Node& list : root) {
        if (list.key() != name) continue;
        if (!isArray(list)) return false;
        std::size_t place = 0;
        for (const Node& entry : list) {
            if (!addEntry(entry, name == WHITE, out)) return false;
            out.back().place = ++place;
        }
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
        mav_host::report(mav_host::messages::SUPPORT_LIST_UNUSABLE, path);
        return {};
    }
    const Node root = list->root();
    HSTVector<SupportEntry> entries;
    if (!std::all_of(root.begin(), root.end(), isKnown) || !addEntries(root, BLACK, entries) ||
        !addEntries(root, WHITE, entries)) {
        mav_host::report(mav_host::messages::SUPPORT_LIST_MALFORMED, path);
        return {};
    }
    return entries;
}

}  // namespace mav::platform
