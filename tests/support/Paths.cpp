// SPDX-License-Identifier: Apache-2.0
#include "support/Paths.h"

const char* const SOURCE_DIR = MAV_SOURCE_DIR;
const char* const BINARY_DIR = MAV_BINARY_DIR;
