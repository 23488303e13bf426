// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVJSONUtils.h"

#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <optional>
#include <ostream>
#include <utility>

#include "json/Convert.h"
#include "json/Document.h"
#include "json/TextBuffer.h"
#include "json/TreePath.h"
#include "json/TreeText.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Host.h"
#include "mav_host/xp.h"

using boost::property_tree::ptree;
using boost::property_tree::json_parser::json_parser_error;
namespace json = mav_platform::json;

namespace {

std::string_view view(const ptree& tree, const std::string& key) {
    const ptree* const child = json::findPath(tree, key);
    return child != nullptr ? std::string_view(child->data()) : std::string_view();
}

/// The tree of a text; parser errors carry the file's name.
ptree parse(std::string text, const std::string& file) {
    return json::Document(std::move(text), file, json::Document::MAX_OWN_DEPTH).tree();
}

std::string readFile(const std::string& path) {
    bool larger = false;
    std::optional<std::string> text =
        HUTFileUtils::tryRead(path, HUTZip::MAX_METADATA_SIZE, larger);
    if (larger) throw json_parser_error("file larger than 1 GiB", path, 0);
    if (!text) throw json_parser_error("cannot open file", path, 0);
    return *std::move(text);
}

template <class Read>
ptree readOrExplain(Read read) {
    try {
        return read();
    } catch (const json_parser_error& error) {
        throw HEXAlgException(std::string("Failed to read platform: ") + error.what());
    } catch (const HEXError& error) {
        throw HEXAlgException(std::string("Failed to read platform: ") + error.what());
    }
}

}  // namespace

bool HMAVJSONUtils::findKey(const ptree& tree, const std::string& key) {
    return json::findPath(tree, key) != nullptr;
}

bool HMAVJSONUtils::hasKey(const ptree& tree, const std::string& key) {
    return findKey(tree, key);
}

std::string HMAVJSONUtils::getValue(const ptree& tree, const std::string& key) {
    return std::string(view(tree, key));
}

std::string HMAVJSONUtils::getStringValue(const ptree& tree, const std::string& key) {
    return getValue(tree, key);
}

int HMAVJSONUtils::getIntValue(const ptree& tree, const std::string& key, int dflt) {
    return json::toInt(view(tree, key), dflt);
}

long HMAVJSONUtils::getLongValue(const ptree& tree, const std::string& key, long dflt) {
    return json::toLong(view(tree, key), dflt);
}

unsigned long HMAVJSONUtils::getUnsignedLongValue(const ptree& tree, const std::string& key,
                                                  unsigned long dflt) {
    const std::string_view value = view(tree, key);
    return value.empty() ? dflt : static_cast<unsigned long>(json::toLong(value, 0));
}

unsigned HMAVJSONUtils::getUnsignedIntValue(const ptree& tree, const std::string& key,
                                            unsigned dflt) {
    return json::toUnsigned(view(tree, key), dflt);
}

bool HMAVJSONUtils::getBoolValue(const ptree& tree, const std::string& key) {
    return json::toBool(view(tree, key));
}

const ptree& HMAVJSONUtils::noTree() {
    static const ptree EMPTY;
    return EMPTY;
}

void HMAVJSONUtils::writeJson(const std::string& fileName, const ptree& tree) {
    json::TextBuffer text;
    json::renderDocument(text, tree, fileName);
    try {
        HUTFileUtils::writeWhole(fileName, std::string(text.view()), {.toDevices = true});
    } catch (const HEXUserException& error) {
        throw json_parser_error(error.what(), fileName, 0);
    }
}

void HMAVJSONUtils::writeJson(std::ostream& out, const ptree& tree) {
    json::TextBuffer text;
    json::renderDocument(text, tree);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.flush();
    if (!out.good()) throw json_parser_error("write error", "", 0);
}

ptree HMAVJSONUtils::readJsonNoThrow(const std::string& text) {
    if (text.empty()) return ptree();
    return json::Document::fromBytes(text, {}, json::Document::MAX_OWN_DEPTH).tree();
}

ptree HMAVJSONUtils::readJson(const std::string& text) {
    if (text.empty()) throw HEXAlgException("HMAVJSONUtils::readJson() - Empty json string");
    return readOrExplain([&] { return readJsonNoThrow(text); });
}

ptree HMAVJSONUtils::readJson(const std::stringstream& text) {
    return readJson(text.str());
}

ptree HMAVJSONUtils::readJsonFileNoThrow(const std::string& path) {
    return parse(readFile(path), path);
}

ptree HMAVJSONUtils::readJsonFile(const std::string& path) {
    return readOrExplain([&] { return readJsonFileNoThrow(path); });
}

ptree HMAVJSONUtils::readJsonFileDecrypt(const std::string& path) {
    namespace xp = isl::iostreams::xp;
    return readOrExplain([&] {
        std::string text = readFile(path);
        if (!xp::is_container(text)) return parse(std::move(text), path);
        return json::Document(mav_host::SecretText(xp::read(path, text)), path).tree();
    });
}
