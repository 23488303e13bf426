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
            list.add(JSONValue::object().addPath("path", dir).add("exists", HUTFile::isDir(dir)));
        }
        writeData(JSONValue::answer("dirs").add("directories", std::move(list)).text());
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
    command.description = "Show the directories that list searches by default";
    command.failed = "the result cannot be written";
    command.examples = {{"mav dirs", "where the tools look for platforms"}};
    auto& options = command.runs(run);
    command.typedJson(options.json);
}

}  // namespace cli
