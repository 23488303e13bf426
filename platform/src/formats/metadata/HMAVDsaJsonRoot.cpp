// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <boost/property_tree/ptree.hpp>

#include "formats/Fields.h"
#include "formats/metadata/HMAVDsaJsonReaderImpl.h"
#include "mav_platform/HMAVDesignIPInstance.h"
#include "mav_platform/HMAVDesignIntentStorage.h"
#include "mav_platform/HMAVReconfigPartition.h"
#include "mav_platform/HPLPlatform.h"

using namespace mav_platform::metadata;

void HMAVDsaJsonReaderImpl::parseRoot_(HPLPlatform& platform, const Node& root, Trail& trail) {
    using P = HPLPlatform;
    static constexpr bool REQUIRED = true;
    static constexpr Field<P> FIELDS[] = {
        {"generatedChangeList", &unsignedNumber<&P::setGeneratedChangeList>},
        {"generatedIpChangeList", &text<&P::setGeneratedIpChangeList>},
        {"generatedSharedDataChangeList", &text<&P::setGeneratedSharedDataChangeList>},
        {"generatedName", &text<&P::setGeneratedName>},
        {"generatedVersion", &text<&P::setGeneratedVersion>},
        {"generatedTimestamp", &text<&P::setGeneratedTimestamp>},
        {"hasExternalSources", &boolean<&P::setHasExternalSources>},
        {"hasVMAContent", &boolean<&P::setHasVMAContent>},
        {"genLink", &boolean<&P::setGeneratedByLink>},
        {"genSwEmuLink", &boolean<&P::setGeneratedBySwEmuLink>},
        {"idCode", &text<&P::setIdCode>},
        {"extendedIdCode", &text<&P::setExtendedIdCode>},
        {"vendor", &text<&P::setVendor>, REQUIRED},
        {"boardId", &text<&P::setBoardId>, REQUIRED},
        {"name", &text<&P::setName>, REQUIRED},
        {"versionMajor", &unsignedNumber<&P::setVersionMajor>, REQUIRED},
        {"versionMinor", &unsignedNumber<&P::setVersionMinor>, REQUIRED},
        {"description", &text<&P::setDescription>},
        {"detailedDescription", &text<&P::setDetailedDescription>},
        {"hostArchitecture", &text<&P::setHostArch>},
        {"hostInterface", &text<&P::setHostInterface>},
        {"platformState", &text<&P::setPlatformState>},
        {"acceleratorBinaryContent", &text<&P::setAcceleratorBinaryContent>},
        {"acceleratorBinaryFormat", &text<&P::setAcceleratorBinaryFormat>},
        {"unifiedPlatform", &boolean<&P::setUnifiedPlatform>},
        {"dcpFunctionStripped", &boolean<&P::setDcpFuncStripped>},
        {"dcpEncrypted", &boolean<&P::setDcpEncrypt>},
        {"topModuleName", &text<&P::setTopModuleName>},
        {"usesNIFD", &boolean<&P::setUsesNIFD>},
        {"hardware", &boolean<&P::setSupportsHardware>},
        {"softwareEmulation", &boolean<&P::setSupportsSWEmulation>},
        {"hardwareEmulation", &boolean<&P::setSupportsHWEmulation>},
        // Judges the next two, so it takes effect before them wherever it stands.
        {"expandablePlatform", &boolean<&P::setExpandable>},
        {"segmentedConfiguration", &boolean<&P::enableSegmentedConfiguration>},
        {"dynamicReload", &boolean<&P::enableDynamicReload>},
        {"hardwareEmuPlatform", &boolean<&P::setHWEmuPlatform>},
        {"defaultOutputType", &text<&P::setDefaultOutputType>},
        {"validAcceleratorBinaryContentValues", &parseValidBinaryContentValues_},
        {"usesPR", &boolean<&P::setUsesPR>},
        {"designIntent", &object<&parseDesignIntent_>},
        {"yarcCompileXPSwitches", &parseCompileXPSwitches_},
        {"yarcLinkXPSwitches", &parseLinkXPSwitches_},
        {"designIpInstances", &parseDesignIPs_},
        {"flash", &object<&parseFlash_>},
        {"designIDs", &object<&parseDesignIDs_>},
        {"reconfigPartitionIDs", &parseReconfigPartitionIDs_},
        {"dpeHardware", &object<&parseDpeHardware_>},
        {"dpePartitions", &parseDpePartitions_},
        {"static", &boolean<&P::setStatic>},
        {"drBdInstName", &text<&P::setDrBdInstName>},
        {"reconfigModuleName", +[](P& target, const Node&, Trail&) { target.setRM(true); }},
        {"resources", &parseResources_},
        {"board", &object<&parseBoard_>},
        {"devices", &parseDevices_},
        {"interfaces", &parseInterfaces_},
        {"memories", &parseMemories_},
        {"files", &parseFiles_},
        {"featureRoms", &parseFeatureRoms_},
        {"systemClocks", &parseSystemClocks_},
    };
    readFields(FIELDS, root, platform, trail);
}

void HMAVDsaJsonReaderImpl::parseRest_(HPLPlatform& platform, const Node& root, Trail& trail) {
    using P = HPLPlatform;
    static constexpr Field<P> FIELDS[] = {
        {"busInterfaces", &parseBusInterfaces_},
        {"nocConnectivity", &parseNocConnectivity_},
        {"ipParameters", &parseIPParams_},
        {"extensions",
         +[](P& target, const Node& node, Trail&) {
             if (requireObject(node)) target.setExtensions(node.tree());
         }},
    };
    readFields(FIELDS, root, platform, trail);
}

void HMAVDsaJsonReaderImpl::parseValidBinaryContentValues_(HPLPlatform& platform, const Node& node,
                                                           Trail& trail) {
    const auto add = [&](std::string_view value) {
        if (!value.empty()) platform.addValidBinaryContentValue(std::string(value));
    };
    if (node.hasChildren()) {
        readItems(node, trail, [&](const Node& item) {
            requireText(item);
            add(item.data());
        });
        return;
    }
    if (isNothing(node)) return;
    const std::string_view list = node.data();
    constexpr std::string_view SEPARATORS = ", \t\r\n\f\v";
    for (std::size_t start = 0; start < list.size();) {
        const std::size_t end = std::min(list.find_first_of(SEPARATORS, start), list.size());
        add(list.substr(start, end - start));
        start = end + 1;
    }
}

void HMAVDsaJsonReaderImpl::parseDesignIntent_(HPLPlatform& platform, const Node& node,
                                               Trail& trail) {
    using Intent = HMAVDesignIntentStorage;
    struct Flags {
        bool value = false;
        bool isExplicit = false;
    };
    struct Read {
        Flags dataCenter, embedded, externalHost, serverManaged;
        HPLPlatform* platform;
    };
    static constexpr Field<Flags> FLAGS[] = {
        {"value",
         +[](Flags& flags, const Node& item, Trail&) {
             requireText(item);
             flags.value = mav_platform::json::toBool(item.data());
         }},
        {"explicit",
         +[](Flags& flags, const Node& item, Trail&) {
             requireText(item);
             flags.isExplicit = mav_platform::json::toBool(item.data());
         }},
    };
    static constexpr auto INTENT = [](Flags& flags, const Node& item, Trail& place) {
        if (requireObject(item)) readFields(FLAGS, item, flags, place);
    };
    static constexpr Field<Read> FIELDS[] = {
        {"dataCenter", +[](Read& r, const Node& n, Trail& t) { INTENT(r.dataCenter, n, t); }},
        {"embedded", +[](Read& r, const Node& n, Trail& t) { INTENT(r.embedded, n, t); }},
        {"externalHost", +[](Read& r, const Node& n, Trail& t) { INTENT(r.externalHost, n, t); }},
        {"serverManaged", +[](Read& r, const Node& n, Trail& t) { INTENT(r.serverManaged, n, t); }},
        // Wins over the root's "usesPR", which has been read before.
        {"usesPR", +[](Read& r, const Node& n,
                       Trail& t) { boolean<&HPLPlatform::setUsesPR>(*r.platform, n, t); }},
    };
    Read read;
    read.platform = &platform;
    readFields(FIELDS, node, read, trail);
    Intent intent;
    intent.setDataCenter(read.dataCenter.value, read.dataCenter.isExplicit);
    intent.setEmbedded(read.embedded.value, read.embedded.isExplicit);
    intent.setExternalHost(read.externalHost.value, read.externalHost.isExplicit);
    intent.setServerManaged(read.serverManaged.value, read.serverManaged.isExplicit);
    platform.setExplicitDesignIntent(intent);
}

void HMAVDsaJsonReaderImpl::parseCompileXPSwitches_(HPLPlatform& platform, const Node& node,
                                                    Trail& trail) {
    texts<&HPLPlatform::addYarcCompileXpSwitch>(platform, node, trail);
}

void HMAVDsaJsonReaderImpl::parseLinkXPSwitches_(HPLPlatform& platform, const Node& node,
                                                 Trail& trail) {
    texts<&HPLPlatform::addYarcLinkXpSwitch>(platform, node, trail);
}

void HMAVDsaJsonReaderImpl::parseDesignIPs_(HPLPlatform& platform, const Node& node, Trail& trail) {
    using Ip = HMAVDesignIPInstance;
    static constexpr Field<Ip> FIELDS[] = {
        {"vlnv", &text<&Ip::setVlnv>},
        {"instance", &text<&Ip::setInstance>},
        {"configuration",
         +[](Ip& ip, const Node& configuration, Trail&) {
             if (!requireObject(configuration)) return;
             for (const Node& parameter : configuration) {
                 requireText(parameter);
                 ip.addConfigParam(std::string(parameter.key()), std::string(parameter.data()));
             }
         }},
    };
    readItems(node, trail, [&](const Node& item) {
        readFields(FIELDS, item, *platform.addDesignIPInstance(), trail);
    });
}

void HMAVDsaJsonReaderImpl::parseFlash_(HPLPlatform& platform, const Node& node, Trail& trail) {
    static constexpr Field<HPLPlatform> FIELDS[] = {
        {"interfaceType", &text<&HPLPlatform::setFlashInterfaceType>},
        {"offsetAddress", &text<&HPLPlatform::setFlashOffsetAddress>},
        {"size", &text<&HPLPlatform::setFlashSize>},
    };
    readFields(FIELDS, node, platform, trail);
}

void HMAVDsaJsonReaderImpl::parseReconfigPartition_(HMAVReconfigPartition& ids, const Node& node,
                                                    Trail& trail) {
    using Ids = HMAVReconfigPartition;
    static constexpr Field<Ids> DPENGINE_IDS[] = {
        {"plInterfaceID", &unsignedNumber<&Ids::setDPEPlInterfaceID>},
        {"nodeID", &unsignedNumber<&Ids::setDPENodeID>},
        {"uniqueID", &unsignedNumber<&Ids::setDPEUniqueID>},
        {"puID", &unsignedNumber<&Ids::setDPEPuID>},
    };
    static constexpr Field<Ids> FIELDS[] = {
        {"designID", &unsignedNumber<&Ids::setDesignID>},
        {"parentID", &unsignedNumber<&Ids::setParentID>},
        {"nodeID", &unsignedNumber<&Ids::setNodeID>},
        {"dpengineIDs",
         +[](Ids& target, const Node& ids2, Trail& place) {
             if (requireObject(ids2)) readFields(DPENGINE_IDS, ids2, target, place);
         }},
        {"functionID", &unsignedNumber<&Ids::setFunctionID>},
    };
    readFields(FIELDS, node, ids, trail);
}

void HMAVDsaJsonReaderImpl::parseDesignIDs_(HPLPlatform& platform, const Node& node, Trail& trail) {
    parseReconfigPartition_(platform.createDesignIDs(), node, trail);
}

void HMAVDsaJsonReaderImpl::parseReconfigPartitionIDs_(HPLPlatform& platform, const Node& node,
                                                       Trail& trail) {
    readItems(node, trail, [&](const Node& item) {
        parseReconfigPartition_(*platform.addReconfigPartition(), item, trail);
    });
}

void HMAVDsaJsonReaderImpl::parseResources_(HPLPlatform& platform, const Node& node, Trail& trail) {
    using Resource = std::pair<std::string, std::string>;
    static constexpr Field<Resource> FIELDS[] = {
        {"type",
         +[](Resource& resource, const Node& n, Trail&) {
             requireText(n);
             resource.first = n.data();
         }},
        {"count",
         +[](Resource& resource, const Node& n, Trail&) {
             requireText(n);
             resource.second = n.data();
         }},
    };
    readItems(node, trail, [&](const Node& item) {
        Resource resource;
        readFields(FIELDS, item, resource, trail);
        platform.addResource(std::move(resource.first), std::move(resource.second));
    });
}
