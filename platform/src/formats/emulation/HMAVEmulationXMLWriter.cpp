// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVEmulationXMLWriter.h"

#include <string_view>

#include "formats/emulation/MAVEmulationLMX.h"
#include "mav_host/HEXError.h"
#include "mav_host/HI18N.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Messages.h"
#include "mav_host/xml/Tree.h"
#include "mav_platform/HMAVEmulations.h"

namespace xml = mav_host::xml;

namespace {

xml::Node& addElement(xml::Node& parent, const char* name) {
    xml::Node& child = parent.children.emplace_back();
    child.name = name;
    return child;
}

void addAttribute(xml::Node& node, const char* name, const std::string& value) {
    node.attributes.push_back({name, HI18N_convertToUTF8(value)});
}

void addFile(xml::Node& files, const HMAVEmulationFile& file) {
    xml::Node& node = addElement(files, "File");
    addAttribute(node, "Type", file.getType());
    addAttribute(node, "Name", file.getName());
    if (!file.getInstPath().empty()) addAttribute(node, "InstPath", file.getInstPath());
}

void addEmulation(xml::Node& list, const HMAVEmulation& emulation) {
    xml::Node& node = addElement(list, "Emulation");
    if (!emulation.getName().empty()) addAttribute(node, "Name", emulation.getName());
    xml::Node& files = addElement(node, "Files");
    for (const HMAVEmulationFile* file : emulation.getFiles()) addFile(files, *file);
}

std::string textOf(const HMAVEmulations& emulations) {
    xml::Tree tree;
    xml::Node& root = tree.root;
    root.name = "EmulationMetadata";
    addAttribute(root, "xmlns", "urn:mav:emulation:1");
    addAttribute(root, "VersionMajor", std::to_string(emulations.getVersionMajor()));
    addAttribute(root, "VersionMinor", std::to_string(emulations.getVersionMinor()));
    xml::Node& list = addElement(root, "Emulations");
    for (const HMAVEmulation* emulation : emulations.getEmulations()) {
        addEmulation(list, *emulation);
    }
    return tree.write();
}

}  // namespace

bool HMAVEmulationXMLWriter::writeXml() {
    const auto fail = [&](const HEXError& error, const std::string& step, const std::string& more) {
        mav_host::report(mav_host::messages::FILE_NOT_PROCESSED, path_, error.what(), step, more);
        return false;
    };
    try {
        const std::string text = textOf(*emulations_);
        // Control characters and the like pass the writer, but no reader.
        mav_platform::lmx::emulationFormat().parseText(text);
        HUTFileUtils::writeWhole(path_, text);
    } catch (const xml::BindingError& error) {
        return fail(error, "line " + std::to_string(error.line()),
                    "column " + std::to_string(error.column()));
    } catch (const HEXError& error) {
        return fail(error, "writing", "the file is as it was");
    }
    mav_host::report(mav_host::messages::FILE_WRITTEN, path_);
    return true;
}
