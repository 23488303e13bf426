// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>

#include "mav_platform/JSONValue.h"

namespace {

using mav_platform::JSONValue;

TEST(JSONValue, KindsKeepTheirPlaceAndType) {
    JSONValue value = JSONValue::object();
    value.add("n", std::numeric_limits<std::uint64_t>::max()).add("m", -7).add("b", true);
    value.add("z", nullptr).add("t", "a\"\n\xe9").add("e", JSONValue::orNull(""));
    value.addPath("file", "\xe9").addPath("other", "ab\xe9").addPath("plain", "p");
    for (const char* text : {"-0.50", "7", "07", "1.", "1e3", ""})
        value.add(std::string("# ") + text, JSONValue::number(text));
    value.add("none", JSONValue::list()).add("o", JSONValue::object());
    value.add("l", JSONValue::list().add(1).add(JSONValue::object().add("k\\", false)));
    EXPECT_EQ(value.text(), R"({
    "n": 18446744073709551615,
    "m": -7,
    "b": true,
    "z": null,
    "t": "a\"\né",
    "e": null,
    "file": "é",
    "pathBytes": "6Q==",
    "other": "abé",
    "otherBytes": "YWLp",
    "plain": "p",
    "# -0.50": -0.50,
    "# 7": 7,
    "# 07": null,
    "# 1.": null,
    "# 1e3": null,
    "# ": null,
    "none": [],
    "o": {},
    "l": [
        1,
        {
            "k\\": false
        }
    ]
}
)");
    EXPECT_THROW(value.add(1), std::logic_error);
    EXPECT_THROW(JSONValue::list().add("k", 1), std::logic_error);
}

}  // namespace
