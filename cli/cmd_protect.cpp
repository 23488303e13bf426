// SPDX-License-Identifier: Apache-2.0
#include "Archive.h"
#include "Command.h"
#include "Output.h"
#include "mav_host/HUTFile.h"
#include "mav_host/xp.h"

namespace {

namespace xp = isl::iostreams::xp;

constexpr std::uint64_t MAX_SIZE = std::uint64_t{1} << 30;

}  // namespace

void cli::runProtect(const ProtectOptions& options) {
    if (xp::is_xp_format(options.source))
        throw Failure("cannot protect " + shown(options.source) +
                      ": it is protected already. Give the file in the clear.");
    guarded("protect", options.source,
            [&] { xp::write(options.target, HUTFileUtils::readWhole(options.source, MAX_SIZE)); });
}

void cli::runUnprotect(const ProtectOptions& options) {
    guarded("unprotect", options.source, [&] {
        const std::string content = xp::read(options.source);
        if (options.target.empty()) {
            writeAnswer(content);
        } else {
            HUTFileUtils::writeWhole(options.target, content);
        }
    });
}
