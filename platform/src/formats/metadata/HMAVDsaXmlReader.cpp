// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVDsaXmlReader.h"

#include <utility>

#include "archive/OpenArchives.h"
#include "mav_host/HEXError.h"
#include "mav_host/Messages.h"
#include "mav_platform/HPLPlatform.h"

HMAVDsaXmlReader::HMAVDsaXmlReader(std::string path, HPLPlatform* platform,
                                   mav_platform::OpenArchives* archives)
    : path_(std::move(path)), platform_(platform), archives_(archives) {}

bool HMAVDsaXmlReader::parseDSA() {
    std::string reason;
    try {
        mav_platform::OpenArchives own;
        (archives_ != nullptr ? *archives_ : own).open(path_);
        platform_->setPlatformFile(path_);
        reason = "no JSON metadata member that the metadata mode admits ('" +
                 platform_->getAltJsonFileName() + "' or '" + platform_->getJsonFileName() +
                 "') is in the archive, and device support XML is not read; pack the archive "
                 "with JSON metadata";
    } catch (const HEXError& error) {
        reason = error.what();
    }
    mav_host::report(mav_host::messages::METADATA_UNUSABLE, path_, reason);
    errorMsg_ = reason;
    return false;
}
