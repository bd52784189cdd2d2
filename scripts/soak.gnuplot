# Plots memory, handles and threads of a soak over time. Needs: table, plot_file, what.
set terminal pngcairo size 1000,700
set output plot_file
set multiplot layout 2,1 title 'Soak: '.what
set xlabel 'minutes'
set key left top
set yrange [0:*]
set ylabel 'KiB'
rows = "< grep -E '^ +[0-9]' ".table
plot rows using 1:3 with lines title 'resident', rows using 1:2 with lines title 'heap'
set ylabel 'count'
plot rows using 1:4 with lines title 'handles', rows using 1:5 with lines title 'threads'
unset multiplot
