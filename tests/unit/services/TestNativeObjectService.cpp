// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "mav_platform/PlatformLoader.h"
#include "support/Archives.h"

namespace {

using boost::property_tree::ptree;
using mav::platform::NativeObjectService;
using mav_platform::PlatformLoader;

const NativeObjectService SERVICE;

std::string scanned(const std::string& path) {
    HSTVector<NativeObjectService::PathFragment> fragments;
    NativeObjectService::scanJsonPath(path, fragments);
    std::string text;
    for (const auto& fragment : fragments) {
        text += "(" + fragment.path;
        if (fragment.hasIndex) text += " #" + std::to_string(fragment.index);
        text += ")";
    }
    return text;
}

TEST(NativeObjectService, CutsPathsIntoFragments) {
    EXPECT_EQ(scanned("[3].a.b[2].c"), "( #3)(a.b #2)(c)");
    EXPECT_EQ(scanned("a.b[*].c[].d..e"), "(a.b.c.d..e)");
    EXPECT_EQ(scanned("a[4294967295]"), "(a #4294967295)");
    for (const char* odd : {"a[4294967296]", "a[-1]", "a[ 1]", "a[1", "a[x].b", "a]0["})
        EXPECT_EQ(scanned(odd), std::string("(") + odd + ")");
}

TEST(NativeObjectService, FollowsPaths) {
    const ptree tree = SERVICE.readJson(
        R"({"a": {"b": [{"c": "1"}, {"c": "2", "d": ["x", ["y", "z"]]}], "o": {"p": "q"}}, "k": "v"})");
    const auto at = [&](const std::string& path) {
        const ptree* node = NativeObjectService::findNode(tree, path);
        EXPECT_EQ(SERVICE.hasNodeAtPath(tree, path), node != nullptr) << path;
        return node != nullptr ? node->data() : "(none)";
    };
    EXPECT_EQ(NativeObjectService::findNode(tree, ""), &tree);
    EXPECT_EQ(at("k"), "v");
    EXPECT_EQ(at("a.b[1].c"), "2");
    EXPECT_EQ(at("a.b[1].d[1][1]"), "z");
    EXPECT_EQ(at("a.b..c"), "1") << "the first unnamed element";
    EXPECT_EQ(at("a[*].o[].p"), "q");
    for (const char* none : {"a.b[2].c", "a.b[1].d[2]", "a.x", "k.v", "a.b.c", "a.b[*].c", "A.b",
                             "a.o[0]", "a.b[x].c", "a.b[4294967296].c", "k[0]"})
        EXPECT_EQ(at(none), "(none)") << none;
    EXPECT_TRUE(SERVICE.pathHasBoostArray("a.b..c"));
    EXPECT_FALSE(SERVICE.pathHasBoostArray("a.b[0].c"));
}

TEST(NativeObjectService, ChildrenAndTypedValues) {
    const ptree tree = SERVICE.readJson(R"({"a": {"b": [{"c": "TRUE"}], "n": "no", "e": ""}})");
    EXPECT_EQ(SERVICE.getChild(tree, "a.n").data(), "no");
    EXPECT_TRUE(SERVICE.getChild(tree, "a.b[0]").empty()) << "brackets are names here";
    EXPECT_EQ(SERVICE.getChildOptional(tree, "a.b[0].c")->data(), "TRUE");
    EXPECT_FALSE(SERVICE.getChildOptional(tree, "a.b[1]"));
    EXPECT_EQ(SERVICE.getStringValue(tree, "a.n"), "no");
    EXPECT_FALSE(SERVICE.getBoolValue(tree, "a.n", true));
    EXPECT_TRUE(SERVICE.getBoolValue(tree, "a.e", true));
    EXPECT_FALSE(SERVICE.getBoolValue(tree, "a.x", false));
}

TEST(NativeObjectService, FindsTheRootOfTheHardwarePlatform) {
    const auto rewritten = [](const char* document, const char* path) {
        return SERVICE.getPathWithActualHwPlatformRoot(SERVICE.readJson(document), path);
    };
    constexpr const char* DEFAULT = R"({"hardwarePlatform": {"n": "0"}, "hardwarePlatforms":
        {"hardwarePlatform": {"n": "1"}, "reconfigurablePartitions": [{"hardwarePlatform": {"n": "2"}}]}})";
    constexpr const char* PARTITION =
        R"({"hardwarePlatforms": {"reconfigurablePartitions": [{"hardwarePlatform": {"n": "2"}}]}})";
    constexpr const char* LEGACY = R"({"hardwarePlatform": {"n": "0"}})";
    EXPECT_EQ(rewritten(DEFAULT, "hardwarePlatform.n"), "hardwarePlatforms.hardwarePlatform.n");
    EXPECT_EQ(rewritten(PARTITION, "hardwarePlatform.n"),
              "hardwarePlatforms.reconfigurablePartitions[0].hardwarePlatform.n");
    for (const char* marked :
         {"hardwarePlatform[].n", "hardwarePlatform[*][].n", "[]hardwarePlatform.n"}) {
        EXPECT_EQ(rewritten(DEFAULT, marked), "hardwarePlatforms.hardwarePlatform.n") << marked;
        EXPECT_TRUE(SERVICE.isLegacyHwPlatformPath(marked));
    }
    EXPECT_EQ(rewritten(LEGACY, "hardwarePlatform"), "hardwarePlatform");
    EXPECT_EQ(rewritten(R"({"k": "v"})", "hardwarePlatform"), "hardwarePlatforms.hardwarePlatform");
    for (const char* other :
         {"hardwarePlatforms.hardwarePlatform", "hardwarePlatform[0].n", "n", ""})
        EXPECT_EQ(rewritten(DEFAULT, other), other);
    EXPECT_TRUE(SERVICE.hasNodeAtPath(SERVICE.readJson(PARTITION), "hardwarePlatform.n"));
}

TEST(NativeObjectService, AnswersForAPlatform) {
    const TempDir dir;
    const std::string file = packArchive(
        dir, "a.pka",
        {{"pka.json", metadata(R"(, "systemClocks": [{"name": "c0"}, {"name": "c1"}])")}});
    PlatformLoader loader(file, PlatformLoader::HW_METADATA_AUTO);
    const std::string root = "hardwarePlatforms.hardwarePlatform";
    const ptree tree = SERVICE.getAsPropertyTree(&loader);
    EXPECT_EQ(tree, SERVICE.getAsPropertyTree(file));
    EXPECT_EQ(tree, SERVICE.readJson(SERVICE.getAsJsonStr(&loader)));
    EXPECT_EQ(SERVICE.getAsJsonStr(file), SERVICE.getAsJsonStr(&loader));
    bool found = false;
    EXPECT_EQ(SERVICE.getNodeByPath(file, "hardwarePlatform.name", found).data(), "card");
    EXPECT_TRUE(found);
    EXPECT_TRUE(SERVICE.hasNodeAtPath(file, root + ".name"));
    // The file is gone: whoever holds a loader is answered without reading it again.
    ASSERT_TRUE(std::filesystem::remove(file));
    const ptree clocks = SERVICE.getObjectsByPath(&loader, root + ".systemClocks", found);
    EXPECT_TRUE(found);
    EXPECT_EQ(clocks, *NativeObjectService::findNode(tree, root + ".systemClocks"));
    EXPECT_EQ(SERVICE.getObjectsByPath(&loader, "hardwarePlatforms[*].hardwarePlatform.name", found)
                  .data(),
              "card");
    EXPECT_TRUE(SERVICE.getObjectsByPath(&loader, "hardwarePlatform[*].nope", found).empty());
    EXPECT_FALSE(found);
}

TEST(NativeObjectService, SaysWhenThereIsNoDocument) {
    const CapturedMessages messages;
    const CapturedConsole console;
    EXPECT_THROW_MSG(SERVICE.readJson(""), HEXAlgException,
                     "NativeObjectService::readJson() - Empty json string");
    EXPECT_THROW_MSG(SERVICE.readJson("{"), HEXAlgException,
                     "Failed to read platform: <unspecified file>(1): expected key string");
    bool found = true;
    EXPECT_THROW_MSG(SERVICE.getNodeByPath("/nowhere/a.pka", "name", found), HEXAlgException,
                     "Failed to read platform: it does not load, which the messages explain");
    EXPECT_FALSE(found);
    EXPECT_THROW_MSG(SERVICE.getAsJsonStr(static_cast<PlatformLoader*>(nullptr)), HEXAlgException,
                     "Failed to read platform: no loader was given");
}

}  // namespace
