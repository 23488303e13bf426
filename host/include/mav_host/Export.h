/* SPDX-License-Identifier: Apache-2.0 */
#ifndef MAV_HOST_EXPORT_H
#define MAV_HOST_EXPORT_H

/* Marks what the shared library exports; everything else stays hidden. Usable from C. */
#define MAV_API __attribute__((visibility("default")))

#endif
