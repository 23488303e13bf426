// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.util.AbstractMap;
import java.util.Arrays;
import java.util.Collection;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.Objects;
import java.util.function.LongFunction;
import java.util.function.ToLongFunction;
import java.util.stream.LongStream;

/**
 * An object of the platform library. A part keeps the whole that it came from; once that is closed,
 * every use of either throws {@link IllegalStateException}. Used by one thread at a time, as
 * everything that came from the same loader, archive or repository.
 */
public abstract class NativeObject {
    /** Read by native code. */
    private final NativeHandle handle;

    private final long address;

    NativeObject(long address, NativeHandle handle) {
        this.address = address;
        this.handle = Objects.requireNonNull(handle);
    }

    final NativeHandle handle() {
        return handle;
    }

    /** Who keeps what this object hands out. */
    NativeHandle owner() {
        return handle;
    }

    static long live(NativeObject object, long address) {
        if (object == null) return 0;
        if (!object.handle.isLive())
            throw new IllegalStateException("the object, or what it came from, is closed");
        return address;
    }

    /** The handle of an argument that the new object refers to. */
    static NativeHandle keep(NativeObject argument) {
        return argument.owner();
    }

    static <T> List<T> list(long[] addresses, LongFunction<T> make) {
        return LongStream.of(addresses).mapToObj(make).toList();
    }

    static <T> long[] addresses(Collection<? extends T> objects, ToLongFunction<T> address) {
        return objects.stream().map(Objects::requireNonNull).mapToLong(address).toArray();
    }

    static List<String> list(String[] texts) {
        return List.of(texts);
    }

    static String[] texts(Collection<String> texts) {
        return texts.toArray(String[]::new);
    }

    /** Names and values in their order; a name may stand there twice. */
    static List<Map.Entry<String, String>> entries(String[] texts) {
        if (texts == null) return null;
        var entries = new AbstractMap.SimpleImmutableEntry<?, ?>[texts.length / 2];
        for (int i = 0; i < entries.length; ++i)
            entries[i] = new AbstractMap.SimpleImmutableEntry<>(texts[2 * i], texts[2 * i + 1]);
        @SuppressWarnings("unchecked")
        var typed = (Map.Entry<String, String>[]) entries;
        return Collections.unmodifiableList(Arrays.asList(typed));
    }

    static String[] texts(List<? extends Map.Entry<String, String>> entries) {
        return entries.stream()
                .flatMap(entry -> List.of(entry.getKey(), entry.getValue()).stream())
                .toArray(String[]::new);
    }

    static Map<String, String> map(String[] texts) {
        var map = new LinkedHashMap<String, String>();
        for (int i = 0; i < texts.length; i += 2) map.put(texts[i], texts[i + 1]);
        return Collections.unmodifiableMap(map);
    }

    /** True for the Java object of the same object of the library. */
    @Override
    public final boolean equals(Object other) {
        return other != null
                && other.getClass() == getClass()
                && ((NativeObject) other).address == address
                && ((NativeObject) other).handle.isLive() == handle.isLive();
    }

    @Override
    public final int hashCode() {
        return Long.hashCode(address);
    }
}
