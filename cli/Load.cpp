// SPDX-License-Identifier: Apache-2.0
#include "Load.h"

#include <filesystem>

#include "Command.h"
#include "Output.h"
#include "mav_host/HUTEnv.h"

namespace {

const char* kindOf(std::filesystem::file_type type) {
    if (type == std::filesystem::file_type::fifo) return "pipe";
    return type == std::filesystem::file_type::socket ? "socket" : "device";
}

/// Paths that cannot be a platform, whatever their extension.
void refuseEarly(const std::string& subject, const std::string& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (status.type() == std::filesystem::file_type::not_found)
        throw cli::Failure(subject +
                           ": nothing is there. Check the path; a platform is a .qpfm, "
                           ".pka, .dsa or .spfm file.");
    if (status.type() == std::filesystem::file_type::directory)
        throw cli::Failure(subject +
                           ": it is a directory. Name the platform file in it; 'mav list' with the "
                           "directory shows what it holds.");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw cli::Failure(subject + ": it is a " + kindOf(status.type()) +
                           ", and a platform is a regular file. Name a .qpfm, .pka, .dsa or "
                           ".spfm file.");
    if (status.type() == std::filesystem::file_type::regular &&
        std::filesystem::file_size(file, error) == 0)
        throw cli::Failure(subject +
                           ": the file is empty. Copy it afresh from where it came from.");
}

}  // namespace

namespace cli {

using mav_platform::PlatformLoader;

std::unique_ptr<PlatformLoader> loadFile(const std::string& command, const std::string& file,
                                         mav_platform::HwMetadataMode mode) {
    if (file.empty()) throw UsageError("FILE is empty; give the path of a platform file.", command);
    const std::string subject = "cannot load '" + printable(file) + "'";
    refuseEarly(subject, file);
    const std::string advice = " and run the command again. 'mav validate " + printable(file) +
                               "' finds all that is wrong with it.";
    try {
        auto loader = std::make_unique<PlatformLoader>(file, mode);
        if (loader->load()) return loader;
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        throw Failure(subject + ": " + clause(error.what()) + ". Correct what the messages name" +
                      advice);
    }
    throw Failure(subject + ". Correct what the messages above name" + advice);
}

void needToolRelease(const std::string& command) {
    const std::string fault = HUTEnv::getReleaseFault();
    if (!fault.empty()) throw UsageError(fault, command);
}

}  // namespace cli
