// SPDX-License-Identifier: Apache-2.0
// Lists the clocks of a platform and names its board. Usage: platform_cpp FILE
//
// Build it with what pkg-config says:
//   g++ platform.cpp $(pkg-config --cflags --libs mav-platform-cxx) -o platform_cpp
#include <mav_platform/mav_platform.h>

#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <iostream>

namespace {

/// What the library tells on its way goes here as long as it lives, on this thread alone.
class Reports final : public mav_host::ReportScope {
  public:
    ~Reports() override { close(); }

  private:
    void onReport(const ComMsg& message) override {
        std::cerr << ComMsgMgr::format(message) << "\n";
    }
    void onLines(const std::string& text) override { std::cerr << text; }
};

void show(const HMAVHardwarePlatform& hardware) {
    std::cout << hardware.getName() << " for " << hardware.getFpgaPart() << "\n";
    // The platform owns its objects; pointers to them live as long as it does.
    HSTVector<HMAVSystemClock*> clocks;
    hardware.getSystemClocks(clocks);
    for (const HMAVSystemClock* clock : clocks)
        std::cout << "clock   " << clock->getName() << "  " << clock->getFrequency() << " MHz\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: " << argv[0] << " FILE\n";
        return 2;
    }
    const Reports reports;
    try {
        // The extension tells what the file is; everything it refers to is read along.
        mav_platform::PlatformLoader loader(argv[1], mav_platform::HW_METADATA_AUTO);
        const auto platform = loader.load();
        if (!platform) return 1;  // the reports have told why
        if (const HMAVHardwarePlatform* const hardware = platform->getHardwarePlatform())
            show(*hardware);
        // The same services answer to paths, as 'mav get' does.
        bool found = false;
        const auto board = mav::platform::NativeObjectService().getObjectsByPath(
            &loader, "hardwarePlatform.board.name", found);
        if (found) std::cout << "board   " << board.data() << "\n";
        return 0;
    } catch (const std::exception& error) {
        // Missing files and files that do not parse; the text says what to do.
        std::cerr << error.what() << "\n";
        return 1;
    }
}
