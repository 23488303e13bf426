// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

/** A mistake of the user: a wrong argument, an unusable file. */
public class HEXUserException extends HEXError {
    private static final long serialVersionUID = 1;

    public HEXUserException(String message) {
        super(message);
    }
}
