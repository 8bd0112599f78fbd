# SPDX-License-Identifier: Apache-2.0
# Checking and setting a layout, by its buttons. Wants `data` and `picture`.
set terminal svg size 760,420 font "sans,12" background "white"
set output picture
set title "Checking and setting a layout"
set xlabel "buttons"
set ylabel "µs"
set logscale xy
set format xy "10^{%T}"
set key top left
set grid
set style data linespoints
set pointsize 0.5
set datafile missing NaN
set linetype 1 lc rgb "#0060ad" pt 7
set linetype 2 lc rgb "#dd8452" pt 6
set linetype 3 lc rgb "#55a868" pt 5
plot data using "buttons":"set" lt 3 title "foot\\_touch\\_set\\_buttons()", \
     data using "buttons":"plain" lt 2 title "check, as a plain double loop", \
     data using "buttons":"shuffled" lt 1 dt 2 title "check, buttons in any order", \
     data using "buttons":"library" lt 1 title "check, buttons in order"
