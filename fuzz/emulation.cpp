// SPDX-License-Identifier: Apache-2.0
// Emulation metadata in both forms, and the extension metadata; what is read can be written.
#include "mav_platform/HMAVEmulationExtMetaJsonReader.h"
#include "mav_platform/HMAVEmulationJsonReader.h"
#include "mav_platform/HMAVEmulationXMLReader.h"
#include "mav_platform/HMAVEmulationXMLWriter.h"
#include "mav_platform/HMAVEmulations.h"
#include "support.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = fuzz::file("emulation", data, size);
    HMAVEmulations emulations;
    HMAVEmulationExtMetaJsonReader(path, &emulations).parseJson();
    bool ok = HMAVEmulationJsonReader(path, &emulations).parseJson();
    ok = HMAVEmulationXMLReader(path, &emulations).parseXml() || ok;
    if (!ok || !HMAVEmulationXMLWriter(path, &emulations).writeXml()) return 0;
    HMAVEmulations again;
    fuzz::require(HMAVEmulationXMLReader(path, &again).parseXml(), "what was written is refused");
    fuzz::require(again.getEmulations().size() == emulations.getEmulations().size(),
                  "what was written lost an emulation");
    return 0;
}
