// SPDX-License-Identifier: Apache-2.0
/**
 * The platform library for Java. A {@link org.mavplatform.PlatformLoader} turns a file into an
 * {@link org.mavplatform.HMAVPlatform}; everything that it hands out belongs to it.
 *
 * <p>Where a comment speaks of a list {@code out} that is filled, the method answers that list;
 * where it speaks of {@code found}, null stands for not found.
 */
package org.mavplatform;
