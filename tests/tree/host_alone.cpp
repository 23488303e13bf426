// SPDX-License-Identifier: Apache-2.0
// Links every object of the host layer without the platform library, and uses it.
#include <cstring>
#include <iostream>
#include <sstream>

#include "mav_host/ComMsgMgr.h"
#include "mav_host/HEXError.h"
#include "mav_host/HUTEnv.h"
#include "mav_host/Host.h"

int main() {
    std::ostringstream lines;
    mav_host::setConsole(&lines);
    mav_host::console() << "a line";
    mav_host::resetHost();
    const bool console = lines.str() == "a line" && &mav_host::console() == &std::cout;

    bool thrown = false;
    try {
        throw HEXUserException("text");
    } catch (const HEXError& error) {
        thrown = std::strcmp(error.what(), "text") == 0;
    }
    const bool sentence = !ComMsgMgr::sentence("74-14").empty();
    const bool directory = !HUTEnv::getHDITmpDir().empty();
    std::cout << console << thrown << sentence << directory << '\n';
    return console && thrown && sentence && directory ? 0 : 1;
}
