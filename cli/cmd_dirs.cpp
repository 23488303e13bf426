// SPDX-License-Identifier: Apache-2.0
#include "Command.h"
#include "Output.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "mav_platform/JSONObjectWriter.h"

void cli::runDirs(const DirsOptions& options) {
    HSTVector<std::string> dirs;
    HMAVPlatformUtils::getRootInstallPlatformDirs(dirs);
    if (options.json) {
        mav_platform::JSONObjectWriter writer;
        writer.addList("directories", [&](mav_platform::JSONListWriter& list) {
            for (const std::string& dir : dirs) {
                list.addObject([&](mav_platform::JSONObjectWriter& item) {
                    item.addKey("path", HI18N_convertToUTF8(dir));
                    item.addKey("exists", HUTFile::isDir(dir));
                });
            }
        });
        writeAnswer(writer.text());
        return;
    }
    std::string text;
    for (const std::string& dir : dirs) {
        text += (HUTFile::isDir(dir) ? "found    " : "missing  ") + printable(dir) + "\n";
    }
    writeAnswer(text);
}
