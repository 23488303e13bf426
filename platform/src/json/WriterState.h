// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstddef>
#include <vector>

#include "json/KeyPlaces.h"
#include "json/TextBuffer.h"

namespace mav_platform {

class JSONWriter;

namespace json {

/// What a writer and the open children below it share.
struct SharedText {
    TextBuffer text;
    std::vector<KeyPlace> keys;  ///< of the open levels, the innermost last
    const JSONWriter* active;    ///< the innermost open writer
};

/// What only some writers need.
struct WriterExtra {
    static constexpr std::size_t NEVER = static_cast<std::size_t>(-1);

    boost::property_tree::ptree tree;  ///< the content in tree mode, else a picture of the text
    std::size_t picturedAt = NEVER;    ///< size of the text when the picture was taken
    TextBuffer rendered;
    KeySet manyKeys;
};

}  // namespace json
}  // namespace mav_platform
