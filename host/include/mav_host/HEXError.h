// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

#include "mav_host/Export.h"

/// Base of the host's exceptions. `what()` is the text given at the throw, by convention beginning
/// with the class and member name.
class MAV_API HEXError : public std::runtime_error {
  public:
    explicit HEXError(const std::string& text);
    ~HEXError() override;
};

/// An object was asked to do something that it refuses.
class MAV_API HEXAlgException : public HEXError {
  public:
    explicit HEXAlgException(const std::string& text);
    ~HEXAlgException() override;
};

/// Data that does not convert or does not fit.
class MAV_API HEXDataException : public HEXError {
  public:
    explicit HEXDataException(const std::string& text);
    ~HEXDataException() override;
};

/// A mistake of the user: a wrong argument, an unusable file.
class MAV_API HEXUserException : public HEXError {
  public:
    explicit HEXUserException(const std::string& text);
    ~HEXUserException() override;
};

/// A file that is not there. `what()` is "File '" + path + "' does not exist".
class MAV_API HEXFileNotFoundException : public HEXError {
  public:
    explicit HEXFileNotFoundException(const std::string& path);
    ~HEXFileNotFoundException() override;
    /// The path exactly as it was given, which may be empty.
    const std::string& getPath() const { return path_; }

  private:
    std::string path_;
};
