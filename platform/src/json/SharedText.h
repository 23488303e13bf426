// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "json/CompactText.h"
#include "json/KeyPlaces.h"
#include "json/TextBuffer.h"
#include "mav_platform/JSONTextSink.h"

namespace mav_platform::json {

/// What a writer and the open children below it share.
struct SharedText {
    TextBuffer text;
    KeyStack keys;
    JSONWriter* active;               ///< the innermost open writer
    std::unique_ptr<CellList> cells;  ///< of a compact document; null for JSON text
};

inline JSONWriter*& TextSink::active() const {
    return shared_->active;
}
inline bool TextSink::empty() const {
    return shared_->text.size() == start_;
}
inline bool TextSink::takes(std::string_view path) const {
    return list_ || lookAtKey(path).plain;
}

}  // namespace mav_platform::json
