# SPDX-License-Identifier: Apache-2.0
# Latency against load. Wants `data` and `picture`.
set terminal svg size 760,420 font "sans,12" background "white"
set output picture
set title "Round trip of a press against load: 4 recognisers and the server on one processor"
set xlabel "presses a second"
set ylabel "µs from the moment the press was due"
set logscale y
set key top left
set grid
set style data yerrorlines
set pointsize 0.5
set linetype 1 lc rgb "#0060ad" pt 7
set linetype 2 lc rgb "#dd8452" pt 6
# The bars hold the middle four fifths of the rounds. Apart by a little, so that both can be seen.
at(offset) = column("rate") + offset
middle(name) = column(name)
low(name) = column(name."_low")
high(name) = column(name."_high")
plot data using (at(-25)):(middle("library_p50")):(low("library_p50")):(high("library_p50")) \
       lt 1 dt 1 title "library, p50", \
     data using (at(25)):(middle("bare_p50")):(low("bare_p50")):(high("bare_p50")) \
       lt 2 dt 1 title "bare gRPC, p50", \
     data using (at(-25)):(middle("library_p99")):(low("library_p99")):(high("library_p99")) \
       lt 1 dt 2 title "library, p99", \
     data using (at(25)):(middle("bare_p99")):(low("bare_p99")):(high("bare_p99")) \
       lt 2 dt 2 title "bare gRPC, p99"
