// SPDX-License-Identifier: Apache-2.0
// The parts of one call, each against the library that does the same.
#include <benchmark/benchmark.h>
#include <simdjson.h>

#include <boost/property_tree/json_parser.hpp>
#include <cstdlib>
#include <sstream>

#include "json/Document.h"
#include "mav_host/HUTZip.h"
#include "mav_platform/HMAVJSONUtils.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/PlatformLoader.h"

namespace {

using boost::property_tree::ptree;

/// Path of an archive in the folder that MAV_BENCH_DIR names.
std::string archive(const benchmark::State& state) {
    static const char* const NAMES[] = {"small", "medium", "large"};
    const char* const folder = std::getenv("MAV_BENCH_DIR");
    return std::string(folder != nullptr ? folder : ".") + "/" + NAMES[state.range(0)] + ".pka";
}

std::string metadata(const benchmark::State& state) {
    return mav_host::ZipArchive(archive(state)).read("pka.json", HUTZip::MAX_METADATA_SIZE);
}

void setBytes(benchmark::State& state, std::size_t size) {
    state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
}

void readMember(benchmark::State& state) {
    std::size_t size = 0;
    for (auto _ : state) size = metadata(state).size();
    setBytes(state, size);
}

void parse(benchmark::State& state) {
    const std::string text = metadata(state);
    for (auto _ : state) benchmark::DoNotOptimize(mav_platform::json::Document(text));
    setBytes(state, text.size());
}

void parseByBoost(benchmark::State& state) {
    const std::string text = metadata(state);
    for (auto _ : state) {
        std::istringstream stream(text);
        ptree tree;
        boost::property_tree::read_json(stream, tree);
        benchmark::DoNotOptimize(tree);
    }
    setBytes(state, text.size());
}

void parseBySimdjson(benchmark::State& state) {
    const simdjson::padded_string text(metadata(state));
    simdjson::dom::parser parser;
    for (auto _ : state) benchmark::DoNotOptimize(parser.parse(text).error());
    setBytes(state, text.size());
}

void load(benchmark::State& state) {
    const std::string path = archive(state);
    for (auto _ : state) {
        mav_platform::PlatformLoader loader(path, mav_platform::PlatformLoader::HW_METADATA_AUTO);
        benchmark::DoNotOptimize(loader.load());
    }
}

void write(benchmark::State& state) {
    mav_platform::PlatformLoader loader(archive(state),
                                        mav_platform::PlatformLoader::HW_METADATA_AUTO);
    const auto platform = loader.load();
    std::size_t size = 0;
    for (auto _ : state) {
        mav_platform::JSONObjectWriter writer;
        writer.writeObject(*platform);
        size = writer.textView().size();
    }
    setBytes(state, size);
}

void writeByBoost(benchmark::State& state) {
    mav_platform::PlatformLoader loader(archive(state),
                                        mav_platform::PlatformLoader::HW_METADATA_AUTO);
    const ptree tree = HMAVJSONUtils::readJson(loader.load()->toJSONString());
    std::size_t size = 0;
    for (auto _ : state) {
        std::ostringstream stream;
        boost::property_tree::write_json(stream, tree);
        size = stream.str().size();
    }
    setBytes(state, size);
}

/// Asks the property tree of a document for the last bus interface.
void askTree(benchmark::State& state) {
    using mav::platform::NativeObjectService;
    const std::string file = archive(state);
    const std::string interfaces = "hardwarePlatforms.hardwarePlatform.busInterfaces";
    const ptree tree = NativeObjectService().getAsPropertyTree(file);
    const std::size_t count = tree.get_child(interfaces).size();
    const std::string path = interfaces + "[" + std::to_string(count - 1) + "].name";
    if (NativeObjectService::findNode(tree, path) == nullptr) state.SkipWithError("nothing found");
    for (auto _ : state) benchmark::DoNotOptimize(NativeObjectService::findNode(tree, path));
}

/// Asks a loader that has loaded: the document is written and read for each question.
void askLoader(benchmark::State& state) {
    mav_platform::PlatformLoader loader(archive(state),
                                        mav_platform::PlatformLoader::HW_METADATA_AUTO);
    const mav::platform::NativeObjectService service;
    bool found = false;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            service.getObjectsByPath(&loader, "hardwarePlatform.busInterfaces[0].name", found));
    if (!found) state.SkipWithError("nothing found");
}

BENCHMARK(readMember)->DenseRange(0, 2);
BENCHMARK(parse)->DenseRange(0, 2);
BENCHMARK(parseByBoost)->DenseRange(0, 2);
BENCHMARK(parseBySimdjson)->DenseRange(0, 2);
BENCHMARK(load)->DenseRange(0, 2);
BENCHMARK(write)->DenseRange(0, 2);
BENCHMARK(writeByBoost)->DenseRange(0, 2);
BENCHMARK(askTree)->DenseRange(0, 2);
BENCHMARK(askLoader)->DenseRange(0, 2);

}  // namespace

BENCHMARK_MAIN();
