// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeCatalogService.h"

namespace {

using boost::property_tree::ptree;

/// The members as an aligned table; lists of objects as tables of their own, further in.
void addTable(const ptree& info, const std::string& indent, std::string& text) {
    std::size_t width = 0;
    for (const auto& [key, value] : info)
        if (value.empty()) width = std::max(width, key.size());
    for (const auto& [key, value] : info) {
        if (value.empty()) {
            const std::string blanks(width - key.size(), ' ');
            const std::string shown = value.data().empty() ? "-" : cli::printable(value.data());
            text += indent + key + blanks + "  " + shown + "\n";
            continue;
        }
        text += indent + key + "\n";
        for (const auto& item : value) {
            addTable(item.second, indent + "    ", text);
            if (&item != &value.back()) text += "\n";
        }
    }
}

}  // namespace

void cli::runInfo(const InfoOptions& options) {
    const mav::platform::NativeCatalogService service;
    const auto loader = loadFile("info", options.file);
    if (options.json) {
        writeAnswer(service.getAsJsonStr(loader.get(), true, options.partitions));
        return;
    }
    ptree info;
    service.getPlatformInfo_(loader.get(), info, true, options.partitions);
    std::string text;
    addTable(info, "", text);
    writeAnswer(text);
}
