// SPDX-License-Identifier: Apache-2.0
// Calls ours and the floor in turn inside one process and prints the ratio of the median CPU times.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "floor.h"
#include "mav_platform/mav_platform_c.h"

namespace {

double cpuSeconds() {
    timespec now;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

int main(int, char** arguments) {
    const char* const path = arguments[1];
    const int rounds = std::atoi(arguments[2]);
    std::vector<double> ours;
    std::vector<double> floor;
    for (int round = 0; round < rounds + 2; ++round) {
        const double start = cpuSeconds();
        char* const json = hmav_get_platform_json(path);
        const double middle = cpuSeconds();
        if (round == 0) {
            const FloorText text = floorJson(path);
            const bool equal = json != nullptr && std::strlen(json) == text.size &&
                               std::memcmp(json, text.data.get(), text.size) == 0;
            if (!equal) {
                std::fprintf(stderr, "bench_warm: the floor gives other bytes than the library\n");
                return 1;
            }
        }
        hmav_free_json_string(json);
        const double freed = cpuSeconds();
        { const FloorText text = floorJson(path); }
        const double end = cpuSeconds();
        if (round < 2) continue;  // the first calls pay for fresh memory
        ours.push_back(freed - start);
        floor.push_back(end - freed);
        static_cast<void>(middle);
    }
    std::printf("%.6f %.6f\n", median(ours), median(floor));
    return 0;
}
