// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_platform/ArchiveAnswers.h"

namespace cli {
namespace {

using mav_platform::ArchiveSoundness;

constexpr const char* NOTES =
    "Asks whether an archive still holds the bytes that were packed; 'mav validate' asks whether "
    "a\n"
    "platform is free of faults, 'mav check' whether a tool release supports it.\n";

struct Options {
    std::string archive;
    bool json = false;
};

std::string plain(const ArchiveSoundness& soundness) {
    std::string text;
    for (const auto& fault : soundness.faults) text += printable(fault.text) + "\n";
    return text + "digest: " + mav_platform::digestWord(soundness.digest) + "\n";
}

ArchiveSoundness read(const mav_host::ZipArchive& archive) {
    const ProgressLine progress;
    return ArchiveSoundness(archive);
}

bool run(const Options& options) {
    bool good = false;
    guarded("verify", options.archive, [&] {
        const ArchiveSoundness soundness = read(openArchive(options.archive));
        good = soundness.good();
        writeData(options.json ? soundness.answer(options.archive).text() : plain(soundness));
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
