// SPDX-License-Identifier: Apache-2.0
// JSON text: the same answer as Boost's reader, the same tree or the same error.
#include "json/Document.h"
#include "support.h"
#include "unit/json/JsonReference.h"

namespace {

/// Boost's reader knows no limit of depth, so it is asked only where it cannot run out of stack.
bool isDeep(const std::string& text) {
    std::size_t open = 0;
    for (const char c : text) open += c == '[' || c == '{' ? 1U : 0U;
    return open > mav_platform::json::Document::MAX_DEPTH / 2;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    std::string error;
    ptree tree;
    try {
        tree = mav_platform::json::Document(text).tree();
    } catch (const json_parser_error& failure) {
        error = failure.what();
    }
    if (isDeep(text)) return 0;
    const BoostRead reference(text);
    fuzz::require(error == reference.error, "'" + error + "' and not '" + reference.error + "'");
    fuzz::require(tree == reference.tree, "the trees differ");
    return 0;
}
