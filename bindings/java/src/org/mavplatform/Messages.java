// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.CopyOnWriteArrayList;
import java.util.function.Consumer;
import java.util.function.LongSupplier;
import java.util.logging.Level;
import java.util.logging.LogRecord;
import java.util.logging.Logger;

/**
 * Where the library's messages go: to the logger "org.mavplatform" and to every listener. They
 * arrive on the thread whose call told them.
 */
public final class Messages {
    /** The logger of every message; a program sets its level and handlers. */
    public static final Logger LOGGER = Logger.getLogger("org.mavplatform");

    private static final int STATUS = 0x4000000;
    private static final int WARNING = 0x8000000;
    private static final List<Consumer<Message>> LISTENERS = new CopyOnWriteArrayList<>();
    private static final ThreadLocal<List<Message>> TOLD = new ThreadLocal<>();

    private Messages() {}

    /** What a listener throws is ignored. */
    public static void addListener(Consumer<Message> listener) {
        LISTENERS.add(java.util.Objects.requireNonNull(listener));
    }

    public static void removeListener(Consumer<Message> listener) {
        LISTENERS.remove(listener);
    }

    /** Called by native code. */
    private static void onReport(int mask, String id, String[] arguments, String text) {
        var message = new Message(levelOf(mask), id, List.of(arguments), text);
        if (TOLD.get() != null) TOLD.get().add(message);
        deliver(() -> log(message));
        for (Consumer<Message> listener : LISTENERS) deliver(() -> listener.accept(message));
    }

    private static void log(Message message) {
        if (!LOGGER.isLoggable(message.level())) return;
        // Without parameters the text is no pattern, whatever braces stand in it.
        var record = new LogRecord(message.level(), message.text());
        record.setLoggerName(LOGGER.getName());
        LOGGER.log(record);
    }

    private static void deliver(Runnable delivery) {
        try {
            delivery.run();
        } catch (RuntimeException | StackOverflowError ignored) {
            // The library goes on.
        }
    }

    private static Level levelOf(int mask) {
        if (mask == 0 || mask == STATUS) return Level.INFO;
        return mask == WARNING ? Level.WARNING : Level.SEVERE;
    }

    /** Makes a loader; the exception of a file that does not parse gets what was told. */
    static long opening(LongSupplier open) {
        var outer = TOLD.get();
        var told = new ArrayList<Message>();
        TOLD.set(told);
        try {
            return open.getAsLong();
        } catch (PlatformParseException fault) {
            throw fault.with(List.copyOf(told));
        } finally {
            TOLD.set(outer);
        }
    }

    /** Loads; an answer of 0 is an exception with what was told. */
    static long loading(String path, LongSupplier load) {
        var outer = TOLD.get();
        var told = new ArrayList<Message>();
        TOLD.set(told);
        try {
            long address = load.getAsLong();
            if (address == 0) throw new PlatformParseException(path, List.copyOf(told));
            return address;
        } finally {
            TOLD.set(outer);
        }
    }
}
