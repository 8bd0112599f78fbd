# SPDX-License-Identifier: Apache-2.0
# Latency against load. Wants `data` and `picture`.
set terminal svg size 760,420 font "sans,12" background "white"
set output picture
set title "Round trip of a press against load: 4 recognisers and the server on one processor"
set xlabel "presses a second"
set ylabel "µs from the moment the press was due"
set logscale y
set yrange [50:*]
set key top left
set grid
plot data using "rate":"library_p50_us" with linespoints lc rgb "#0060ad" pt 7 title "library, p50", \
     data using "rate":"bare_p50_us" with linespoints lc rgb "#dd8452" pt 6 title "bare gRPC, p50", \
     data using "rate":"library_p99_us" with linespoints lc rgb "#0060ad" dt 2 pt 7 title "library, p99", \
     data using "rate":"bare_p99_us" with linespoints lc rgb "#dd8452" dt 2 pt 6 title "bare gRPC, p99"
