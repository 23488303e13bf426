// SPDX-License-Identifier: Apache-2.0
#include "Bridge.h"

#include <mav_host/HEXError.h>
#include <mav_host/HI18N.h>
#include <mav_host/HUTZip.h>
#include <mav_platform/PlatformParseException.h>

#include <boost/property_tree/exceptions.hpp>
#include <new>
#include <stdexcept>

#include "Messages.h"

namespace mav_java {
namespace {

/// Looked up once, when the library is loaded.
struct Names {
    jfieldID handle = nullptr, isClosed = nullptr, keeps = nullptr;
    jclass string = nullptr;
};
Names names;

constexpr const char* STATE = "java/lang/IllegalStateException";

jthrowable make(JNIEnv* env, const char* type, const std::string& what,
                const std::string* path = nullptr) {
    jclass const kind = env->FindClass(type);
    if (kind == nullptr) return nullptr;
    jstring const message = text(env, what);
    if (path == nullptr) {
        jmethodID const made = env->GetMethodID(kind, "<init>", "(Ljava/lang/String;)V");
        return made == nullptr ? nullptr
                               : static_cast<jthrowable>(env->NewObject(kind, made, message));
    }
    jmethodID const made =
        env->GetMethodID(kind, "<init>", "(Ljava/lang/String;Ljava/lang/String;)V");
    if (made == nullptr) return nullptr;
    return static_cast<jthrowable>(env->NewObject(kind, made, message, text(env, *path)));
}

jthrowable made(JNIEnv* env, const std::string* path);

/// The reason that a text stands for becomes the cause.
template <class Error>
jthrowable withCause(JNIEnv* env, const Error& error, jthrowable thrown) {
    try {
        std::rethrow_if_nested(error);
    } catch (...) {
        jthrowable const cause = thrown == nullptr ? nullptr : made(env, nullptr);
        if (cause == nullptr) return thrown;
        jmethodID const init = env->GetMethodID(env->GetObjectClass(thrown), "initCause",
                                                "(Ljava/lang/Throwable;)Ljava/lang/Throwable;");
        env->CallObjectMethod(thrown, init, cause);
    }
    return thrown;
}

/// The Java exception for the one that is being handled. Most derived first.
jthrowable made(JNIEnv* env, const std::string* path) {
    try {
        throw;
    } catch (const HEXFileNotFoundException& error) {
        return make(env, "org/mavplatform/HEXFileNotFoundException", error.what(),
                    &error.getPath());
    } catch (const mav_host::DigestRefusal& error) {
        return withCause(env, error, make(env, "org/mavplatform/DigestRefusal", error.what()));
    } catch (const HEXAlgException& error) {
        return withCause(env, error, make(env, "org/mavplatform/HEXAlgException", error.what()));
    } catch (const HEXDataException& error) {
        return withCause(env, error, make(env, "org/mavplatform/HEXDataException", error.what()));
    } catch (const HEXUserException& error) {
        return withCause(env, error, make(env, "org/mavplatform/HEXUserException", error.what()));
    } catch (const HEXError& error) {
        return withCause(env, error, make(env, "org/mavplatform/HEXError", error.what()));
    } catch (const mav_platform::PlatformParseException& error) {
        const std::string none;
        return make(env, "org/mavplatform/PlatformParseException", error.what(),
                    path != nullptr ? path : &none);
    } catch (const std::bad_alloc&) {
        return make(env, "java/lang/OutOfMemoryError", "no memory for the platform library");
    } catch (const std::out_of_range& error) {
        return make(env, "java/lang/IndexOutOfBoundsException", error.what());
    } catch (const boost::property_tree::ptree_error& error) {
        return make(env, "org/mavplatform/HEXDataException", error.what());
    } catch (const std::exception& error) {
        return make(env, "java/lang/IllegalArgumentException", error.what());
    } catch (...) {
        return make(env, STATE, "the platform library failed for an unknown reason");
    }
}

void raiseWith(JNIEnv* env, const std::string* path) noexcept {
    if (env->ExceptionCheck() != JNI_FALSE) return;
    jthrowable thrown = nullptr;
    try {
        thrown = made(env, path);
    } catch (...) {
        thrown = nullptr;
    }
    if (thrown != nullptr) env->Throw(thrown);
}

bool isPlain(std::string_view bytes) {
    return bytes.find('\0') == std::string_view::npos && HI18N_isAscii(bytes);
}

/// Well-formed UTF-8 as UTF-16.
std::u16string widened(const std::string& utf8) {
    std::u16string out;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[at]);
        const std::size_t size = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
        char32_t point = size == 1 ? lead : lead & (0x7fU >> size);
        for (std::size_t i = 1; i < size; ++i) point = point << 6 | (utf8[at + i] & 0x3fU);
        at += size;
        if (point >= 0x10000) {
            out += static_cast<char16_t>(0xd7c0 + (point >> 10));
            point = 0xdc00 + (point & 0x3ff);
        }
        out += static_cast<char16_t>(point);
    }
    return out;
}

void addPoint(char32_t point, std::string& out) {
    if (point < 0x80) {
        out += static_cast<char>(point);
        return;
    }
    const int more = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    const char32_t leads[] = {0, 0xc0, 0xe0, 0xf0};
    out += static_cast<char>(leads[more] | point >> (6 * more));
    for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80 | (point >> (6 * i) & 0x3f));
}

/// UTF-16 as UTF-8; half of a surrogate pair becomes a question mark.
std::string narrowed(const std::u16string& text) {
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        char32_t point = text[at];
        const bool isHigh = point >= 0xd800 && point < 0xdc00;
        const bool isPair =
            isHigh && at + 1 < text.size() && text[at + 1] >= 0xdc00 && text[at + 1] < 0xe000;
        if (isPair) {
            point = 0x10000 + ((point - 0xd800) << 10) + (text[++at] - 0xdc00U);
        } else if (point >= 0xd800 && point < 0xe000) {
            point = '?';
        }
        addPoint(point, out);
    }
    return out;
}

template <class Each>
jobjectArray array(JNIEnv* env, std::size_t size, Each each) {
    jobjectArray const out = env->NewObjectArray(static_cast<jsize>(size), names.string, nullptr);
    jsize at = 0;
    if (out == nullptr) return nullptr;
    each([&](const std::string& item) {
        jstring const made = text(env, item);
        if (made == nullptr) return;
        env->SetObjectArrayElement(out, at++, made);
        env->DeleteLocalRef(made);
    });
    return env->ExceptionCheck() != JNI_FALSE ? nullptr : out;
}

template <class Map>
jobjectArray pairs(JNIEnv* env, const Map& map) {
    return array(env, 2 * map.size(), [&](auto add) {
        for (const auto& [key, value] : map) {
            add(key);
            add(value);
        }
    });
}

}  // namespace

void raise(JNIEnv* env) noexcept {
    raiseWith(env, nullptr);
}
void raise(JNIEnv* env, const std::string& path) noexcept {
    raiseWith(env, &path);
}

void raiseNull(JNIEnv* env, const char* what) noexcept {
    env->ThrowNew(env->FindClass("java/lang/NullPointerException"), what);
}

void raiseRange(JNIEnv* env, jlong value, bool isIndex) noexcept {
    const std::string text = (isIndex ? "no such index: " : "not in the range of the argument: ") +
                             std::to_string(value);
    env->ThrowNew(env->FindClass(isIndex ? "java/lang/IndexOutOfBoundsException"
                                         : "java/lang/IllegalArgumentException"),
                  text.c_str());
}

bool isLive(JNIEnv* env, jobject proxy) noexcept {
    if (proxy == nullptr) return true;
    jobject handle = env->GetObjectField(proxy, names.handle);
    while (handle != nullptr) {
        if (env->GetBooleanField(handle, names.isClosed) != JNI_FALSE) {
            env->ThrowNew(env->FindClass(STATE), "the object, or what it came from, is closed");
            return false;
        }
        jobject const next = env->GetObjectField(handle, names.keeps);
        env->DeleteLocalRef(handle);
        handle = next;
    }
    return true;
}

bool read(JNIEnv* env, jstring text, std::string& out) noexcept try {
    if (text == nullptr) {
        raiseNull(env, "a text is null");
        return false;
    }
    std::u16string wide(static_cast<std::size_t>(env->GetStringLength(text)), u'\0');
    env->GetStringRegion(text, 0, static_cast<jsize>(wide.size()),
                         reinterpret_cast<jchar*>(wide.data()));
    out = narrowed(wide);
    return true;
} catch (...) {
    raise(env);
    return false;
}

jstring text(JNIEnv* env, std::string_view text) noexcept try {
    if (isPlain(text)) return env->NewStringUTF(std::string(text).c_str());
    const std::u16string wide = widened(HI18N_convertToUTF8(text));
    return env->NewString(reinterpret_cast<const jchar*>(wide.data()),
                          static_cast<jsize>(wide.size()));
} catch (...) {
    raise(env);
    return nullptr;
}

jbyteArray bytes(JNIEnv* env, std::string_view bytes) noexcept {
    const auto size = static_cast<jsize>(bytes.size());
    jbyteArray const out = env->NewByteArray(size);
    if (out != nullptr)
        env->SetByteArrayRegion(out, 0, size, reinterpret_cast<const jbyte*>(bytes.data()));
    return out;
}

jobjectArray texts(JNIEnv* env, const std::vector<std::string>& texts) noexcept {
    return array(env, texts.size(), [&](auto add) {
        for (const std::string& item : texts) add(item);
    });
}

jobjectArray texts(JNIEnv* env, const Pairs& pairs) noexcept {
    return mav_java::pairs(env, pairs);
}
jobjectArray texts(JNIEnv* env, const std::map<std::string, std::string>& map) noexcept {
    return pairs(env, map);
}

bool read(JNIEnv* env, jobjectArray texts, std::vector<std::string>& out) noexcept try {
    if (texts == nullptr) {
        raiseNull(env, "a list is null");
        return false;
    }
    const jsize size = env->GetArrayLength(texts);
    for (jsize i = 0; i < size; ++i) {
        auto* const item = static_cast<jstring>(env->GetObjectArrayElement(texts, i));
        if (!read(env, item, out.emplace_back())) return false;
        env->DeleteLocalRef(item);
    }
    return true;
} catch (...) {
    raise(env);
    return false;
}

jobject integer(JNIEnv* env, const std::optional<int>& number) noexcept {
    if (!number) return nullptr;
    jclass const kind = env->FindClass("java/lang/Integer");
    jmethodID const made = env->GetStaticMethodID(kind, "valueOf", "(I)Ljava/lang/Integer;");
    return env->CallStaticObjectMethod(kind, made, static_cast<jint>(*number));
}

jlongArray longs(JNIEnv* env, const std::vector<jlong>& values) noexcept {
    jlongArray const out = env->NewLongArray(static_cast<jsize>(values.size()));
    if (out != nullptr)
        env->SetLongArrayRegion(out, 0, static_cast<jsize>(values.size()), values.data());
    return out;
}

void append(JNIEnv* env, jobject builder, const std::string& more) noexcept {
    jmethodID const append = env->GetMethodID(env->GetObjectClass(builder), "append",
                                              "(Ljava/lang/String;)Ljava/lang/StringBuilder;");
    jstring const made = text(env, more);
    if (made != nullptr) env->CallObjectMethod(builder, append, made);
}

void add(JNIEnv* env, jobject list, const std::vector<std::string>& texts) noexcept {
    jmethodID const add =
        env->GetMethodID(env->GetObjectClass(list), "add", "(Ljava/lang/Object;)Z");
    for (const std::string& item : texts) {
        jstring const made = text(env, item);
        if (made == nullptr) return;
        env->CallBooleanMethod(list, add, made);
        if (env->ExceptionCheck() != JNI_FALSE) return;
        env->DeleteLocalRef(made);
    }
}

}  // namespace mav_java

extern "C" JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM* machine, void* /*reserved*/) {
    using mav_java::names;
    JNIEnv* env = nullptr;
    if (machine->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_10) != JNI_OK) return JNI_ERR;
    jclass const object = env->FindClass("org/mavplatform/NativeObject");
    jclass const handle = env->FindClass("org/mavplatform/NativeHandle");
    jclass const string = env->FindClass("java/lang/String");
    if (object == nullptr || handle == nullptr || string == nullptr) return JNI_ERR;
    names.handle = env->GetFieldID(object, "handle", "Lorg/mavplatform/NativeHandle;");
    names.isClosed = env->GetFieldID(handle, "isClosed", "Z");
    names.keeps = env->GetFieldID(handle, "keeps", "Lorg/mavplatform/NativeHandle;");
    names.string = static_cast<jclass>(env->NewGlobalRef(string));
    const bool isWhole = names.handle != nullptr && names.isClosed != nullptr &&
                         names.keeps != nullptr && names.string != nullptr;
    return isWhole && mav_java::tellJava(machine, env) ? JNI_VERSION_10 : JNI_ERR;
}

extern "C" JNIEXPORT void JNICALL JNI_OnUnload(JavaVM* machine, void* /*reserved*/) {
    JNIEnv* env = nullptr;
    if (machine->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_10) != JNI_OK) return;
    mav_java::tellJavaNoMore(env);
    env->DeleteGlobalRef(mav_java::names.string);
}
