// SPDX-License-Identifier: Apache-2.0
#include "mav_host/HEXError.h"

HEXError::HEXError(const std::string& text) : std::runtime_error(text) {}
HEXError::~HEXError() = default;

HEXAlgException::HEXAlgException(const std::string& text) : HEXError(text) {}
HEXAlgException::~HEXAlgException() = default;

HEXDataException::HEXDataException(const std::string& text) : HEXError(text) {}
HEXDataException::~HEXDataException() = default;

HEXUserException::HEXUserException(const std::string& text) : HEXError(text) {}
HEXUserException::~HEXUserException() = default;

HEXFileNotFoundException::HEXFileNotFoundException(const std::string& path)
    : HEXError("File '" + path + "' does not exist"), path_(path) {}
HEXFileNotFoundException::~HEXFileNotFoundException() = default;
