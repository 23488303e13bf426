// SPDX-License-Identifier: Apache-2.0
#include "check/CheckPolicy.h"

#include <chrono>
#include <ctime>
#include <filesystem>

#include "mav_host/HEXError.h"
#include "mav_host/HUTFile.h"
#include "mav_host/Nearest.h"

namespace mav_platform::check {
namespace {

constexpr const char* FILE_NAME = ".mavcheck";
constexpr std::uint64_t LARGEST = std::uint64_t{16} << 20;

const CheckRule* ruleOf(const std::string& name) {
    for (const CheckRule& rule : PlatformCheck::rules()) {
        if (rule.name == name) return &rule;
    }
    return nullptr;
}

std::string unknown(const std::string& name) {
    std::vector<std::string> names;
    for (const CheckRule& rule : PlatformCheck::rules()) names.push_back(rule.name);
    const std::string meant = mav_host::nearest(name, names);
    return "there is no rule " + shown(name) +
           (meant.empty() ? "" : "; " + shown(meant) + " is one");
}

/// The day in UTC, as "2026-11-22".
std::string today() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[11];
    const std::size_t size = std::strftime(text, sizeof text, "%Y-%m-%d", &parts);
    return {text, size};
}

std::string absolute(const std::string& path) {
    return std::filesystem::absolute(path).lexically_normal().string();
}

}  // namespace

Policy::Policy(const CheckOptions& options) : named_(options.exceptions) {
    for (const CheckOptions::Level& level : options.levels) {
        if (ruleOf(level.rule) == nullptr) throw HEXUserException(unknown(level.rule));
        levels_[level.rule] = level.severity;
    }
}

void Policy::enter(const std::string& platform, Report& report) {
    const std::string parent = HUTFile::getParent(platform);
    const std::string path = !named_.empty()  ? named_
                             : parent.empty() ? FILE_NAME
                                              : parent + "/" + FILE_NAME;
    lastFile_.clear();
    present_ = nullptr;
    const auto known = files_.find(path);
    if (known != files_.end()) {
        present_ = &known->second;
    } else if (!named_.empty() || HUTFile::isFile(path)) {
        // What is wrong with the exceptions is told by no exception.
        Exceptions exceptions = read(path, report);
        present_ = &files_.emplace(path, std::move(exceptions)).first->second;
    }
}

Policy::Exceptions Policy::read(const std::string& path, Report& report) const {
    Exceptions exceptions;
    exceptions.folder = HUTFile::getParent(absolute(path));
    const auto json = LocatedJson::parse(HUTFileUtils::readWhole(path, LARGEST), path, report);
    if (!json) return exceptions;
    checkSchema(*json, "mavcheck", report);
    if (const auto list = json->root().find("exceptions")) {
        for (const json::Node& item : *list) readItem(*json, item, exceptions, report);
    }
    return exceptions;
}

void Policy::readItem(const LocatedJson& json, const json::Node& item, Exceptions& exceptions,
                      Report& report) {
    Exception exception;
    exception.rule = item.text("rule");
    exception.place = json.place(item);
    exception.until = item.text("until");
    exception.isOver = !exception.until.empty() && exception.until < today();
    if (exception.rule.empty() || item.text("reason").empty()) return;  // the schema asks for them
    if (ruleOf(exception.rule) == nullptr) {
        report.add("exception", json.place(item, "rule"), unknown(exception.rule));
        return;
    }
    try {
        exception.level = PlatformCheck::severityOf(item.text("severity"));
    } catch (const HEXUserException&) {
        return;  // the schema names the words
    }
    exception.files.add(item.text("path"), json.file(), false);
    exceptions.list.push_back(std::move(exception));
}

bool Policy::matches(const Exception& exception, const std::string& relative) {
    return exception.files.empty() || exception.files.ignoring(relative, false) != nullptr;
}

const std::string& Policy::relative(const std::string& file) {
    if (file != lastFile_ || lastFile_.empty()) {
        lastFile_ = file;
        lastRelative_ =
            std::filesystem::path(absolute(file)).lexically_relative(present_->folder).string();
    }
    return lastRelative_;
}

void Policy::look(const std::string& file) {
    if (present_ == nullptr) return;
    for (Exception& exception : present_->list) {
        if (matches(exception, relative(file))) exception.isSeen = true;
    }
}

Policy::Level Policy::level(const CheckRule& rule, const std::string& file) {
    const auto set = levels_.find(rule.name);
    Level level = set == levels_.end() ? Level(rule.severity) : set->second;
    if (present_ == nullptr) return level;
    for (Exception& exception : present_->list) {
        if (exception.isOver || exception.rule != rule.name) continue;
        if (!matches(exception, relative(file))) continue;
        exception.isUsed = true;
        level = exception.level;
    }
    return level;
}

void Policy::judge(Report& report, bool all) const {
    for (const auto& [path, exceptions] : files_) {
        for (const Exception& exception : exceptions.list) {
            if (exception.isOver) {
                report.add("exception", exception.place,
                           "the exception for the rule " + shown(exception.rule) + " ended on " +
                               exception.until + "; mend what it was for, or give it a later day");
            } else if (!exception.isUsed && (all || !named_.empty() || exception.isSeen)) {
                report.add("exception", exception.place,
                           "the exception for the rule " + shown(exception.rule) +
                               " matches no finding; remove it");
            }
        }
    }
}

}  // namespace mav_platform::check
