// SPDX-License-Identifier: Apache-2.0
#include <exception>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "capi/Call.h"
#include "mav_host/Host.h"
#include "mav_host/ReportScope.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/PlatformLoader.h"
#include "mav_platform/mav_platform_c.h"

namespace {

using mav_platform::JSONObjectWriter;
using mav_platform::PlatformLoader;

using Fill = void (*)(const HMAVPlatform&, JSONObjectWriter&);

void fillWhole(const HMAVPlatform& platform, JSONObjectWriter& writer) {
    writer.writeObject(platform);
}

void fillShort(const HMAVPlatform& platform, JSONObjectWriter& writer) {
    platform.toShortJSON(writer);
}

char* getJson(const char* path, Fill fill) {
    // The text of this error differs between standard libraries; callers see one.
    if (path == nullptr) throw std::logic_error("basic_string::_M_construct null not valid");
    const std::string file(path);
    JSONObjectWriter writer;
    {
        // The platform goes before the text is copied: the two need not be in memory together.
        PlatformLoader loader(file, PlatformLoader::HW_METADATA_AUTO);
        const std::shared_ptr<HMAVPlatform> platform = loader.load();
        if (!platform) return nullptr;
        fill(*platform, writer);
    }
    return writer.newText().release();
}

/// Keeps the reports and console lines of one call, in their order, while passing them on.
class ReportKeeper final : public mav_host::ReportScope {
  public:
    ~ReportKeeper() override { close(); }

    const std::string& text() {
        flush();
        return text_;
    }

  private:
    void onReport(const ComMsg& message) override {
        ComMsgMgr::sendMsg(message.level, message.group, message.mask, message.id, message.args);
        text_ += ComMsgMgr::format(message) + "\n";
    }
    void onLines(const std::string& text) override {
        text_ += text;
        mav_host::console() << text << std::flush;
    }

    std::string text_;
};

void setText(char** target, std::string_view text) noexcept {
    if (target == nullptr) return;
    try {
        *target = capi::newText(text);
    } catch (const std::bad_alloc&) {
        *target = nullptr;
    }
}

int tryGetJson(const char* path, char** json, char** error, Fill fill) noexcept {
    if (json != nullptr) *json = nullptr;
    if (error != nullptr) *error = nullptr;
    try {
        if (path == nullptr) {
            setText(error, "The path is null: give the path of a platform file.");
            return 1;
        }
        ReportKeeper reports;
        char* text = nullptr;
        try {
            text = getJson(path, fill);
        } catch (const std::exception& failure) {
            setText(error, reports.text() + failure.what());
            return 1;
        }
        if (text == nullptr) {
            setText(error, reports.text());
            return 1;
        }
        if (json != nullptr) {
            *json = text;
        } else {
            hmav_free_json_string(text);
        }
        return 0;
    } catch (...) {
        setText(error, "Unknown failure while the platform was loaded.");
        return 1;
    }
}

}  // namespace

char* hmav_get_platform_json(const char* path) {
    return getJson(path, fillWhole);
}

char* hmav_get_short_platform_json(const char* path) {
    return getJson(path, fillShort);
}

void hmav_free_json_string(char* text) {
    delete[] text;
}

int hmav_try_get_platform_json(const char* path, char** json, char** error) noexcept {
    return tryGetJson(path, json, error, fillWhole);
}

int hmav_try_get_short_platform_json(const char* path, char** json, char** error) noexcept {
    return tryGetJson(path, json, error, fillShort);
}

const char* hmav_get_version() noexcept {
    return MAV_VERSION;
}
