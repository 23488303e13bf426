// SPDX-License-Identifier: Apache-2.0
#include <set>

#include "Archive.h"
#include "Command.h"
#include "Output.h"

namespace cli {
namespace {

struct Options {
    std::string archive;
};

/// Sentences about members that cannot be read or that are listed and not there.
std::string findFaults(const mav_host::ZipArchive& archive) {
    const ProgressLine progress;
    std::string faults;
    const auto members = archive.members();
    for (const auto& member : members) {
        try {
            archive.read(member.name, UINT64_MAX, [](const char*, std::size_t) {});
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            faults += clause(error.what()) + "\n";
        }
    }
    std::set<std::string> names;
    for (const auto& member : members) names.insert(member.name);
    for (const auto& [type, name] : typedMembers(archive).entries) {
        const auto inside = names.lower_bound(name + "/");
        const bool there =
            names.count(name) > 0 || (inside != names.end() && inside->starts_with(name + "/"));
        if (!there)
            faults += "listed as " + printable(type) + " and absent: " + printable(name) + "\n";
    }
    return faults;
}

bool run(const Options& options) {
    bool good = false;
    guarded("verify", options.archive, [&] {
        const mav_host::ZipArchive archive = openArchive(options.archive);
        archive.checkInflation();
        const std::string faults = findFaults(archive);
        const mav_host::DigestState state = [&] {
            const ProgressLine progress;
            return HUTZip::verifyDigest(options.archive);
        }();
        good = faults.empty() && state == mav_host::DigestState::VALID;
        writeAnswer(faults + "digest: " + digestText(state) + "\n");
    });
    return good;
}

}  // namespace

void commands::verify(Command& command) {
    command.description = "Check members and digest of an archive";
    auto& options = command.runs(run);
    command.argument("ARCHIVE", &options.archive, "Archive to check");
}

}  // namespace cli
