// SPDX-License-Identifier: Apache-2.0
// The description road of the loader: a description beside an archive and a software platform.
#include "archive.h"

namespace {

void place(const std::string& name, std::string_view text) {
    std::ofstream(fuzz::surroundings().dir() + "/load/" + name) << text;
}

bool prepare() {
    for (const char* const folder : {"load/hw", "load/sw"}) fuzz::freshDir(folder);
    fuzz::archive("load/hw/hw.pka",
                  {{"pka.json", "", R"({"vendor": "v", "board": {"name": "b"}, "files": []})"},
                   {"hw_emu/hw_emu.json", "", R"({"platform": {"vendor": "v"}})"}});
    place("sw/sw.spfm", "<mav:platform xmlns:mav=\"urn:mav:platform:1\" mav:name=\"s\"/>");
    return true;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool prepared = prepare();
    fuzz::require(prepared, "nothing stands beside the description");
    fuzz::usePlatform(fuzz::file("load/card.qpfm", data, size));
    return 0;
}
