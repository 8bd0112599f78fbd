# SPDX-License-Identifier: Apache-2.0
# Where a press spends its time. Wants `data`, a column for each part, and `picture`.
set terminal svg size 560,320 font "sans,12" background "white"
set output picture
set title "Round trip of a press"
set ylabel "µs"
set style data histograms
set style histogram rowstacked
set style fill solid 0.9 noborder
set boxwidth 0.8
set xrange [-0.5:0.5]
set yrange [0:*]
unset xtics
set grid ytics
set key outside right center invert reverse Left
plot for [i=1:4] data using i title columnheader(i)
