// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

/** An archive whose digest nobody vouches for is not signed anew. */
public class DigestRefusal extends HEXUserException {
    private static final long serialVersionUID = 1;

    public DigestRefusal(String message) {
        super(message);
    }
}
