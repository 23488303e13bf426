// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <jni.h>
#include <mav_host/HSTFwdIter.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// What the generated wrappers stand on. No function here lets a C++ exception out: what goes wrong
/// is a pending Java exception, and the answer null, false or 0.
namespace mav_java {

using Pairs = std::vector<std::pair<std::string, std::string>>;

/// Turns the C++ exception that is being handled into a Java one; one that is pending stays.
void raise(JNIEnv* env) noexcept;
/// The same inside the constructor of a loader: the parse exception gets the path.
void raise(JNIEnv* env, const std::string& path) noexcept;
void raiseNull(JNIEnv* env, const char* what) noexcept;
/// A number that its C++ type cannot hold, as an index or as any other argument.
void raiseRange(JNIEnv* env, jlong value, bool isIndex) noexcept;

/// False, with IllegalStateException, when the object or what it came from is closed. True for
/// null.
bool isLive(JNIEnv* env, jobject proxy) noexcept;

/// Java's texts are UTF-16 and the library's UTF-8; bytes that are no UTF-8 count as ISO-8859-1.
bool read(JNIEnv* env, jstring text, std::string& out) noexcept;
jstring text(JNIEnv* env, std::string_view text) noexcept;
jbyteArray bytes(JNIEnv* env, std::string_view bytes) noexcept;
jobjectArray texts(JNIEnv* env, const std::vector<std::string>& texts) noexcept;
bool read(JNIEnv* env, jobjectArray texts, std::vector<std::string>& out) noexcept;
/// Key, value, key, value, …
jobjectArray texts(JNIEnv* env, const Pairs& pairs) noexcept;
jobjectArray texts(JNIEnv* env, const std::map<std::string, std::string>& map) noexcept;
jobject integer(JNIEnv* env, const std::optional<int>& number) noexcept;
jlongArray longs(JNIEnv* env, const std::vector<jlong>& values) noexcept;
/// Append to a java.lang.StringBuilder, a java.util.List.
void append(JNIEnv* env, jobject builder, const std::string& text) noexcept;
void add(JNIEnv* env, jobject list, const std::vector<std::string>& texts) noexcept;

template <class Derived, class Base>
Derived* cast(Base* object) {
    if constexpr (std::is_same_v<std::remove_const_t<Base>, Derived>) {
        return const_cast<Derived*>(object);
    } else {
        return dynamic_cast<Derived*>(const_cast<std::remove_const_t<Base>*>(object));
    }
}

/// The addresses of what a list points to, or holds.
template <class Derived, class List>
jlongArray pointers(JNIEnv* env, const List& list) noexcept try {
    std::vector<jlong> out;
    for (auto& item : list) {
        if constexpr (std::is_pointer_v<std::decay_t<decltype(item)>>) {
            out.push_back(reinterpret_cast<jlong>(cast<Derived>(item)));
        } else {
            out.push_back(reinterpret_cast<jlong>(cast<Derived>(&item)));
        }
    }
    return longs(env, out);
} catch (...) {
    raise(env);
    return nullptr;
}

/// Copies of the items, each of which its Java object owns.
template <class Item, class List>
jlongArray copies(JNIEnv* env, const List& list) noexcept try {
    std::vector<jlong> out;
    out.reserve(list.size());
    for (const Item& item : list) out.push_back(reinterpret_cast<jlong>(new Item(item)));
    return longs(env, out);
} catch (...) {
    raise(env);
    return nullptr;
}

/// The objects behind addresses that Java has handed back.
template <class Item>
bool read(JNIEnv* env, jlongArray addresses, std::vector<Item*>& out) noexcept try {
    std::vector<jlong> values(static_cast<std::size_t>(env->GetArrayLength(addresses)));
    env->GetLongArrayRegion(addresses, 0, static_cast<jsize>(values.size()), values.data());
    for (const jlong value : values) out.push_back(reinterpret_cast<Item*>(value));
    return true;
} catch (...) {
    raise(env);
    return false;
}

/// What is left of an iterator, which goes.
template <class Item>
std::vector<Item> drained(HSTFwdIter<Item>* iterator) {
    const std::unique_ptr<HSTFwdIter<Item>> owned(iterator);
    std::vector<Item> out;
    while (owned && owned->hasNext()) out.push_back(owned->next());
    return out;
}

}  // namespace mav_java
