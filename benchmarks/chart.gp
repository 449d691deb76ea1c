# SPDX-License-Identifier: BSD-3-Clause
# gnuplot -c chart.gp DATA PICTURE: time per point and iteration against the number of points.
set terminal pngcairo size 1000,640 font 'FreeSans,12' background 'white'
set output ARG2
stats ARG1 skip 1 nooutput
num_columns = STATS_columns

set logscale xy
set xrange [4:150000]
set xlabel 'points in a call'
set ylabel 'nanoseconds per point and iteration'
set title 'Ten iterations of a pose refinement on one thread' font 'FreeSans,14'
set format x '%.0f'
set format y '%.0f'
set grid xtics ytics mytics linetype 1 linewidth 1 linecolor rgb '#b0b0b0', linetype 1 linewidth 0.5 linecolor rgb '#e0e0e0'
set key outside right center vertical Left reverse samplen 3 spacing 1.3

set linetype 1 linewidth 3.5 pointtype 7 pointsize 1.3 linecolor rgb '#d55e00'
set linetype 2 linewidth 1.8 pointtype 5 pointsize 1.0 linecolor rgb '#404040' dashtype 2
set linetype 3 linewidth 1.8 pointtype 9 pointsize 1.2 linecolor rgb '#0072b2'
set linetype 4 linewidth 1.8 pointtype 11 pointsize 1.2 linecolor rgb '#009e73'
set linetype 5 linewidth 1.8 pointtype 13 pointsize 1.2 linecolor rgb '#cc79a7'
set linetype 6 linewidth 1.8 pointtype 4 pointsize 1.0 linecolor rgb '#e69f00'
set linetype 7 linewidth 1.8 pointtype 8 pointsize 1.2 linecolor rgb '#56b4e9' dashtype 3
set linetype 8 linewidth 1.8 pointtype 6 pointsize 1.0 linecolor rgb '#999999' dashtype 2
set linetype 9 linewidth 1.8 pointtype 10 pointsize 1.0 linecolor rgb '#8c564b' dashtype 4
plot for [i = 2:num_columns] ARG1 using 1:i with linespoints linetype i - 1 title columnheader(i)
