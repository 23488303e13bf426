// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.nio.file.Path;

/** Loads the JNI library once: from the property "org.mavplatform.library", else as Java finds it. */
final class NativeLibrary {
    private NativeLibrary() {}

    static {
        String path = System.getProperty("org.mavplatform.library");
        if (path == null) {
            System.loadLibrary("mav_platform_java");
        } else {
            System.load(Path.of(path).toAbsolutePath().toString());
        }
    }

    /** The first call of each process loads. */
    static void load() {}
}
