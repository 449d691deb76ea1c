# SPDX-License-Identifier: BSD-3-Clause
# What is the same on every processor and system.
kelvane_add_test(machines/kernels)
kelvane_add_test(machines/whole_calls)
