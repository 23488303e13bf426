// SPDX-License-Identifier: Apache-2.0
// Searches the directory with the repository; prints the platforms found and the bytes for each.
#include <unistd.h>

#include <fstream>
#include <iostream>

#include "mav_host/HUTEnv.h"
#include "mav_platform/HMAVPlatformMgr.h"

namespace {

std::size_t residentBytes() {
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    HUTEnv::pinTimeZone();
    const std::size_t before = residentBytes();
    HMAVPlatformMgr manager;
    manager.addPlatformsFromDirs({argv[1]});
    const std::size_t count = manager.getNumPlatforms();
    if (count == 0) return 1;
    std::cout << count << " " << (residentBytes() - before) / count << std::endl;
    ::_exit(0);
}
