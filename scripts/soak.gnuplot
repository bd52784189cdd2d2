# Plots heap, resident memory, handles and threads of a soak over time, each with a scale of
# its own from zero. Needs: table, plot_file, what.
set terminal pngcairo size 1000,900
set output plot_file
set multiplot layout 4,1 title 'Soak: '.what
set lmargin 13
set rmargin 3
unset key
set yrange [0:*]
set offsets 0, 0, graph 0.2, 0
set grid
set style line 1 linewidth 1.5 linecolor rgb "#1f4e8c"
rows = "< grep -E '^ +[0-9]' '".table."'"
set ylabel 'heap, KiB'
plot rows using 1:2 with lines linestyle 1
set ylabel 'resident, KiB'
plot rows using 1:3 with lines linestyle 1
set ylabel 'handles'
plot rows using 1:4 with lines linestyle 1
set xlabel 'minutes'
set ylabel 'threads'
plot rows using 1:5 with lines linestyle 1
unset multiplot
