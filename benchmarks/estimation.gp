# SPDX-License-Identifier: BSD-3-Clause
# gnuplot -c estimation.gp PAGE PICTURE: right poses against the part of wrong observations, of the table on that page.
set terminal pngcairo size 1150,430 font 'FreeSans,12' background 'white'
set output ARG2
set datafile separator '|'
set xrange [-3:93]
set yrange [-3:105]
set xtics 0, 30
set xlabel 'wrong observations, %'
set grid linetype 1 linewidth 0.5 linecolor rgb '#d0d0d0'
set key outside right center vertical Left reverse samplen 3 spacing 1.3
set linetype 1 linewidth 3.5 pointtype 7 pointsize 1.3 linecolor rgb '#d55e00'
set linetype 2 linewidth 1.8 pointtype 5 pointsize 1.0 linecolor rgb '#404040' dashtype 2
set linetype 3 linewidth 1.8 pointtype 9 pointsize 1.2 linecolor rgb '#0072b2'
set linetype 4 linewidth 1.8 pointtype 11 pointsize 1.2 linecolor rgb '#009e73'
set linetype 5 linewidth 1.8 pointtype 13 pointsize 1.2 linecolor rgb '#cc79a7'
names = 'kelvane default SQPNP USAC\_FAST UsacParams'
set multiplot
do for [i = 0:2] {
  n = word('30 100 1000', i + 1)
  set origin 0.28 * i, 0
  set size (i == 2 ? 0.44 : 0.29), 1
  set lmargin at screen 0.06 + 0.28 * i
  set rmargin at screen 0.28 + 0.28 * i
  set title n.' points'
  set ylabel (i == 0 ? 'right poses, %' : '')
  if (i < 2) { unset key } else { set key }
  plot for [c = 1:5] sprintf('< grep "N = %s," %s', n, ARG1) using (real(word(strcol(2), 4))):(real(word(strcol(c + 2), 1))) with linespoints linetype c title word(names, c)
}
