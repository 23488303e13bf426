// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "support/Paths.h"

/// The first code block of a page of docs/formats at or behind this text.
inline std::string documented(const std::string& page, const std::string& behind = "\n```xml") {
    std::ifstream file(SOURCE_DIR + ("/docs/formats/" + page));
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::size_t start = text.find('\n', text.find("\n```", text.find(behind)) + 1) + 1;
    return text.substr(start, text.find("```", start) - start);
}
