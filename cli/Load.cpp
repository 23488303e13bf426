// SPDX-License-Identifier: Apache-2.0
#include "Load.h"

#include "Command.h"
#include "Output.h"
#include "mav_host/HEXError.h"

namespace cli {

using mav_platform::PlatformLoader;

std::unique_ptr<PlatformLoader> loadFile(const std::string& command, const std::string& file,
                                         mav_platform::HwMetadataMode mode) {
    if (file.empty()) throw UsageError("FILE is empty; give the path of a platform file.", command);
    const std::string subject = "cannot load '" + printable(file) + "'";
    try {
        auto loader = std::make_unique<PlatformLoader>(file, mode);
        if (loader->load()) return loader;
    } catch (const HEXFileNotFoundException&) {
        throw Failure(subject +
                      ": nothing is there. Check the path; a platform is a .qpfm, "
                      ".pka, .dsa or .spfm file.");
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(subject + ": " + clause(error.what()) +
                      ". Correct what the messages name and run the command again.");
    }
    throw Failure(subject + ". Correct what the messages above name and run the command again.");
}

}  // namespace cli
