// SPDX-License-Identifier: Apache-2.0
// Lets the library read files of a format for the tests in Python:
//   tool read SCHEMA FILE...   reads each file with the reader of the format that SCHEMA describes;
//                              a line for each: "silent", "reported" (read, with a report) or
//                              "refused"
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "mav_platform/HMAVDsaJsonReader.h"
#include "mav_platform/HMAVEmulationExtMetaJsonReader.h"
#include "mav_platform/HMAVEmulationJsonReader.h"
#include "mav_platform/HMAVEmulationXMLReader.h"
#include "mav_platform/HMAVEmulations.h"
#include "mav_platform/HMAVHpfmReader.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformXMLReader.h"
#include "mav_platform/HMAVSoftwarePlatform.h"
#include "mav_platform/HMAVSoftwarePlatformXMLReader.h"
#include "mav_platform/HPLPlatform.h"
#include "support/Doubles.h"

namespace {

using Read = std::function<bool(const std::string&)>;

bool readHpfm(const std::string& path) {
    HPLPlatform platform;
    HMAVHpfmReader reader("unused", &platform);
    reader.setPlatformFile(path);
    return reader.parseFile();
}

template <class Reader>
bool readEmulation(const std::string& path, bool (Reader::*parse)()) {
    HMAVEmulations emulations;
    Reader reader(path, &emulations);
    return (reader.*parse)();
}

const std::map<std::string, Read>& readers() {
    static const std::map<std::string, Read> READERS = {
        {"platform-description.xsd",
         [](const std::string& path) {
             HMAVPlatform platform;
             return HMAVPlatformXMLReader(path, &platform).parseFile();
         }},
        {"software-platform.xsd",
         [](const std::string& path) {
             const auto platform = std::make_shared<HMAVSoftwarePlatform>();
             return HMAVSoftwarePlatformXMLReader(path, platform).parseFile();
         }},
        {"hpfm.xsd", readHpfm},
        {"emulation.xsd",
         [](const std::string& path) {
             return readEmulation(path, &HMAVEmulationXMLReader::parseXml);
         }},
        {"emulation.schema.json",
         [](const std::string& path) {
             return readEmulation(path, &HMAVEmulationJsonReader::parseJson);
         }},
        {"extension-metadata.schema.json",
         [](const std::string& path) {
             return readEmulation(path, &HMAVEmulationExtMetaJsonReader::parseJson);
         }},
        {"metadata.schema.json",
         [](const std::string& path) {
             HPLPlatform platform;
             return HMAVDsaJsonReader(&platform).parseFile(path);
         }},
    };
    return READERS;
}

std::string verdict(const Read& read, const std::string& path) {
    const CapturedMessages messages;
    const CapturedConsole console;
    if (!read(path)) return "refused";
    return messages.all.empty() ? "silent" : "reported";
}

int run(const std::vector<std::string>& arguments) {
    const std::string command = arguments.empty() ? "" : arguments[0];
    if (command == "read" && arguments.size() > 2) {
        const Read& read = readers().at(arguments[1]);
        for (std::size_t i = 2; i < arguments.size(); ++i) {
            std::cout << verdict(read, arguments[i]) << "\n";
        }
        return 0;
    }
    std::cerr << "tool: read SCHEMA FILE...\n";
    return 2;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        return run({arguments + 1, arguments + count});
    } catch (const std::exception& error) {
        std::cerr << "tool: " << error.what() << "\n";
        return 1;
    }
}
