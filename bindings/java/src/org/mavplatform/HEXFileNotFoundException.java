// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

/** A file that is not there. */
public class HEXFileNotFoundException extends HEXError {
    private static final long serialVersionUID = 1;

    private final String path;

    public HEXFileNotFoundException(String message, String path) {
        super(message);
        this.path = path;
    }

    /** The path exactly as it was given, which may be empty. */
    public String getPath() {
        return path;
    }
}
