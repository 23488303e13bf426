// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVTmpDirObject.h"

#include "mav_host/ComMsgMgr.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"

HMAVTmpDirObject::HMAVTmpDirObject(const std::string& name) {
    create(name);
}

bool HMAVTmpDirObject::create(const std::string& name) {
    return createTmpDir(name);
}

bool HMAVTmpDirObject::createTmpDir(const std::string& name) {
    path_.clear();
    if (!name.empty() && !HUTZip::isMemberName(name)) {
        throw HEXUserException("HMAVTmpDirObject::createTmpDir() - '" + name +
                               "' leads out of the temporary directory; give a plain name");
    }
    const std::string wanted = HUTFileUtils::makeUniqueName(HUTEnv::getHDITmpDir(), name);
    if (HUTFileUtils::makeDirs(wanted) && HUTFile::isWritable(wanted)) {
        path_ = HUTFile::getCanonicalName(wanted);
    }
    return exists();
}

bool HMAVTmpDirObject::exists() const {
    return !path_.empty() && HUTFile::isDir(path_);
}

void HMAVTmpDirObject::deleteTmpDir() {
    if (!exists()) return;
    HUTFileUtils::removeDirs(path_);
    if (exists()) ComMsgMgr::sendMsg(1, "platform", ComMsgMgr::WARNING, "@1-1874@%s", {path_});
}
