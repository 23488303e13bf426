// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace mav_platform {

/// A metadata document with one more item at the end of its list "files"; the list is made when
/// there is none. All else stays byte for byte, but that a document in ISO-8859-1 becomes UTF-8,
/// and the item is laid out as the one before it. The document itself when it lists this name under
/// this type already. Throws HEXAlgException naming the reason when the document is no JSON object,
/// its "files" is no list, or the name or the type is not UTF-8.
std::string withListedFile(std::string document, const std::string& type, const std::string& name);

}  // namespace mav_platform
