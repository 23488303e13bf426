// SPDX-License-Identifier: Apache-2.0
// Lets the library write a file of a format: `writer hpfm FILE` rewrites FILE in place,
// `writer emulation JSON XML` turns the JSON form of emulation metadata into the XML form.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "mav_platform/HMAVEmulationJsonReader.h"
#include "mav_platform/HMAVEmulationXMLWriter.h"
#include "mav_platform/HMAVEmulations.h"
#include "mav_platform/HMAVHpfmUtl.h"

namespace {

int run(const std::vector<std::string>& arguments) {
    if (arguments.size() == 2 && arguments[0] == "hpfm") {
        HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(arguments[1]);
        return 0;
    }
    if (arguments.size() == 3 && arguments[0] == "emulation") {
        HMAVEmulations emulations;
        const bool read = HMAVEmulationJsonReader(arguments[1], &emulations).parseJson();
        return read && HMAVEmulationXMLWriter(arguments[2], &emulations).writeXml() ? 0 : 1;
    }
    std::cerr << "writer: hpfm FILE | emulation JSON XML\n";
    return 2;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return run({arguments + 1, arguments + count});
    } catch (const std::exception& error) {
        std::cerr << "writer: " << error.what() << "\n";
        return 1;
    }
}
