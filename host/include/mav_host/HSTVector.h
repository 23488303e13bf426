// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

/// The list type of every query. A query takes it by reference and says whether it appends to it
/// or replaces its contents.
template <class T>
using HSTVector = std::vector<T>;
