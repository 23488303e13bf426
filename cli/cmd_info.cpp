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
using mav::platform::Verdict;

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

/// The verdict stands in the place that the summary has for it.
ptree withVerdict(const ptree& info, const Verdict& verdict) {
    ptree made;
    for (const auto& member : info) {
        if (member.first == "hardware") {
            made.push_back({"verdict", ptree(verdict.sentence())});
            made.push_back({"toolRelease", ptree(verdict.toolRelease)});
        }
        made.push_back(member);
    }
    return made;
}

void run(const Options& options) {
    needToolRelease("info");
    const mav::platform::NativeCatalogService service;
    const auto loader = loadFile("info", options.file);
    const Verdict verdict = service.judge(*loader);
    if (options.json) {
        writeData(service.getTypedInfo(*loader, verdict).text());
        return;
    }
    ptree info;
    service.getPlatformInfo_(loader.get(), info, false, options.partitions);
    std::string text;
    addTable(withVerdict(info, verdict), "", text);
    writeData(text);
}

}  // namespace

void commands::info(Command& command) {
    command.description = "Sum one platform up as names and values, for scripts";
    command.examples = {{"mav info card.pka --json", "the summary with numbers and booleans"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.flag("--partitions", options.partitions,
                 "With reconfigurable partitions; --json always has them");
    command.typedJson(options.json);
}

}  // namespace cli
