// SPDX-License-Identifier: Apache-2.0
#include "Messages.h"

#include <mav_host/ComMsgMgr.h>
#include <mav_host/Host.h>

#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "Bridge.h"

namespace mav_java {
namespace {

JavaVM* javaMachine = nullptr;
jclass messages = nullptr;
jmethodID onReport = nullptr;

/// The environment of this thread; null for a thread that Java does not know.
JNIEnv* environment() {
    JNIEnv* env = nullptr;
    const jint known = javaMachine->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_10);
    return known == JNI_OK && env->ExceptionCheck() == JNI_FALSE ? env : nullptr;
}

/// A message that finds no memory is lost; the call that told it goes on.
void tell(const ComMsg& message, const std::string& line) {
    JNIEnv* const env = environment();
    if (env == nullptr || env->PushLocalFrame(16) != 0) return;
    env->CallStaticVoidMethod(messages, onReport, static_cast<jint>(message.mask),
                              text(env, message.id), texts(env, message.args), text(env, line));
    if (env->ExceptionCheck() != JNI_FALSE) env->ExceptionClear();
    env->PopLocalFrame(nullptr);
}

class Sink final : public ComMsgSink {
  public:
    void send(const ComMsg& message) override {
        // A report ends with its sentence; what stands before it is severity and id.
        tell(message, ComMsgMgr::format(message));
    }
};

/// Console lines of all threads; each thread's go out by themselves.
class Lines final : public std::streambuf {
  protected:
    int_type overflow(int_type letter) override {
        if (!traits_type::eq_int_type(letter, traits_type::eof()))
            put(traits_type::to_char_type(letter));
        return traits_type::not_eof(letter);
    }
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        for (std::streamsize i = 0; i < size; ++i) put(text[i]);
        return size;
    }

  private:
    static void put(char letter) {
        thread_local std::string line;
        if (letter != '\n') {
            line += letter;
            return;
        }
        tell(ComMsg(), line);
        line.clear();
    }
};

Sink sink;
Lines lines;
std::ostream console(&lines);

}  // namespace

bool tellJava(JavaVM* machine, JNIEnv* env) noexcept {
    javaMachine = machine;
    jclass const found = env->FindClass("org/mavplatform/Messages");
    if (found == nullptr) return false;
    messages = static_cast<jclass>(env->NewGlobalRef(found));
    onReport = env->GetStaticMethodID(
        found, "onReport", "(ILjava/lang/String;[Ljava/lang/String;Ljava/lang/String;)V");
    if (messages == nullptr || onReport == nullptr) return false;
    ComMsgMgr::setSink(&sink);
    mav_host::setConsole(&console);
    return true;
}

void tellJavaNoMore(JNIEnv* env) noexcept {
    ComMsgMgr::setSink(nullptr);
    mav_host::setConsole(nullptr);
    env->DeleteGlobalRef(messages);
}

}  // namespace mav_java
