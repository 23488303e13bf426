// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVJSONUtils.h"

#include <boost/optional.hpp>
#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <ostream>
#include <utility>

#include "json/Convert.h"
#include "json/Document.h"
#include "json/TextBuffer.h"
#include "json/TreePath.h"
#include "json/TreeText.h"
#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/xp.h"

using boost::property_tree::ptree;
using boost::property_tree::json_parser::json_parser_error;
namespace json = mav_platform::json;

namespace {

std::string_view view(const ptree& tree, const std::string& key) {
    const ptree* const child = json::findPath(tree, key);
    return child != nullptr ? std::string_view(child->data()) : std::string_view();
}

const ptree& orEmpty(const HMAVJSONUtils::optional_ptree& tree) {
    static const ptree EMPTY;
    return tree ? *tree : EMPTY;
}

/// The tree of a text; parser errors carry the file's name.
ptree parse(std::string text, const std::string& file = "") {
    return json::Document(std::move(text), file).tree();
}

std::string readFile(const std::string& path) {
    // Asked before opening, which would wait for a writer of a named pipe.
    std::ifstream file;
    if (HUTFile::isFile(path)) file.open(path, std::ios::binary);
    if (!file.is_open()) throw json_parser_error("cannot open file", path, 0);
    std::string text;
    char piece[1U << 16U];
    while (file.read(piece, sizeof(piece)) || file.gcount() > 0) {
        text.append(piece, static_cast<std::size_t>(file.gcount()));
        if (text.size() > HUTZip::MAX_METADATA_SIZE) {
            throw json_parser_error("file larger than 1 GiB", path, 0);
        }
    }
    return text;
}

template <class Read>
ptree readOrExplain(Read read) {
    try {
        return read();
    } catch (const json_parser_error& error) {
        throw HEXAlgException(std::string("Failed to read platform: ") + error.what());
    } catch (const HEXDataException& error) {
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

bool HMAVJSONUtils::findKey(const optional_ptree& tree, const std::string& key) {
    return findKey(orEmpty(tree), key);
}

bool HMAVJSONUtils::hasKey(const optional_ptree& tree, const std::string& key) {
    return findKey(orEmpty(tree), key);
}

std::string HMAVJSONUtils::getValue(const optional_ptree& tree, const std::string& key) {
    return getValue(orEmpty(tree), key);
}

std::string HMAVJSONUtils::getStringValue(const optional_ptree& tree, const std::string& key) {
    return getValue(orEmpty(tree), key);
}

int HMAVJSONUtils::getIntValue(const optional_ptree& tree, const std::string& key, int dflt) {
    return getIntValue(orEmpty(tree), key, dflt);
}

long HMAVJSONUtils::getLongValue(const optional_ptree& tree, const std::string& key, long dflt) {
    return getLongValue(orEmpty(tree), key, dflt);
}

unsigned long HMAVJSONUtils::getUnsignedLongValue(const optional_ptree& tree,
                                                  const std::string& key, unsigned long dflt) {
    return getUnsignedLongValue(orEmpty(tree), key, dflt);
}

unsigned HMAVJSONUtils::getUnsignedIntValue(const optional_ptree& tree, const std::string& key,
                                            unsigned dflt) {
    return getUnsignedIntValue(orEmpty(tree), key, dflt);
}

bool HMAVJSONUtils::getBoolValue(const optional_ptree& tree, const std::string& key) {
    return getBoolValue(orEmpty(tree), key);
}

void HMAVJSONUtils::writeJson(const std::string& fileName, const ptree& tree) {
    json::TextBuffer text;
    json::renderDocument(text, tree, fileName);
    try {
        HUTFileUtils::writeWhole(fileName, std::string(text.view()));
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
    return parse(HI18N_isAscii(text) ? text : HI18N_convertToUTF8(text));
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
    if (!xp::is_xp_format(path)) return readJsonFile(path);
    return readOrExplain([&] { return parse(xp::read(path), path); });
}
