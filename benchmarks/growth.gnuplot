# Plots time against size. Needs: table with a block of data for each curve, picture, curves.
set terminal pngcairo size 1200,700
set output picture
set logscale xy
set format '10^{%L}'
set xlabel 'size'
set ylabel 'seconds'
set grid
set key outside right top samplen 2 spacing 1.3  # over no curve
plot for [i=0:curves-1] table index i using 1:2 with linespoints title columnheader(1)
