// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.util.List;

/** A platform file that cannot be turned into a platform. */
public class PlatformParseException extends RuntimeException {
    private static final long serialVersionUID = 1;

    private final String path;
    private transient List<Message> messages = List.of();

    public PlatformParseException(String message, String path) {
        super(message);
        this.path = path;
    }

    PlatformParseException(String path, List<Message> messages) {
        this(messages.isEmpty() ? "an earlier load has failed" : messages.get(messages.size() - 1).text(),
                path);
        this.messages = messages;
    }

    /** The file that was to be loaded. */
    public String getPath() {
        return path;
    }

    /** What was told on the way, in order: files, lines and reasons. */
    public List<Message> getMessages() {
        return messages == null ? List.of() : messages;
    }

    PlatformParseException with(List<Message> told) {
        messages = told;
        return this;
    }
}
