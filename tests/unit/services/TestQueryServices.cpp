// SPDX-License-Identifier: Apache-2.0
// Key, dictionary and transform services over one small platform.
#include <boost/property_tree/ptree.hpp>

#include "mav_host/HEXError.h"
#include "mav_platform/HMAVNativeDictService.h"
#include "mav_platform/HMAVNativeKeyService.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "mav_platform/HMAVNativeTransformService.h"
#include "mav_platform/PlatformLoader.h"
#include "services/Children.h"
#include "support/Archives.h"

namespace {

using boost::property_tree::ptree;
using mav::platform::NativeDictService;
using mav::platform::NativeKeyService;
using mav::platform::NativeObjectService;
using mav::platform::NativeTransformService;
using mav_platform::PlatformLoader;

ptree tree(const std::string& text) {
    return NativeObjectService().readJson(text);
}

std::string text(const NativeDictService::Dict& dict) {
    std::string lines;
    for (const auto& [name, value] : dict) lines.append(name + "=" + value + "\n");
    return lines;
}

class QueryServices : public testing::Test {
  protected:
    TempDir dir_;
    std::string file_ = packArchive(
        dir_, "a.pka", {{"pka.json", metadata(R"(, "systemClocks": [{"name": "c0", "id": "0",
            "frequency": "100"}, {"name": "c1", "id": "7"}], "memories": [{"name": "m",
            "configParams": [{"name": "p", "value": "1"}, {"name": "q", "value": "2"}]}],
            "extensions": {"l": [{"a": [{"v": "1"}, {"v": "2"}]}, "x", {"a": [{"v": "3"}]}]})")}});
    PlatformLoader loader_{file_, PlatformLoader::HW_METADATA_AUTO};
};

TEST_F(QueryServices, KeysInOrderOfAppearance) {
    const NativeKeyService service;
    const ptree summary = service.get(tree(
        R"({"b": "1", "a": [{"x": "1"}, {"y": ["p", ["q"]], "x": "2"}, "z"], "b": {"c": "2"},
            "b.c": "3"})"));
    std::string lines;
    for (const auto& [none, entry] : summary.get_child("keys"))
        lines += entry.get<std::string>("path") + " " + entry.get<std::string>("count") + "\n";
    EXPECT_EQ(lines, "b 2\na 1\na[] 3\na[].x 2\na[].y 1\na[].y[] 2\na[].y[][] 1\nb.c 2\n");
    EXPECT_TRUE(service.get(ptree()).get_child("keys").empty());
    const ptree own = service.get(NativeObjectService().getAsPropertyTree(&loader_));
    EXPECT_EQ(service.get(&loader_), own);
    EXPECT_EQ(service.get(file_), own);
    EXPECT_EQ(tree(service.getAsJsonStr(file_)), own);
    EXPECT_EQ(service.getAsJsonStr(&loader_), service.getAsJsonStr(file_));
}

TEST_F(QueryServices, WhatLoadsAtTheDepthLimitIsAnswered) {
    constexpr int DEEPEST = 511;
    const std::string deep = packArchive(
        dir_, "deep.pka",
        {{"pka.json", metadata(R"(, "extensions": {"k": )" + std::string(DEEPEST - 1, '[') + "1" +
                               std::string(DEEPEST - 1, ']') + "}")}});
    bool found = false;
    EXPECT_FALSE(NativeKeyService().get(deep).empty());
    EXPECT_EQ(
        NativeDictService().getAsDict(deep, "hardwarePlatform.extensions", found).front().second,
        "1");
    EXPECT_FALSE(NativeObjectService().getNodeByPath(deep, "hardwarePlatform", found).empty());
}

TEST_F(QueryServices, DictionariesOfNodes) {
    const NativeDictService service;
    const ptree document =
        tree(R"({"a": {"b": [{"c": "1"}, {"c": "2", "e": ""}], "l": ["x", ["y"]]}})");
    EXPECT_EQ(text(service.getAsDict(document, "a")),
              "b[0].c=1\nb[1].c=2\nb[1].e=\nl[0]=x\nl[1][0]=y\n");
    EXPECT_EQ(text(service.getAsDict(document, "a.b[1].c")), "=2\n");
    EXPECT_EQ(text(service.getAsDict(document, "a.x")), "");
    bool found = false;
    const auto memory =
        service.getAsDict(file_, "hardwarePlatform.memories[0].configParams", found);
    EXPECT_TRUE(found);
    EXPECT_EQ(text(memory), "[0].name=p\n[0].value=1\n[1].name=q\n[1].value=2\n");
    // Every name leads back to its value.
    const ptree platform = NativeObjectService().getAsPropertyTree(&loader_);
    for (const auto& [name, value] : service.getAsDict(&loader_, "", found)) {
        const ptree* node = NativeObjectService::findNode(platform, name);
        ASSERT_NE(node, nullptr) << name;
        EXPECT_EQ(node->data(), value);
    }
    EXPECT_TRUE(service.getAsDict(&loader_, "hardwarePlatform.no", found).empty());
    EXPECT_FALSE(found);
}

TEST_F(QueryServices, FilteredDictionaries) {
    const NativeDictService service;
    const auto filtered = [&](const std::string& path, const std::set<std::string>& keys) {
        const auto dict = service.getFilteredDict(file_, path, keys);
        EXPECT_EQ(dict, service.getFilteredDict(&loader_, path, keys));
        return text(dict);
    };
    const std::set<std::string> keys{"id", "frequency", "[1].id", ""};
    const std::string clocks = "hardwarePlatform.systemClocks";
    EXPECT_EQ(filtered(clocks + "[*]", keys), "[0].id=0\n[0].frequency=100\n[1].id=7\n");
    EXPECT_EQ(filtered(clocks, keys), "[1].id=7\n") << "names begin at the node";
    EXPECT_EQ(filtered(clocks + "[0]", keys), "id=0\nfrequency=100\n");
    EXPECT_EQ(filtered(clocks + "[*].id", keys), "[0]=0\n[1]=7\n");
    EXPECT_EQ(filtered("hardwarePlatform.memories[*].configParams[*]", {"value"}),
              "[0][0].value=1\n[0][1].value=2\n");
    EXPECT_EQ(filtered("hardwarePlatform[].extensions.l[*].a[*]", {"v"}),
              "[0][0].v=1\n[0][1].v=2\n[2][0].v=3\n");
    EXPECT_EQ(filtered(clocks + "[*]", {"none"}), "");
    EXPECT_EQ(filtered("nowhere[*]", keys), "");
}

TEST_F(QueryServices, NamesAreBounded) {
    constexpr std::size_t LIMIT = std::size_t{1} << 30;
    mav::platform::NameBudget budget;
    budget.take(LIMIT - 5);
    budget.take(5);
    EXPECT_THROW_MSG(budget.take(1), HEXAlgException,
                     "Failed to read platform: the paths of its description exceed 1024 MiB");
    ptree deep;
    for (int level = 0; level < 11; ++level) {
        ptree outer;
        outer.push_back({std::string(1U << 20U, 'n'), ptree()})->second.swap(deep);
        outer.swap(deep);
    }
    EXPECT_THROW_MSG(NativeKeyService().get(deep), HEXAlgException,
                     "Failed to read platform: the paths of its description exceed 64 MiB");
}

TEST_F(QueryServices, DictionariesAsJson) {
    EXPECT_EQ(NativeDictService::getAsJsonStr({{"a[0].b", "1"}, {"c", ""}}),
              "{\n    \"a[0].b\": \"1\",\n    \"c\": \"\"\n}\n");
}

TEST_F(QueryServices, Transforms) {
    const NativeTransformService service;
    const auto made = [&](const std::string& spec) {
        const ptree result = service.getObjectsBySpec(file_, spec);
        EXPECT_EQ(result, service.getObjectsBySpec(&loader_, spec));
        EXPECT_EQ(service.getAsJsonStr(file_, spec), service.getAsJsonStr(&loader_, spec));
        return result;
    };
    EXPECT_EQ(made(R"({"board": "hardwarePlatform.boardId", "missing": "no.such",
                       "names": "hardwarePlatform.systemClocks[*].name"})"),
              tree(R"({"board": "b1", "names": ["c0", "c1"]})"));
    EXPECT_EQ(made(R"({"clocks": {"each": "hardwarePlatform.systemClocks",
                                  "select": {"n": "name", "f": "frequency"}}})"),
              tree(R"({"clocks": [{"n": "c0", "f": "100"}, {"n": "c1"}]})"));
    EXPECT_EQ(made(R"({"m": {"each": "hardwarePlatform.memories[*]", "select": {"of": "name",
                  "params": {"each": "configParams", "select": {"k": "name"}}}},
                  "p": {"each": "hardwarePlatform.memories[*].configParams", "select": {"k": "value"}},
                  "one": {"each": "hardwarePlatform", "select": {"n": "name"}},
                  "none": {"each": "hardwarePlatform.systemClocks", "select": {"n": "nothing"}}})"),
              tree(R"({"m": [{"of": "m", "params": [{"k": "p"}, {"k": "q"}]}],
                       "p": [{"k": "1"}, {"k": "2"}], "one": [{"n": "card"}]})"));
    EXPECT_EQ(
        made(R"({"u": {"each": "hardwarePlatform", "select": {"n": "hardwarePlatform.name"}}})"),
        ptree())
        << "inside select paths begin at the element";
    EXPECT_EQ(service.getTransformSpecAsJsonStr(R"( {"a":"b[0]"} )"),
              "{\n    \"a\": \"b[0]\"\n}\n");
}

TEST_F(QueryServices, MalformedTransformsNameTheirPlace) {
    const NativeTransformService service;
    const std::pair<const char*, const char*> rows[] = {
        {"", "in line 1: expected value."},
        {"{\n\"a\": x}", "in line 2: expected value."},
        {"[\"a\"]", "in line 1: an object with members is expected."},
        {R"({"a": ""})", "at 'a': an object path is expected, such as \"hardwarePlatform.name\"."},
        {R"({"a": ["b"]})", "at 'a': a list stands where an object path or an object is expected."},
        {R"({"a": "b", "a": "c"})", "at 'a': the member stands there twice."},
        {R"({"a": {"select": {"b": "c"}}})", "at 'a': 'each' is missing."},
        {R"({"a": {"each": "b", "where": "c"}})",
         "at 'a': 'where' is neither 'each' nor 'select'."},
        {R"({"a": {"each": "b", "each": "b", "select": {"b": "c"}}})",
         "at 'a': 'each' or 'select' stands there twice."},
        {R"({"a": {"each": "b", "select": "c"}})",
         "at 'a.select': an object with members is expected."},
        {R"({"a": {"each": "b", "select": {"c": {"each": "d[x]", "select": {"e": "f"}}}}})",
         "at 'a.select.c.each': the bracket in column 2 of the path \"d[x]\" holds no index, \"*\" "
         "or nothing."},
        {R"({"a": "b[0].c]"})",
         "at 'a': the bracket in column 7 of the path \"b[0].c]\" holds no index, \"*\" or "
         "nothing."},
    };
    for (const auto& [spec, place] : rows) {
        const std::string expected =
            std::string("The transform specification is malformed ") + place;
        EXPECT_THROW_MSG(service.getObjectsBySpec("/nowhere/a.qpfm", spec), HEXAlgException,
                         expected);
    }
}

}  // namespace
