// SPDX-License-Identifier: Apache-2.0
package org.mavplatform;

import java.util.List;
import java.util.logging.Level;

/**
 * What the library tells.
 *
 * @param level SEVERE, WARNING, or INFO for a status and for lines that go to a console
 * @param id such as "@74-14@%s%s"; empty for a line that goes to a console
 * @param arguments one for each placeholder of the id, in order
 * @param text the whole report on one line
 */
public record Message(Level level, String id, List<String> arguments, String text) {}
