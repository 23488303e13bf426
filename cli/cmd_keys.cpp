// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeKeyService.h"

void cli::runKeys(const KeysOptions& options) {
    const mav::platform::NativeKeyService service;
    const auto loader = loadFile("keys", options.file);
    if (options.json) {
        writeAnswer(service.getAsJsonStr(loader.get()));
        return;
    }
    const auto summary = service.get(loader.get());
    const auto& keys = summary.get_child("keys");
    std::size_t width = 0;
    for (const auto& [none, entry] : keys)
        width = std::max(width, entry.back().second.data().size());
    LongAnswer answer;
    for (const auto& [none, entry] : keys) {
        const std::string& count = entry.back().second.data();
        answer += std::string(width - count.size(), ' ') + count + "  " +
                  printable(entry.front().second.data()) + "\n";
    }
    answer.end();
}
