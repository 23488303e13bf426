// SPDX-License-Identifier: Apache-2.0
#include "capi/Call.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Printable.h"
#include "mav_platform/PlatformList.h"

using namespace capi;
using mav_platform::PlatformFilter;
using mav_platform::PlatformList;

namespace {

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

PlatformFilter filterOf(const hmav_find_options& wanted) {
    const auto text = [](const char* given) { return std::string(given != nullptr ? given : ""); };
    PlatformFilter filter;
    filter.vendor = text(wanted.vendor);
    filter.board = text(wanted.board);
    filter.part = text(wanted.part);
    filter.type = text(wanted.type);
    filter.latest = wanted.latest != 0;
    filter.parts = true;
    return filter;
}

}  // namespace

int hmav_find(const hmav_session* session, const char* const* directories, std::size_t count,
              const hmav_find_options* options, char** json, hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(json, "json");
        if (count > 0) refuseNull(directories, "directories");
        const PlatformFilter filter = filterOf(optionsOf(options));
        *json = newText(PlatformList(searched(directories, count), filter).answer(nullptr).text());
    });
}
