# SPDX-License-Identifier: BSD-3-Clause
kelvane_add_test(rotations/rotation_models)
kelvane_add_test(rotations/chart)
