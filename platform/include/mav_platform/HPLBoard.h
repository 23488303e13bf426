// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/HPLDriver.h"
#include "mav_platform/HPLPCIeId.h"
#include "mav_platform/JSONSerializable.h"
#include "mav_platform/OwnedList.h"

/// The board that carries the device. Owns its connectors, drivers and PCIe identity.
class MAV_API HPLBoard : public mav_platform::JSONSerializable {
  public:
    const std::string& getName() const { return name_; }
    void setName(std::string value) { name_ = std::move(value); }
    const std::string& getVendor() const { return vendor_; }
    void setVendor(std::string value) { vendor_ = std::move(value); }
    const std::string& getPart() const { return part_; }
    void setPart(std::string value) { part_ = std::move(value); }
    const std::string& getBoardPart() const { return boardPart_; }
    void setBoardPart(std::string value) { boardPart_ = std::move(value); }
    const std::string& getImageFileHdpi() const { return imageFileHdpi_; }
    void setImageFileHdpi(std::string value) { imageFileHdpi_ = std::move(value); }
    const std::string& getImageFileMdpi() const { return imageFileMdpi_; }
    void setImageFileMdpi(std::string value) { imageFileMdpi_ = std::move(value); }
    const std::string& getImageFileLdpi() const { return imageFileLdpi_; }
    void setImageFileLdpi(std::string value) { imageFileLdpi_ = std::move(value); }
    /// A socket for a memory module.
    class MAV_API DimmConnector : public mav_platform::JSONSerializable {
      public:
        const std::string& getName() const { return name_; }
        void setName(std::string value) { name_ = std::move(value); }
        const std::string& getDisplayName() const { return displayName_; }
        void setDisplayName(std::string value) { displayName_ = std::move(value); }
        const std::string& getType() const { return type_; }
        void setType(std::string value) { type_ = std::move(value); }
        const std::string& getConnectedName() const { return connectedName_; }
        void setConnectedName(std::string value) { connectedName_ = std::move(value); }
        const std::string& getConnectedDisplayName() const { return connectedDisplayName_; }
        void setConnectedDisplayName(std::string value) {
            connectedDisplayName_ = std::move(value);
        }
        bool isConnected() const { return connected_; }
        void setConnected(bool value) { connected_ = value; }
        bool isLocked() const { return locked_; }
        void setLocked(bool value) { locked_ = value; }
        void toJSON(mav_platform::JSONObjectWriter& writer) const override;

      private:
        std::string name_;
        std::string displayName_;
        std::string type_;
        std::string connectedName_;
        std::string connectedDisplayName_;
        bool connected_ = false;
        bool locked_ = false;
    };

    /// Append an empty part, owned by the board, and answer it.
    DimmConnector* addDimmConnector() { return connectors_.add(); }
    HPLDriver* addDriver() { return drivers_.add(); }
    const HSTVector<DimmConnector*>& getDimmConnectors() const { return connectors_.items(); }
    const HSTVector<HPLDriver*>& getDrivers() const { return drivers_.items(); }
    /// The PCIe identity, made on first use.
    HPLPCIeId& createPCIeId();
    /// The PCIe identity; null when there is none.
    const HPLPCIeId* getPCIeId() const { return pcieId_.get(); }
    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    std::string name_;
    std::string vendor_;
    std::string part_;
    std::string boardPart_;
    std::string imageFileHdpi_;
    std::string imageFileMdpi_;
    std::string imageFileLdpi_;
    OwnedList<DimmConnector> connectors_;
    OwnedList<HPLDriver> drivers_;
    std::unique_ptr<HPLPCIeId> pcieId_;
};
