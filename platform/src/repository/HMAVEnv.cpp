// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEnv.h"

#include "mav_host/HUTEnv.h"
#include "mav_host/Letters.h"

namespace {

std::string productOf(const std::string& root) {
    const std::string text = mav_host::lowerCase(root);
    for (const char* const product : {"mirra", "mav", "pellux", "quorin"})
        if (text.find(product) != std::string::npos) return product;
    return "unknown";
}

}  // namespace

bool HMAVEnv::isRunningAsGradleUnitTest() {
    static const bool RUNNING = HUTEnv::getEnv("GRADLE_UNIT_TEST") != nullptr;
    return RUNNING;
}

std::string HMAVEnv::getProductName() {
    std::string product = HUTEnv::getProductName();
    if (!product.empty()) return product;
    static const std::string FROM_ROOT = productOf(HUTEnv::getHDIAppRoot());
    return FROM_ROOT;
}
