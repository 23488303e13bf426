// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeKeyService.h"

namespace cli {
namespace {

struct Options {
    std::string file;
    bool json = false;
};

void run(const Options& options) {
    const mav::platform::NativeKeyService service;
    const auto loader = loadFile("keys", options.file);
    if (options.json) {
        writeData(service.getAsJsonStr(loader.get()));
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

}  // namespace

void commands::keys(Command& command) {
    command.description = "List the paths that the description has";
    command.examples = {{"mav keys card.pka", "what get, dict and transform can ask for"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.flag("--json", options.json, "Print JSON");
}

}  // namespace cli
