// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/OwnedList.h"

/// A member that lists what each element writes; left out when nothing is written.
template <class T>
void writeList(mav_platform::JSONObjectWriter& writer, std::string_view key,
               const OwnedList<T>& elements) {
    writer.addList(key, [&](mav_platform::JSONListWriter& list) {
        for (const T* element : elements.items()) list.addItem(element);
    });
}

/// A list of objects with the two texts of each pair under the given names.
inline void writePairs(mav_platform::JSONObjectWriter& writer, std::string_view key,
                       const HSTVector<std::pair<std::string, std::string>>& pairs,
                       std::string_view first = "name", std::string_view second = "value") {
    writer.addList(key, [&](mav_platform::JSONListWriter& list) {
        for (const auto& pair : pairs) {
            list.addObject([&](mav_platform::JSONObjectWriter& object) {
                object.addKey(first, pair.first);
                object.addKey(second, pair.second);
            });
        }
    });
}
