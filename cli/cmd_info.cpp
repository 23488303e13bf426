// SPDX-License-Identifier: Apache-2.0
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "Load.h"
#include "Output.h"
#include "Screen.h"
#include "mav_platform/HMAVNativeCatalogService.h"

namespace cli {
namespace {

using boost::property_tree::ptree;

struct Options {
    std::string file;
    bool json = false;
    bool partitions = false;
};

/// The members as a table; lists of objects as tables of their own, further in.
void addTable(const ptree& info, const std::string& indent, std::string& text) {
    std::vector<Screen::Row> rows;
    for (const auto& [key, value] : info)
        rows.push_back(value.empty() ? Screen::Row{key, value.data()} : Screen::Row{key});
    const std::vector<std::string> lines = Screen::lines({}, rows);
    auto line = lines.begin();
    for (const auto& [key, value] : info) {
        text.append(indent).append(*line++).append("\n");
        for (const auto& item : value) {
            addTable(item.second, indent + "    ", text);
            if (&item != &value.back()) text += "\n";
        }
    }
}

void run(const Options& options) {
    const mav::platform::NativeCatalogService service;
    const auto loader = loadFile("info", options.file);
    if (options.json) {
        writeData(service.getAsJsonStr(loader.get(), true, options.partitions));
        return;
    }
    ptree info;
    service.getPlatformInfo_(loader.get(), info, true, options.partitions);
    std::string text;
    addTable(info, "", text);
    writeData(text);
}

}  // namespace

void commands::info(Command& command) {
    command.description = "Sum a platform up";
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.flag("--json", options.json, "Print JSON");
    command.flag("--partitions", options.partitions, "With reconfigurable partitions");
}

}  // namespace cli
