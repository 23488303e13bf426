// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

/** An object was asked to do something that it refuses. */
public class HEXAlgException extends HEXError {
    private static final long serialVersionUID = 1;

    public HEXAlgException(String message) {
        super(message);
    }
}
