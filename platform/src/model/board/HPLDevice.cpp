// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HPLDevice.h"

#include "mav_platform/JSONListWriter.h"
#include "mav_platform/JSONObjectWriter.h"

HMAVDevice::~HMAVDevice() = default;

HPLCore& HPLDevice::createCore() {
    if (!core_) core_ = std::make_unique<HPLCore>();
    return *core_;
}

void HPLDevice::Part::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("architecture", architecture_);
    writer.addKey("device", device_);
    writer.addKey("package", package_);
    writer.addKey("speedGrade", speedGrade_);
    writer.addKey("tempGrade", tempGrade_);
    writer.addKey("staPower", staPower_);
    writer.addKey("revision", revision_);
}

void HPLDevice::Clock::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("frequency", frequency_);
}

void HPLDevice::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("type", type_);
    writer.addKey("fpgaPart", fpgaPart_);
    writer.addKey("part", &part_);
    writer.addList("scalableSystemClocks", [this](mav_platform::JSONListWriter& list) {
        for (const Clock& clock : clocks_) list.addItem(&clock);
    });
    writer.addKey("core", core_.get());
    writer.addKey("numSLRs", numSLRs_);
}
