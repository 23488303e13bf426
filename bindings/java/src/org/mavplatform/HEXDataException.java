// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

/** Data that does not convert or does not fit. */
public class HEXDataException extends HEXError {
    private static final long serialVersionUID = 1;

    public HEXDataException(String message) {
        super(message);
    }
}
