// SPDX-License-Identifier: Apache-2.0
#include "mav_platform/HMAVTmpDirObject.h"

#include <filesystem>
#include <system_error>

#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/HUTFile.h"
#include "mav_host/HUTZip.h"
#include "mav_host/Messages.h"

namespace {

/// Makes a directory that was not there before; empty when none can be made.
std::string makeOwnDir(const std::string& name) {
    for (;;) {
        std::string wanted = HUTFileUtils::makeUniqueName(HUTEnv::getHDITmpDir(), name);
        std::error_code error;
        if (!HUTFileUtils::makeDirs(HUTFile::getParent(wanted))) return "";
        if (std::filesystem::create_directory(wanted, error)) return wanted;
        if (error) return "";
        // Another thread was faster; the next free name is asked for.
    }
}

}  // namespace

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
    const std::string made = makeOwnDir(name);
    if (HUTFile::isWritable(made)) path_ = HUTFile::getCanonicalName(made);
    return exists();
}

bool HMAVTmpDirObject::exists() const {
    return !path_.empty() && HUTFile::isDir(path_);
}

void HMAVTmpDirObject::deleteTmpDir() {
    if (!exists()) return;
    HUTFileUtils::removeDirs(path_);
    if (exists()) mav_host::report(mav_host::messages::DIRECTORY_STAYS, path_);
}
