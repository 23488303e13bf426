// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "mav_host/Export.h"

/// True when every byte is below 0x80.
MAV_API bool HI18N_isAscii(std::string_view text);

/// The text as UTF-8: valid UTF-8 is returned as it stands, anything else is taken as ISO-8859-1.
MAV_API std::string HI18N_convertToUTF8(std::string_view text);

/// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
MAV_API bool HI18N_isUTF8(std::string_view text);
