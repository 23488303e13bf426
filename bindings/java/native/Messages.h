// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <jni.h>

namespace mav_java {

/// From now on the library's reports and console lines go to org.mavplatform.Messages, on the
/// thread that told them. False, with a pending exception, when that class is not as it should be.
bool tellJava(JavaVM* machine, JNIEnv* env) noexcept;
/// Puts the default sink and console back.
void tellJavaNoMore(JNIEnv* env) noexcept;

}  // namespace mav_java
