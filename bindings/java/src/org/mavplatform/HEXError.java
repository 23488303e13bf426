// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

/** Base of what the library throws; the message tells the fault and what to do. */
public class HEXError extends RuntimeException {
    private static final long serialVersionUID = 1;

    public HEXError(String message) {
        super(message);
    }
}
