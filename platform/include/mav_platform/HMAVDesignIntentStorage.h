// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// What the platform is meant for: four intents, each with a value and a flag that tells whether
/// somebody stated it. A small value; all start as false.
class MAV_API HMAVDesignIntentStorage : public mav_platform::JSONSerializable {
  public:
    struct Intent {
        bool value = false;
        bool isExplicit = false;
    };

    bool getDataCenter() const { return dataCenter_.value; }
    bool getEmbedded() const { return embedded_.value; }
    bool getExternalHost() const { return externalHost_.value; }
    bool getServerManaged() const { return serverManaged_.value; }
    bool isDataCenterExplicit() const { return dataCenter_.isExplicit; }
    bool isEmbeddedExplicit() const { return embedded_.isExplicit; }
    bool isExternalHostExplicit() const { return externalHost_.isExplicit; }
    bool isServerManagedExplicit() const { return serverManaged_.isExplicit; }
    void setDataCenter(bool value, bool isExplicit) { dataCenter_ = {value, isExplicit}; }
    void setEmbedded(bool value, bool isExplicit) { embedded_ = {value, isExplicit}; }
    void setExternalHost(bool value, bool isExplicit) { externalHost_ = {value, isExplicit}; }
    void setServerManaged(bool value, bool isExplicit) { serverManaged_ = {value, isExplicit}; }

    /// Writes the four values, always.
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    Intent dataCenter_, embedded_, externalHost_, serverManaged_;
};
