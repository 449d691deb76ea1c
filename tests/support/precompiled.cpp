// SPDX-License-Identifier: BSD-3-Clause
// Holds nothing: the headers that tests share are compiled with it.
