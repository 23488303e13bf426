// SPDX-License-Identifier: Apache-2.0
// The JSON utilities: both readers agree, values convert without a fault, what is written reads
// back.
#include <boost/property_tree/json_parser/error.hpp>
#include <boost/property_tree/ptree.hpp>
#include <sstream>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "support.h"

namespace {

using Tree = boost::property_tree::ptree;
using boost::property_tree::json_parser::json_parser_error;

void convert(const Tree& tree, int depth) {
    for (const auto& [key, child] : tree) {
        fuzz::require(HMAVJSONUtils::hasKey(tree, key) || key.find('.') != std::string::npos,
                      "a key that is not found");
        HMAVJSONUtils::getIntValue(tree, key);
        HMAVJSONUtils::getLongValue(tree, key);
        HMAVJSONUtils::getUnsignedLongValue(tree, key);
        HMAVJSONUtils::getUnsignedIntValue(tree, key);
        HMAVJSONUtils::getBoolValue(tree, key);
        if (depth > 0) convert(child, depth - 1);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    bool refused = false;
    try {
        HMAVJSONUtils::readJson(text);
    } catch (const HEXAlgException&) {
        refused = true;
    }
    try {
        const Tree tree = HMAVJSONUtils::readJsonNoThrow(text);
        fuzz::require(!refused || text.empty(), "one reader refuses and the other does not");
        convert(tree, 8);
        std::ostringstream written;
        HMAVJSONUtils::writeJson(written, tree);
        std::ostringstream again;
        HMAVJSONUtils::writeJson(again, HMAVJSONUtils::readJsonNoThrow(written.str()));
        fuzz::require(again.str() == written.str(), "written twice and not the same");
    } catch (const json_parser_error&) {
        // Refused, as it may be: by the reader, or by the writer for a tree that JSON cannot
        // express.
    }
    return 0;
}
