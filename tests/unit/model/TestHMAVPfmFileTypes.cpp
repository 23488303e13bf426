// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_platform/HMAVPfmFileTypes.h"

namespace {

using Types = HMAVPfmFileTypes;
using Tcl = Types::TclFileType;

TEST(HMAVPfmFileTypes, ValuesAndTextsAreThoseOfTheList) {
    EXPECT_EQ(Types::toString(Types::DCP), "DCP");
    EXPECT_EQ(Types::toFileType("DCP"), 0);
    EXPECT_EQ(Types::toFileType("HPFM"), 18);
    EXPECT_EQ(Types::toFileType("META_JSON"), 26);
    EXPECT_EQ(Types::toFileType("DPEPRJ"), 33);
    EXPECT_EQ(Types::toFileType("LINK_RUNTIME"), 43);
    EXPECT_EQ(Types::toFileType("PRE_SYS_LINK_TCL"), 44);
    EXPECT_EQ(Types::toFileType("IMPL_CONSTRS"), 71);
    EXPECT_EQ(static_cast<int>(Types::toTclFileType("PRE_SYS_LINK_TCL")), 0);
    EXPECT_EQ(static_cast<int>(Types::toTclFileType("IMPL_CONSTRS")), 27);
}

TEST(HMAVPfmFileTypes, EveryValueComesBackFromItsText) {
    const auto types = Types::getFileTypeMap();
    ASSERT_EQ(types.size(), 72U);
    for (const auto& [type, text] : types) {
        EXPECT_EQ(Types::toString(type), text);
        EXPECT_EQ(Types::toFileType(text), type) << text;
    }
    const auto hooks = Types::getTclFileTypeMap();
    ASSERT_EQ(hooks.size(), 28U);
    for (const auto& [hook, text] : hooks) {
        EXPECT_EQ(Types::toString(hook), text);
        EXPECT_EQ(Types::toTclFileType(text), hook) << text;
        EXPECT_EQ(Types::toFileType(text), 44 + static_cast<int>(hook)) << text;
    }
}

TEST(HMAVPfmFileTypes, OtherTextsAndValuesAreUnknown) {
    for (const char* text : {"dcp", " DCP", "DCP ", "", "EMU_HPFM", "DC"}) {
        EXPECT_EQ(Types::toFileType(text), Types::FILE_TYPE_COUNT) << text;
    }
    // File types that are no hooks.
    for (const char* text : {"HPFM", "META_JSON", "LINK_RUNTIME"}) {
        EXPECT_EQ(Types::toTclFileType(text), Tcl::TCL_FILE_TYPE_COUNT) << text;
    }
    EXPECT_EQ(Types::toString(Types::FILE_TYPE_COUNT), "");
    EXPECT_EQ(Types::toString(Tcl::TCL_FILE_TYPE_COUNT), "");
}

}  // namespace
