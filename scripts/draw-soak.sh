#!/bin/bash
# Draws the samples of a soak: scripts/draw-soak.sh SAMPLES.csv PICTURE.svg
set -euo pipefail

gnuplot <<END
set terminal svg size 900,500 font "sans,12" background "white"
set output "$2"
set datafile separator ","
set key outside below
set xlabel "minutes"
set ylabel "MiB"
set y2label "descriptors"
set ytics nomirror
set y2tics
set yrange [0:*]
set y2range [0:*]
plot "$1" skip 1 using (\$1/60):(\$3/1024) with lines title "helper, resident", \
     "" skip 1 using (\$1/60):(\$4/1024) with lines title "helper, proportional", \
     "" skip 1 using (\$1/60):(\$5/1024) with lines title "engine's processes, proportional", \
     "" skip 1 using (\$1/60):7 axes x1y2 with lines title "helper's descriptors"
END
