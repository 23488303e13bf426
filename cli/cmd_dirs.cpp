// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "mav_platform/JSONValue.h"

namespace cli {
namespace {

using mav_platform::JSONValue;

struct Options {
    bool json = false;
};

void run(const Options& options) {
    HSTVector<std::string> dirs;
    HMAVPlatformUtils::getRootInstallPlatformDirs(dirs);
    if (options.json) {
        JSONValue list = JSONValue::list();
        for (const std::string& dir : dirs) {
            list.add(JSONValue::object().add("path", dir).add("exists", HUTFile::isDir(dir)));
        }
        writeData(JSONValue::object().add("directories", std::move(list)).text());
        return;
    }
    std::string text;
    for (const std::string& dir : dirs) {
        text += (HUTFile::isDir(dir) ? "found    " : "missing  ") + printable(dir) + "\n";
    }
    writeAnswer(text);
}

}  // namespace

void commands::dirs(Command& command) {
    command.description = "Show where platforms are looked for";
    auto& options = command.runs(run);
    command.flag("--json", options.json, "Print JSON");
}

}  // namespace cli
