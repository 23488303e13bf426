// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HBOBoardCDataManager.h"

namespace {
HBOBoardCDataManager::Factory theFactory = nullptr;
}

HBOBoardCDataManager::~HBOBoardCDataManager() = default;

void HBOBoardCDataManager::setBoardPartRepoPaths(const HSTVector<std::string>& paths,
                                                 bool& changed) {
    changed = paths != paths_;
    paths_ = paths;
}

void HBOBoardCDataManager::getBoardPartRepoPaths(HSTVector<std::string>& out) const {
    out = paths_;
}

HBOBoardCDataManager* HBOBoardCDataManager::create() {
    HBOBoardCDataManager* const made = theFactory != nullptr ? theFactory() : nullptr;
    return made != nullptr ? made : new HBOBoardCDataManager;
}

HBOBoardCDataManager::Factory HBOBoardCDataManager::setFactory(Factory factory) {
    const Factory before = theFactory;
    theFactory = factory;
    return before;
}
