// SPDX-License-Identifier: Apache-2.0
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "KeyHint.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeObjectService.h"

namespace cli {
namespace {

constexpr const char* NOTES =
    "PATH is made of member names joined by '.', with the index of an element in brackets, as in\n"
    "hardwarePlatforms.hardwarePlatform.systemClocks[0].name. '[*]' and '..' stand for every\n"
    "element. A path that begins with hardwarePlatform finds the hardware platform wherever the\n"
    "description holds it.\n";

struct Options {
    std::string file;
    std::string path;
    bool json = false;
};

void run(const Options& options) {
    using mav::platform::NativeObjectService;
    const auto loader = loadFile("get", options.file);
    bool found = false;
    const auto node = NativeObjectService().getObjectsByPath(loader.get(), options.path, found);
    if (!found) {
        throw Negative("nothing is at '" + printable(options.path) + "' in '" +
                       printable(options.file) + "'." + keyHint(*loader, options.path) +
                       " 'mav keys' lists the paths of a platform.");
    }
    writeData(node.empty() && !options.json ? node.data() + "\n"
                                            : NativeObjectService::getNodeAsJsonStr(node));
}

}  // namespace

void commands::get(Command& command) {
    command.description = "Print what is at one path of the description";
    command.notes = NOTES;
    command.no = "nothing is there";
    command.examples = {
        {"mav get card.pka 'hardwarePlatform.systemClocks[*].name'", "the names of all clocks"}};
    auto& options = command.runs(run);
    command.argument("FILE", &options.file, "Platform file");
    command.argument("PATH", &options.path, "Path into the description");
    command.flag("--json", options.json, "Print single values as JSON too");
}

}  // namespace cli
