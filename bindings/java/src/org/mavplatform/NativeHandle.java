// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.lang.ref.Cleaner;
import java.util.function.LongConsumer;

/**
 * One object of the library that Java has made. Every Java object that stands for it or for a part
 * of it holds the handle, so it goes when the last of them is collected, or when it is closed.
 */
final class NativeHandle {
    private static final Cleaner CLEANER = Cleaner.create();

    /** What the process owns: its repository. Never closed. */
    static final NativeHandle PROCESS = new NativeHandle(0, null, null);

    private final long address;
    private final Cleaner.Cleanable freeing;
    // Both are read by native code.
    private final NativeHandle keeps;
    private volatile boolean isClosed;
    private NativeHandle contents;

    NativeHandle(long address, LongConsumer destroy) {
        this(address, destroy, null);
    }

    /** For an object that refers to another one, which lives as long. */
    NativeHandle(long address, LongConsumer destroy, NativeHandle keeps) {
        this.address = address;
        this.keeps = keeps;
        this.freeing =
                destroy == null
                        ? null
                        : CLEANER.register(this, () -> destroy.accept(address));
    }

    long address() {
        return address;
    }

    boolean isLive() {
        return !isClosed && (keeps == null || keeps.isLive());
    }

    synchronized void close() {
        if (this == PROCESS) return;
        isClosed = true;
        if (freeing != null) freeing.clean();
    }

    /** The handle of what this object may let go of before it goes itself. */
    synchronized NativeHandle contents() {
        if (contents == null) contents = new NativeHandle(0, null, this);
        return contents;
    }

    /** Closes what `contents` was given to. */
    synchronized void dropContents() {
        if (contents != null) contents.isClosed = true;
        contents = null;
    }
}
