// SPDX-License-Identifier: Apache-2.0
#include <set>

#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_platform/JSONValue.h"

namespace cli {
namespace {

using mav_platform::JSONValue;

constexpr const char* NOTES =
    "Asks whether an archive still holds the bytes that were packed; 'mav validate' asks whether "
    "a\n"
    "platform is free of faults, 'mav check' whether a tool release supports it.\n";

struct Options {
    std::string archive;
    bool json = false;
};

/// A member that cannot be read, or that is listed under a type and is not there.
struct Fault {
    std::string member;
    std::string type;  ///< empty for a member that cannot be read
    std::string text;
};
using Faults = std::vector<Fault>;

void findDamaged(const mav_host::ZipArchive& archive, Faults& faults) {
    for (const auto& member : archive.members()) {
        try {
            archive.read(member.name, UINT64_MAX, [](const char*, std::size_t) {});
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            faults.push_back({member.name, "", clause(error.what())});
        }
    }
}

void findAbsent(const mav_host::ZipArchive& archive, Faults& faults) {
    std::set<std::string> names;
    for (const auto& member : archive.members()) names.insert(member.name);
    for (const auto& [type, name] : typedMembers(archive).entries) {
        const auto inside = names.lower_bound(name + "/");
        const bool there =
            names.count(name) > 0 || (inside != names.end() && inside->starts_with(name + "/"));
        if (there) continue;
        faults.push_back(
            {name, type, "listed as " + printable(type) + " and absent: " + printable(name)});
    }
}

std::string json(const Options& options, bool good, const char* digest, const Faults& faults) {
    JSONValue list = JSONValue::list();
    for (const Fault& fault : faults) {
        list.add(JSONValue::object()
                     .add("kind", fault.type.empty() ? "damaged" : "absent")
                     .addPath("path", fault.member)
                     .add("type", JSONValue::orNull(fault.type))
                     .add("text", fault.text));
    }
    return JSONValue::answer("verify")
        .addPath("file", options.archive)
        .add("good", good)
        .add("digest", digest)
        .add("faults", std::move(list))
        .text();
}

std::string plain(const char* digest, const Faults& faults) {
    std::string text;
    for (const Fault& fault : faults) text += fault.text + "\n";
    return text + "digest: " + digest + "\n";
}

bool run(const Options& options) {
    bool good = false;
    guarded("verify", options.archive, [&] {
        const mav_host::ZipArchive archive = openArchive(options.archive);
        archive.checkInflation();
        Faults faults;
        mav_host::DigestState state{};
        {
            const ProgressLine progress;
            findDamaged(archive, faults);
            findAbsent(archive, faults);
            state = HUTZip::verifyDigest(options.archive);
        }
        good = faults.empty() && state == mav_host::DigestState::VALID;
        const char* const digest = digestText(state);
        writeData(options.json ? json(options, good, digest, faults) : plain(digest, faults));
    });
    return good;
}

}  // namespace

void commands::verify(Command& command) {
    command.description = "Tell whether an archive holds the bytes that were packed";
    command.notes = NOTES;
    command.no = "a member is damaged or absent, or the digest is not valid";
    command.failed = "the archive cannot be read, or the result cannot be written";
    command.examples = {{"mav verify card.pka", "after a download"}};
    auto& options = command.runs(run);
    command.argument("ARCHIVE", &options.archive, "Archive to check");
    command.typedJson(options.json);
}

}  // namespace cli
