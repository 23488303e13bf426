// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "mav_host/Export.h"
#include "mav_host/HSTVector.h"

namespace mav_platform {

/// A JSON value that is made to be printed, with numbers and booleans as such, null, and lists and
/// objects that may be empty. The platform document, whose scalars are texts, has a writer of its
/// own: JSONObjectWriter.
class MAV_API JSONValue {
  public:
    JSONValue(std::nullptr_t) : shown_("null") {}
    template <std::same_as<bool> Boolean>
    JSONValue(Boolean value) : shown_(value ? "true" : "false") {}
    template <std::integral Number>
    requires(!std::same_as<Number, bool>) JSONValue(Number value) : shown_(std::to_string(value)) {}
    /// A text; one that is not UTF-8 is taken as ISO-8859-1.
    JSONValue(const std::string& text);
    JSONValue(const char* text) : JSONValue(std::string(text)) {}

    static JSONValue list() { return JSONValue(Kind::LIST); }
    static JSONValue object() { return JSONValue(Kind::OBJECT); }
    static JSONValue list(const HSTVector<std::string>& texts);
    /// The object that a command answers with: its first member is "schema": "mav.COMMAND/1".
    static JSONValue answer(const std::string& command);
    /// The number that the text is, digit by digit; null for a text that is no JSON number.
    static JSONValue number(const std::string& text);
    /// The text; null when it is empty.
    static JSONValue orNull(const std::string& text);

    /// Append an item to a list, a member to an object, or one unless its text is empty. The answer
    /// is this value. Throw std::logic_error for another kind of value.
    JSONValue& add(JSONValue item);
    JSONValue& add(std::string name, JSONValue value);
    JSONValue& addUnlessEmpty(std::string name, const std::string& text);
    /// The member with the path, null when it is empty. Beside a path that is not UTF-8 stands its
    /// base64 form: "pathBytes" for "file" and "path", NAME + "Bytes" for others.
    JSONValue& addPath(const std::string& name, const std::string& path);

    /// The pretty form of the writers, with a line end. Members stand in the order of adding.
    std::string text() const;

  private:
    enum class Kind { SCALAR, LIST, OBJECT };

    explicit JSONValue(Kind kind) : kind_(kind) {}
    void print(std::string& out, std::size_t depth) const;

    Kind kind_ = Kind::SCALAR;
    std::string shown_;  ///< of a scalar: as it is printed
    std::vector<std::string> names_;
    std::vector<JSONValue> items_;
};

}  // namespace mav_platform
