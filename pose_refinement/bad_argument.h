// SPDX-License-Identifier: BSD-3-Clause
// What is wrong with an argument, from the lowest floor that checks one.
#pragma once

#include "cameras/bad_argument.h"
