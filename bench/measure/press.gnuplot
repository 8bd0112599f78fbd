# SPDX-License-Identifier: Apache-2.0
# What a press costs the server, by whose code it is. Wants `data` and `picture`.
set terminal svg size 760,300 font "sans,12" background "white"
set output picture
set title "Instructions that a press takes the server (logarithmic)"
set logscale x
set xrange [10:1000000]
set format x "%.0s%c"
set yrange [4.6:-0.6]
set style fill solid 0.8
set grid xtics
unset key
plot data using 2:0:(10):2:($0-0.3):($0+0.3):ytic(1) with boxxyerror lc rgb "#0060ad", \
     data using ($2*1.2):0:(sprintf("%.0f", $2)) with labels left
