// SPDX-License-Identifier: Apache-2.0
#include "capi/Platform.h"

#include <boost/property_tree/ptree.hpp>
#include <set>

#include "mav_host/HEXError.h"
#include "mav_host/Printable.h"
#include "mav_platform/HMAVNativeCatalogService.h"
#include "mav_platform/HMAVNativeDictService.h"
#include "mav_platform/HMAVNativeDocService.h"
#include "mav_platform/HMAVNativeKeyService.h"
#include "mav_platform/HMAVNativeObjectService.h"
#include "mav_platform/HMAVNativeTransformService.h"
#include "mav_platform/HMAVPlatform.h"
#include "mav_platform/JSONObjectWriter.h"
#include "mav_platform/PlatformDifference.h"
#include "mav_platform/PlatformParseException.h"

using namespace capi;
using mav_host::printable;
using mav_platform::JSONObjectWriter;
using mav_platform::PlatformLoader;

namespace {

constexpr const char* VALIDATE = "Correct what the reports name; hmav_validate finds all of it.";

void open(const hmav_session* session, const char* path, int mode, hmav_platform& made) {
    made.listener = listenerOf(session);
    made.path = path;
    try {
        made.loader = std::make_unique<PlatformLoader>(
            made.path, static_cast<mav_platform::HwMetadataMode>(mode));
        made.platform = made.loader->load();
    } catch (const mav_platform::PlatformParseException&) {
        // It says no more than that; the reports do.
    }
    if (made.platform) return;
    throw Failure{HMAV_NOT_LOADABLE, "The platform '" + printable(path) + "' does not load",
                  VALIDATE, true};
}

/// Runs `ask` for a text of the platform.
template <class Ask>
int textOf(hmav_platform* platform, char** text, hmav_error** error, Ask&& ask) noexcept {
    return call(platform != nullptr ? platform->listener : Listener(), error, HMAV_NOT_LOADABLE,
                [&] {
                    clearResult(text, "json");
                    refuseNull(platform, "platform");
                    *text = newText(ask());
                });
}

[[noreturn]] void nothingAt(const hmav_platform& platform, const char* path) {
    throw Failure{HMAV_NOT_FOUND,
                  "Nothing is at '" + printable(path) + "' in '" + printable(platform.path) + "'",
                  "hmav_platform_keys lists the paths of the platform."};
}

std::string valueAt(const hmav_platform& platform, const char* path, int form) {
    using mav::platform::NativeObjectService;
    bool found = false;
    const auto node = NativeObjectService().getObjectsByPath(platform.loader.get(), path, found);
    if (!found) nothingAt(platform, path);
    return form == HMAV_FORM_TEXT && node.empty() ? node.data()
                                                  : NativeObjectService::getNodeAsJsonStr(node);
}

std::string dictAt(const hmav_platform& platform, const char* path,
                   const std::set<std::string>& names) {
    using mav::platform::NativeDictService;
    const NativeDictService service;
    bool found = false;
    NativeDictService::Dict dict;
    if (names.empty()) {
        dict = service.getAsDict(platform.loader.get(), path, found);
    } else {
        dict = service.getFilteredDict(platform.loader.get(), path, names);
        found = !dict.empty();
    }
    if (!found) nothingAt(platform, path);
    return NativeDictService::getAsJsonStr(dict);
}

std::string transformed(const hmav_platform& platform, const char* specification) {
    const mav::platform::NativeTransformService service;
    try {
        service.getTransformSpecAsJsonStr(specification);
    } catch (const HEXAlgException& error) {
        throw Failure{HMAV_WRONG_ARGUMENT, printable(error.what()), "Correct the transform there."};
    }
    return service.getAsJsonStr(platform.loader.get(), specification);
}

mav::platform::Verdict verdictOf(const hmav_platform& platform,
                                 const hmav_support_options* options) {
    using mav::platform::SupportQuestion;
    const hmav_support_options wanted = optionsOf(options);
    refuseBeyond(wanted.question, HMAV_SUPPORT_ARCHIVE, "question");
    mav::platform::NativeCatalogService service;
    if (wanted.tool_release != nullptr) service.setTestCompilerVersion_(wanted.tool_release);
    if (wanted.product != nullptr) service.setProduct_(wanted.product);
    static_assert(static_cast<int>(SupportQuestion::PRE_SYNTH) == HMAV_SUPPORT_PRE_SYNTHESIS &&
                  static_cast<int>(SupportQuestion::ARCHIVE) == HMAV_SUPPORT_ARCHIVE);
    return service.judge(*platform.loader, static_cast<SupportQuestion>(wanted.question));
}

std::string documentationOf(const char* key) {
    const mav::platform::NativeDocService service;
    boost::property_tree::ptree doc;
    if (!service.getFromFile(doc))
        throw Failure{HMAV_NOT_LOADABLE, "The documentation of the keys cannot be read",
                      "Install the library anew or set MAV_APP_ROOT to its share directory."};
    if (key == nullptr) return service.getAsJsonStr(doc.get_child("documentation_keys"));
    if (!service.isValidDocKey(doc, key))
        throw Failure{HMAV_NOT_FOUND, "No key '" + printable(key) + "' is documented",
                      "hmav_key_documentation without a key lists all of them."};
    return service.getAsJsonStr(service.getDocKeyBranch(doc, key));
}

}  // namespace

int hmav_platform_open(const hmav_session* session, const char* path,
                       const hmav_open_options* options, hmav_platform** platform,
                       hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(platform, "platform");
        refuseNull(path, "path");
        const hmav_open_options wanted = optionsOf(options);
        refuseBeyond(wanted.metadata_mode, HMAV_METADATA_XML, "metadata_mode");
        refuseMissing(path);
        auto made = std::make_unique<hmav_platform>();
        open(session, path, wanted.metadata_mode, *made);
        *platform = made.release();
    });
}

void hmav_platform_free(hmav_platform* platform) noexcept {
    if (platform == nullptr) return;
    // What goes with it may have something to report.
    const Listener listener = platform->listener;
    call(listener, nullptr, HMAV_INTERNAL, [&] { delete platform; });
}

int hmav_platform_document(hmav_platform* platform, char** json, hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        JSONObjectWriter writer;
        writer.writeObject(*platform->platform);
        return writer.text();
    });
}

int hmav_platform_short(hmav_platform* platform, char** json, hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        JSONObjectWriter writer;
        platform->platform->toShortJSON(writer);
        return writer.text();
    });
}

int hmav_platform_get(hmav_platform* platform, const char* path, int form, char** text,
                      std::size_t* size, hmav_error** error) noexcept {
    if (size != nullptr) *size = 0;
    return textOf(platform, text, error, [&] {
        refuseNull(path, "path");
        refuseBeyond(form, HMAV_FORM_JSON, "form");
        std::string value = valueAt(*platform, path, form);
        if (size != nullptr) *size = value.size();
        return value;
    });
}

int hmav_platform_keys(hmav_platform* platform, char** json, hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        return mav::platform::NativeKeyService().getAsJsonStr(platform->loader.get());
    });
}

int hmav_platform_dict(hmav_platform* platform, const char* path, const char* const* names,
                       std::size_t name_count, char** json, hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        refuseNull(path, "path");
        if (name_count > 0) refuseNull(names, "names");
        std::set<std::string> wanted;
        for (std::size_t i = 0; i < name_count; ++i) {
            refuseNull(names[i], "names");
            wanted.insert(names[i]);
        }
        return dictAt(*platform, path, wanted);
    });
}

int hmav_platform_transform(hmav_platform* platform, const char* specification, char** json,
                            hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        refuseNull(specification, "specification");
        return transformed(*platform, specification);
    });
}

int hmav_platform_summary(hmav_platform* platform, const hmav_summary_options* options, char** json,
                          hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        const hmav_summary_options wanted = optionsOf(options);
        return mav::platform::NativeCatalogService().getAsJsonStr(
            platform->loader.get(), wanted.with_support != 0, wanted.with_partitions != 0);
    });
}

int hmav_platform_support(hmav_platform* platform, const hmav_support_options* options,
                          int* supported, char** reason, hmav_error** error) noexcept {
    char* unwanted = nullptr;
    const int code = textOf(platform, reason != nullptr ? reason : &unwanted, error, [&] {
        clearResult(supported, "supported");
        const mav::platform::Verdict verdict = verdictOf(*platform, options);
        *supported = verdict.supported ? 1 : 0;
        return verdict.reason;
    });
    hmav_free_text(unwanted);
    return code;
}

int hmav_platform_verdict(hmav_platform* platform, const hmav_support_options* options, char** json,
                          hmav_error** error) noexcept {
    return textOf(platform, json, error, [&] {
        const mav::platform::Verdict verdict = verdictOf(*platform, options);
        return mav::platform::checkItem(platform->path, &verdict).text();
    });
}

int hmav_difference(hmav_platform* first, hmav_platform* second, char** json,
                    hmav_error** error) noexcept {
    return textOf(first, json, error, [&] {
        refuseNull(second, "second");
        using mav_platform::PlatformDifference;
        return PlatformDifference::json(
            PlatformDifference::between(*first->platform, *second->platform));
    });
}

int hmav_key_documentation(const hmav_session* session, const char* key, char** json,
                           hmav_error** error) noexcept {
    return call(listenerOf(session), error, HMAV_NOT_LOADABLE, [&] {
        clearResult(json, "json");
        *json = newText(documentationOf(key));
    });
}
