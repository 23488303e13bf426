// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVSystemClock.h"

#include "mav_platform/JSONObjectWriter.h"

bool HMAVSystemClock::isFixed() const {
    return status_ == "fixed";
}

bool HMAVSystemClock::isScalable() const {
    return status_ == "scalable" || status_ == "changeable";
}

void HMAVSystemClock::toJSON(mav_platform::JSONObjectWriter& writer) const {
    writer.addKey("name", name_);
    writer.addKey("origName", origName_);
    writer.addKey("id", id_);
    writer.addKey("frequency", frequency_);
    writer.addKey("instRef", instRef_);
    writer.addKey("compRef", compRef_);
    writer.addKey("period", period_);
    writer.addKey("normalizedPeriod", normalizedPeriod_);
    writer.addKey("status", status_);
}
