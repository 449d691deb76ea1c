# SPDX-License-Identifier: BSD-3-Clause
# What Doxygen reads in place of a header: line by line the same, with its sentence at the head as description of the file
# and "Raises" as a section.
1s|.*|/// @file|
2,/^#pragma once/s|^//|///|
s|\(Eqs\{0,1\}\.\) |\1\&nbsp;|g
s|/// Raises |/// @exception fw::exception_l |
s|/// Throws \(std::[a-z_]*\) |/// @exception \1 |
s|(\([a-z_]*/[A-Za-z_]*\.h\))|(%\1)|
