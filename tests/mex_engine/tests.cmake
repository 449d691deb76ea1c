# SPDX-License-Identifier: BSD-3-Clause
# Tests of what the engine hands to a host, in the stand-in host.
kelvane_add_test(mex_engine/same_bits engine_host)
kelvane_add_test(mex_engine/model_calls engine_host)
