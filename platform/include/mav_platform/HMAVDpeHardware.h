// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <utility>

#include "mav_host/Export.h"
#include "mav_platform/JSONSerializable.h"

/// Architecture generation and geometry of the array engine. Embedded in every hardware platform.
class MAV_API HMAVDpeHardware : public mav_platform::JSONSerializable {
  public:
    enum Arch : int { NO_DPE, DPE_A, DPE_B, DPE_C, DPE_D, DPE_E, DPE_F };

    Arch getArch() const { return arch_; }
    void setArch(Arch arch) { arch_ = arch; }
    /// setArch(stringToArch(text)).
    void setArch(const std::string& text);
    /// "NONE" stands for NO_DPE and "DPE" for DPE_A; case is ignored throughout. Throws
    /// HEXAlgException "HMAVDpeHardware::setArch() - Invalid dpe architecture specified: " + text.
    static Arch stringToArch(const std::string& text);
    /// The value's name; "NO_DPE" for a value that has none.
    static std::string archToString(Arch arch);
    std::string getArchAsString() const { return archToString(arch_); }
    /// Values and names in the order of the values; built on first use.
    static const std::map<Arch, std::string>& getArchMap();

    /// A start row of -1 means that the kind of row is not given.
    int getStartShimRow() const { return startShimRow_; }
    void setStartShimRow(int row) { startShimRow_ = row; }
    int getNumShimRows() const { return numShimRows_; }
    void setNumShimRows(int count) { numShimRows_ = count; }
    int getStartCoreRow() const { return startCoreRow_; }
    void setStartCoreRow(int row) { startCoreRow_ = row; }
    int getNumCoreRows() const { return numCoreRows_; }
    void setNumCoreRows(int count) { numCoreRows_ = count; }
    int getStartMemRow() const { return startMemRow_; }
    void setStartMemRow(int row) { startMemRow_ = row; }
    int getNumMemRows() const { return numMemRows_; }
    void setNumMemRows(int count) { numMemRows_ = count; }
    /// Base address of the array's configuration interface.
    unsigned getNpiBaseAddress() const { return npiBaseAddress_; }
    void setNpiBaseAddress(unsigned address) { npiBaseAddress_ = address; }
    /// Always throws the standard library's logic error for a null string; use getNpiBaseAddress.
    std::string getNpiBaseAddressAsHex() const;
    const std::string& getColDict() const { return colDict_; }
    void setColDict(const std::string& text) { colDict_ = text; }
    /// The memory-mapped address range, as text.
    const std::string& getAxiBaseAddress() const { return axiBaseAddress_; }
    void setAxiBaseAddress(const std::string& text) { axiBaseAddress_ = text; }
    const std::string& getAxiHighAddress() const { return axiHighAddress_; }
    void setAxiHighAddress(const std::string& text) { axiHighAddress_ = text; }

    void toJSON(mav_platform::JSONObjectWriter& writer) const override;

  private:
    Arch arch_ = NO_DPE;
    int startShimRow_ = -1;
    int numShimRows_ = 0;
    int startCoreRow_ = -1;
    int numCoreRows_ = 0;
    int startMemRow_ = -1;
    int numMemRows_ = 0;
    unsigned npiBaseAddress_ = 0;
    std::string colDict_;
    std::string axiBaseAddress_;
    std::string axiHighAddress_;
};
