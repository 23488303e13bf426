// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HVMAFiles.h"

#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"

std::string HVMAFiles::get(const std::string& type) const {
    const auto found = names_.find(type);
    return found == names_.end() ? "" : found->second;
}

void HVMAFiles::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addList("files", [&](mav_platform::JSONListWriter& list) {
        for (const auto& entry : names_) {
            list.addObject([&](mav_platform::JSONObjectWriter& item) {
                item.addKey("name", entry.second);
                item.addKey("type", entry.first);
            });
        }
    });
}
