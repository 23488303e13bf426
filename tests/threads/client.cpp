// SPDX-License-Identifier: Apache-2.0
// Eight threads load, query, validate, extract, write and fail, on equal files and on different
// ones, and get the answers that one thread gets. Usage: threads_client SAMPLES. Made for the
// thread sanitizer, which finds what comes out right by luck.
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "mav_platform/mav_platform_c.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t THREADS = 8;
constexpr std::size_t ROUNDS = 6;

std::atomic<int> failures{0};

void expect(bool truth, const std::string& what) {
    if (truth) return;
    ++failures;
    std::cerr << "threads: " + what + "\n";
}

/// Takes a text of the library over.
std::string take(char* text) {
    const std::string copy = text != nullptr ? text : "(null)";
    hmav_free_text(text);
    return copy;
}

/// What the questions to one platform give, in one text.
std::string answers(const hmav_session* session, const std::string& file) {
    hmav_platform* platform = nullptr;
    if (hmav_platform_open(session, file.c_str(), nullptr, &platform, nullptr) != HMAV_DONE)
        return "it does not open";
    char* text = nullptr;
    hmav_platform_document(platform, &text, nullptr);
    std::string all = take(text);
    hmav_platform_keys(platform, &text, nullptr);
    all += take(text);
    hmav_platform_dict(platform, "hardwarePlatform", nullptr, 0, &text, nullptr);
    all += take(text);
    hmav_summary_options options = {sizeof options, 1, 1};
    hmav_platform_summary(platform, &options, &text, nullptr);
    all += take(text);
    hmav_support_options support = {sizeof support, 0, "2026.1", "mav"};
    int supported = -1;
    hmav_platform_support(platform, &support, &supported, &text, nullptr);
    all += take(text) + std::to_string(supported);
    hmav_platform_free(platform);
    hmav_key_documentation(session, "HMAVPlatform.name", &text, nullptr);
    return all + take(text);
}

std::string findings(const hmav_session* session, const std::string& file) {
    std::string all;
    const auto note = [](const hmav_finding* finding, void* user) {
        *static_cast<std::string*>(user) += std::string(finding->rule) + finding->text + "\n";
        return 0;
    };
    std::size_t errors = 0;
    hmav_validate(session, file.c_str(), note, &all, nullptr, &errors, nullptr);
    return all + std::to_string(errors);
}

/// Reads every member of an archive in pieces, extracts the first, and counts the bytes.
std::size_t unpack(const hmav_session* session, const std::string& file, const fs::path& scratch) {
    hmav_archive* archive = nullptr;
    if (hmav_archive_open(session, file.c_str(), &archive, nullptr) != HMAV_DONE) return 0;
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < hmav_archive_count(archive); ++i) {
        const hmav_member* member = nullptr;
        hmav_reader* reader = nullptr;
        hmav_archive_member(archive, i, &member, nullptr);
        hmav_reader_open(archive, member->name, &reader, nullptr);
        char piece[4096];
        std::size_t got = 0;
        while (hmav_reader_read(reader, piece, sizeof piece, &got, nullptr) == HMAV_DONE && got > 0)
            bytes += got;
        hmav_reader_free(reader);
    }
    const hmav_member* first = nullptr;
    hmav_archive_member(archive, 0, &first, nullptr);
    const int code =
        hmav_archive_extract(archive, first->name, scratch.c_str(), nullptr, nullptr, nullptr);
    expect(code == HMAV_DONE, "the first member is extracted");
    hmav_archive_free(archive);
    return bytes;
}

/// Packs a folder and adds a file to it.
void write(const hmav_session* session, const fs::path& scratch) {
    const fs::path folder = scratch / "folder";
    fs::create_directories(folder);
    std::ofstream(folder / "a.txt") << "a";
    const std::string made = (scratch / "made.pka").string();
    hmav_pack_options options = {sizeof options, 1, nullptr, nullptr};
    expect(hmav_pack(session, folder.c_str(), made.c_str(), &options, nullptr) == HMAV_DONE,
           "a folder is packed");
    hmav_archive* archive = nullptr;
    hmav_archive_open(session, made.c_str(), &archive, nullptr);
    hmav_add_options add = {sizeof add, "b.txt", 0, nullptr, nullptr};
    const std::string file = (folder / "a.txt").string();
    expect(hmav_archive_add(archive, "OTHER", file.c_str(), &add, nullptr) == HMAV_DONE &&
               hmav_archive_count(archive) >= 2,
           "a file is added");
    hmav_archive_free(archive);
}

/// A description that does not parse is told of by its own path alone.
void fail(const hmav_session* session, const fs::path& scratch) {
    const std::string broken = (scratch / "broken.qpfm").string();
    std::ofstream(broken) << "<x/>";
    hmav_platform* platform = nullptr;
    hmav_error* error = nullptr;
    const int code = hmav_platform_open(session, broken.c_str(), nullptr, &platform, &error);
    expect(code == HMAV_NOT_LOADABLE && hmav_error_report_count(error) == 3 &&
               std::string(hmav_error_text(error)).find(broken) != std::string::npos,
           "the failure is one's own");
    hmav_error_free(error);
    expect(hmav_platform_open(session, "/nowhere/a.pka", nullptr, &platform, nullptr) ==
               HMAV_NOT_FOUND,
           "nothing is nowhere");
}

/// What one thread gets for each file.
struct Expected {
    std::string file;
    std::string answers;
    std::string findings;
    std::size_t bytes = 0;
};

std::vector<Expected> ask(const std::string& samples, const fs::path& scratch) {
    std::vector<Expected> all;
    for (const auto& entry : fs::recursive_directory_iterator(samples)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".pka" && extension != ".qpfm") continue;
        const std::string file = entry.path().string();
        all.push_back({file, answers(nullptr, file), findings(nullptr, file),
                       unpack(nullptr, file, scratch)});
    }
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.file < b.file; });
    return all;
}

void run(const std::vector<Expected>& files, std::size_t number, const fs::path& scratch) {
    fs::create_directories(scratch);
    std::size_t reports = 0;
    hmav_session_options options = {
        sizeof options, [](const hmav_report*, void* user) { ++*static_cast<std::size_t*>(user); },
        &reports};
    hmav_session* session = nullptr;
    hmav_session_new(&options, &session, nullptr);
    for (std::size_t round = 0; round < ROUNDS; ++round) {
        // All threads at one file, then each at its own.
        const Expected& one = files[(round % 2 == 0 ? round : round + number) % files.size()];
        expect(answers(session, one.file) == one.answers, "answers about " + one.file);
        expect(findings(session, one.file) == one.findings, "findings about " + one.file);
        expect(unpack(session, one.file, scratch) == one.bytes, "bytes of " + one.file);
        write(session, scratch);
        const std::size_t before = reports;
        fail(session, scratch);
        expect(reports == before + 3, "reports are one's own");
    }
    hmav_session_free(session);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    std::string pattern = (fs::temp_directory_path() / "mav-threads-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) return 2;
    const fs::path scratch = pattern;
    const std::vector<Expected> files = ask(argv[1], scratch);
    expect(files.size() > 3, "there are samples to read");
    if (failures == 0) {
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < THREADS; ++i)
            threads.emplace_back([&, i] { run(files, i, scratch / std::to_string(i)); });
        for (std::thread& thread : threads) thread.join();
    }
    fs::remove_all(scratch);
    std::cout << "threads: " << files.size() << " files, " << failures << " failures\n";
    return failures == 0 ? 0 : 1;
}
