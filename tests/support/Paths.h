// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The checkout and its build folder. Macros that name them would make the objects of one checkout
/// useless to another, so one source alone knows them.
extern const char* const SOURCE_DIR;
extern const char* const BINARY_DIR;
