# SPDX-License-Identifier: BSD-3-Clause
# gnuplot -c charts.gp REPORT PAGE FOLDER: benchmark.png, the time per point and iteration by the number of points, of the
# first table of the report, and estimation.png, right poses by the part of wrong observations, of the table of the page.
set grid linetype 1 linewidth 0.5 linecolor rgb '#d0d0d0'
set key outside right center vertical Left reverse samplen 3 spacing 1.3
colours = '#d55e00 #404040 #0072b2 #009e73 #cc79a7 #e69f00 #56b4e9'
do for [i = 1:7] {
  set linetype i linewidth (i == 1 ? 3.5 : 1.8) linecolor rgb word(colours, i) dashtype int(word('1 2 1 1 1 1 3', i))
  set linetype i pointtype int(word('7 5 9 11 13 4 8', i)) pointsize real(word('1.3 1 1.2 1.2 1.2 1 1.2', i))
}

set terminal pngcairo size 1150,430 font 'FreeSans,12' background 'white'
set output ARG3.'/estimation.png'
set datafile separator '|'
set xrange [-3:93]
set yrange [-3:105]
set xtics 0, 30
set xlabel 'wrong observations, %'
names = 'kelvane default SQPNP USAC\_FAST UsacParams'
set multiplot
do for [i = 0:2] {
  n = word('30 100 1000', i + 1)
  set lmargin at screen 0.06 + 0.28 * i
  set rmargin at screen 0.28 + 0.28 * i
  set title n.' points'
  set ylabel (i == 0 ? 'right poses, %' : '')
  if (i < 2) { unset key } else { set key }
  plot for [c = 1:5] sprintf('< grep "N = %s," %s', n, ARG2) using (real(word(strcol(2), 4))):(real(word(strcol(c + 2), 1))) with linespoints linetype c title word(names, c)
}
unset multiplot

set terminal pngcairo size 1000,640 font 'FreeSans,12' background 'white'
set output ARG3.'/benchmark.png'
set lmargin; set rmargin
set logscale xy
set xrange [4:150000]
set yrange [*:*]
set xtics autofreq
set xlabel 'points in a call'
set ylabel 'nanoseconds per point and iteration'
set title 'Ten iterations of a pose refinement on one thread' font 'FreeSans,14'
set format '%.0f'
table = sprintf("< sed -n '/^## Ten iterations$/,/^Largest/s/^| [N0-9]/&/p' %s", ARG1)
plot for [i = 3:9] table using 2:($3 * (i > 3 ? real(strcol(i)) : 1)) with linespoints linetype i - 2 title columnheader(i)
