# SPDX-License-Identifier: Apache-2.0
# Finalise after the last press, by connected clients. Wants `data` and `picture`.
set terminal svg size 760,420 font "sans,12" background "white"
set output picture
set title "From the last press's callback until foot touch is finalised"
set xlabel "connected clients that do not read"
set ylabel "ms"
set logscale xy
set xrange [0.8:125]
set yrange [1:100000]
set key center right
set grid
set style data yerrorlines
set pointsize 0.5
set linetype 1 lc rgb "#0060ad" pt 7
set linetype 2 lc rgb "#dd8452" pt 6
# The bars hold all rounds.
plot data using "clients":"bare":"bare_low":"bare_high" lt 2 title "bare gRPC", \
     data using "clients":"library":"library_low":"library_high" lt 1 title "library"
