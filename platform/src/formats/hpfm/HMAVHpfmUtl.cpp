// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVHpfmUtl.h"

#include <algorithm>
#include <ostream>
#include <string_view>

#include "formats/hpfm/MAVHpfmLMX.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Host.h"
#include "mav_host/Messages.h"
#include "mav_host/xml/Tree.h"

namespace lmx = mav_platform::lmx;
namespace xml = mav_host::xml;

namespace {

constexpr std::string_view PREFERRED = "preferred";

/// True when some of the auto-assignable banks are preferred, but not all.
bool isMixed(const lmx::HpfmBusInterface& bus) {
    std::size_t counted = 0;
    std::size_t preferred = 0;
    for (const lmx::HpfmAddressSegment& bank : bus.addressSegments) {
        if (bank.automatic == "false") continue;
        ++counted;
        if (bank.automatic == PREFERRED) ++preferred;
    }
    return preferred != 0 && preferred != counted;
}

bool isMixedHbm(const lmx::HpfmBusInterface& bus) {
    return bus.name == lmx::HBM_SUBSYSTEM && isMixed(bus);
}

bool needsChange(const lmx::HpfmRepository& repository) {
    return std::any_of(repository.components.begin(), repository.components.end(),
                       [](const lmx::HpfmComponent& part) {
                           return std::any_of(part.busInterfaces.begin(), part.busInterfaces.end(),
                                              isMixedHbm);
                       });
}

bool isElement(const xml::Node& node, std::string_view name) {
    return node.kind == xml::Node::Kind::Element && node.name == name;
}

std::string textOf(const xml::Node& node, std::string_view attribute) {
    const std::string* value = node.attribute(attribute);
    return value == nullptr ? std::string() : *value;
}

/// Prefers the banks of an HBM interface whose banks are mixed.
void preferBanks(xml::Node& bus) {
    if (textOf(bus, "qd:name") != lmx::HBM_SUBSYSTEM) return;
    lmx::HpfmBusInterface banks;
    for (const xml::Node& child : bus.children) {
        if (!isElement(child, "qd:addressSegment")) continue;
        banks.addressSegments.emplace_back().automatic = textOf(child, "qd:auto");
    }
    if (!isMixed(banks)) return;
    for (xml::Node& child : bus.children) {
        if (!isElement(child, "qd:addressSegment") || textOf(child, "qd:auto") == "false") continue;
        child.setAttribute("qd:auto", std::string(PREFERRED));
    }
}

std::string withPreferredBanks(std::string_view text) {
    xml::Tree tree = xml::Tree::parse(text);
    if (tree.root.attribute("xmlns:qd") == nullptr) {
        tree.root.attributes.insert(tree.root.attributes.begin(), {"xmlns:qd", "urn:mav:hpfm:1"});
    }
    for (xml::Node& child : tree.root.children) {
        if (!isElement(child, "qd:component")) continue;
        for (xml::Node& inner : child.children) {
            if (isElement(inner, "qd:busInterface")) preferBanks(inner);
        }
    }
    return tree.write();
}

}  // namespace

void HMAVHpfmUtl::ChangeAndWriteHpfmIfNeeded(const std::string& path) {
    using mav_host::report;
    namespace messages = mav_host::messages;
    if (!HUTFile::exists(path)) {
        mav_host::console() << "File: " << path << " doesn't exist.\n" << std::flush;
        report(messages::HPFM_FILE_NOT_VALID);
        return;
    }
    std::string text;
    try {
        text = HUTFileUtils::readWhole(path, xml::Limits().bytes);
    } catch (const HEXError& error) {
        report(messages::HPFM_NOT_REWRITTEN, path, error.what(), "reading");
        return;
    }
    try {
        const lmx::HpfmRepository repository = lmx::hpfmFormat().parseText(text);
        if (!needsChange(repository)) return;
        report(messages::HBM_PARTLY_PREFERRED);
        HUTFileUtils::writeWhole(path, withPreferredBanks(text));
        report(messages::FILE_WRITTEN, path);
    } catch (const xml::BindingError& error) {
        report(messages::FILE_NOT_PROCESSED, path, error.what(),
               "line " + std::to_string(error.line()), "column " + std::to_string(error.column()));
    } catch (const HEXError& error) {
        report(messages::FILE_NOT_PROCESSED, path, error.what(), "writing",
               "the file is as it was");
    }
}
