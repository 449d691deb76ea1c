# SPDX-License-Identifier: BSD-3-Clause
# The published table of nanoseconds per point and iteration as data of benchmarks/chart.gp: the chart and the tables of
# the benchmark are one measurement.
/^Nanoseconds per point and iteration:$/ && !is_done { is_near = 1; next }
is_near && /^\| -/ { next }
is_near && /^\|/ {
  line = ""
  num_fields = split($0, field, / *\| */)
  for (i = 2; i < num_fields; i++) line = line (i > 2 ? " " : "") (is_inside ? field[i] : "\"" field[i] "\"")
  print line
  is_inside = 1
  next
}
is_inside { is_done = 1; is_near = is_inside = 0 }
