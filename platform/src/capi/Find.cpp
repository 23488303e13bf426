// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>

#include "capi/Call.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Printable.h"
#include "mav_platform/HMAVHardwarePlatform.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/HMAVPlatformMgr.h"
#include "mav_platform/HMAVPlatformUtils.h"
#include "mav_platform/JSONValue.h"
#include "mav_platform/partitionsFault.h"

using namespace capi;
using mav_platform::JSONValue;

namespace {

using Platforms = HSTVector<HMAVPlatform*>;
using Refusals = HSTVector<HMAVPlatformMgr::Refusal>;

/// What a list tells of a platform; the hardware's data where there is some.
struct Row {
    std::string name, vendor, board, version, type, device, part, state, file;
};

Row rowOf(const HMAVPlatform& platform) {
    const HMAVHardwarePlatform* const hardware = platform.getHardwarePlatform();
    Row row;
    row.file = platform.getPlatformFile();
    row.type = platform.getTypeString();
    row.name = platform.getName();
    if (hardware == nullptr) {
        row.vendor = platform.getVendor();
        row.version = platform.getVersion();
        return row;
    }
    if (row.name.empty()) row.name = hardware->getName();
    row.vendor = hardware->getVendor();
    row.board = hardware->getBoardId();
    row.version = hardware->getVersion();
    row.device = hardware->getFpgaDevice();
    row.part = hardware->getFpgaPart();
    row.state = hardware->getPlatformState();
    return row;
}

bool fits(const Row& row, const hmav_find_options& wanted) {
    const auto exact = [](const char* text, const std::string& own) {
        return text == nullptr || own == text;
    };
    const auto anyCase = [](const char* text, const std::string& own) {
        return text == nullptr || boost::iequals(own, text);
    };
    return anyCase(wanted.part, row.part) && exact(wanted.board, row.board) &&
           exact(wanted.vendor, row.vendor) && anyCase(wanted.type, row.type);
}

JSONValue jsonOf(const Row& row) {
    return JSONValue::object()
        .addUnlessEmpty("name", row.name)
        .addUnlessEmpty("vendor", row.vendor)
        .addUnlessEmpty("board", row.board)
        .addUnlessEmpty("version", row.version)
        .addUnlessEmpty("type", row.type)
        .addUnlessEmpty("device", row.device)
        .addUnlessEmpty("part", row.part)
        .addUnlessEmpty("state", row.state)
        .add("file", row.file);
}

HSTVector<std::string> searched(const char* const* directories, std::size_t count) {
    HSTVector<std::string> dirs;
    for (std::size_t i = 0; i < count; ++i) {
        refuseNull(directories[i], "directories");
        if (!HUTFile::isDir(directories[i]))
            throw Failure{HMAV_NOT_FOUND,
                          "'" + mav_host::printable(directories[i]) + "' is no directory",
                          "Check the path."};
        dirs.emplace_back(directories[i]);
    }
    if (dirs.empty()) HMAVPlatformMgr::getDefaultMavPlatformDirs(dirs);
    return dirs;
}

/// Platforms without a whole document are refused, and those that are bad are already.
void leaveOut(Platforms& platforms, Refusals& refusals) {
    std::erase_if(platforms, [&](const HMAVPlatform* platform) {
        if (platform->isBad()) return true;
        const std::string fault = mav_platform::partitionsFault(*platform);
        if (!fault.empty()) refusals.push_back({platform->getPlatformFile(), fault, {}, false});
        return !fault.empty();
    });
}

std::string found(const HSTVector<std::string>& dirs, const hmav_find_options& wanted) {
    HMAVPlatformMgr manager;
    manager.addPlatformsFromDirs(dirs);
    Platforms platforms;
    manager.getAllPlatforms(platforms);
    Refusals refusals = manager.getRefusals();
    leaveOut(platforms, refusals);
    std::erase_if(platforms, [&](const auto* one) { return !fits(rowOf(*one), wanted); });
    if (wanted.latest != 0) platforms = HMAVPlatformUtils::filterOutOldPlatforms(platforms);
    JSONValue list = JSONValue::list();
    for (const HMAVPlatform* platform : platforms) list.add(jsonOf(rowOf(*platform)));
    JSONValue refused = JSONValue::list();
    for (const auto& refusal : refusals) {
        refused.add(
            JSONValue::object().add("file", refusal.file).addUnlessEmpty("reason", refusal.reason));
    }
    return JSONValue::object()
        .add("platforms", std::move(list))
        .add("refused", std::move(refused))
        .text();
}

}  // namespace

int hmav_find(const hmav_session* session, const char* const* directories, std::size_t count,
              const hmav_find_options* options, char** json, hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(json, "json");
        if (count > 0) refuseNull(directories, "directories");
        const hmav_find_options wanted = optionsOf(options);
        *json = newText(found(searched(directories, count), wanted));
    });
}
