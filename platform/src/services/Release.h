// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace mav::platform {

/// A release such as 2019.1: the year, and the number within the year.
struct Release {
    int year = 0;
    int number = 0;

    /// The first two parts of a text split at "."; a second part that is not there is 0, a text
    /// with a part that is no decimal number is 0.0.
    static Release of(const std::string& text);
    bool operator==(const Release&) const = default;
    bool operator<(const Release& other) const {
        return year != other.year ? year < other.year : number < other.number;
    }
};

}  // namespace mav::platform
