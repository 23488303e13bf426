// SPDX-License-Identifier: Apache-2.0
#include <boost/property_tree/ptree.hpp>

#include "Command.h"
#include "KeyHint.h"
#include "Load.h"
#include "Output.h"
#include "mav_platform/HMAVNativeObjectService.h"

bool cli::runGet(const GetOptions& options) {
    using mav::platform::NativeObjectService;
    const auto loader = loadFile("get", options.file);
    bool found = false;
    const auto node = NativeObjectService().getObjectsByPath(loader.get(), options.path, found);
    if (!found) {
        complain("nothing is at '" + printable(options.path) + "' in '" + printable(options.file) +
                 "'." + keyHint(*loader, options.path) +
                 " 'mav keys' lists the paths of a platform.");
        return false;
    }
    writeAnswer(node.empty() && !options.json ? node.data() + "\n"
                                              : NativeObjectService::getNodeAsJsonStr(node));
    return true;
}
