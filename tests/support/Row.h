// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sstream>
#include <string>

#include "mav_host/HSTVector.h"

/// The values in one text with "|" between them, truths as words.
template <class First, class... Values>
std::string row(const First& first, const Values&... values) {
    std::ostringstream out;
    out << std::boolalpha << first;
    ((out << "|" << values), ...);
    return out.str();
}

/// What `fill` appends to a list that held "kept", in one text with a blank behind each.
template <class Fill>
std::string appended(Fill fill) {
    HSTVector<std::string> list = {"kept"};
    fill(list);
    std::string text;
    for (const std::string& item : list) text += item + " ";
    return text;
}
