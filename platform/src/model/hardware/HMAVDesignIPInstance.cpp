// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDesignIPInstance.h"

#include "mav_host/HEXError.h"
#include "mav_platform/JSONObjectWriter.h"

std::string HMAVDesignIPInstance::getName() const {
    std::size_t start = 0;
    for (int field = 0; field < 2; ++field) {
        start = vlnv_.find(':', start);
        if (start == std::string::npos) return "";
        ++start;
    }
    return vlnv_.substr(start, vlnv_.find(':', start) - start);
}

void HMAVDesignIPInstance::addConfigParam(const std::string& key, std::string value) {
    if (!configKeys_.insert(key).second) {
        throw HEXAlgException("Attempt to readd Design IP Instance Config Param key: '" + key +
                              "' is not allowed!");
    }
    config_.emplace_back(key, std::move(value));
}

void HMAVDesignIPInstance::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("vlnv", vlnv_);
    writer.addKey("instance", instance_);
    writer.addKey("name", getName());
    writer.addObject("configuration", [this](mav_platform::JSONObjectWriter& object) {
        for (const auto& [key, value] : config_) object.addLiteral(key, value);
    });
}
