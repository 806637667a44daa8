# Draws what rolu-peers --values wrote. Use: gnuplot -e "values='FILE.csv'; picture='FILE.svg'" plot.gp
set terminal svg size 860,800 noenhanced font "sans-serif,13" background "white"
set output picture
set datafile separator ","
set multiplot layout 2,3 title "Asking an MCU that answers at once"
set style data histograms
set style histogram clustered gap 1
set style fill solid 0.9 noborder
set logscale y
set grid ytics lc rgb "#dddddd"
set border 3
set xtics nomirror rotate by -35
set ytics nomirror
set key top left reverse Left samplen 1
set title "question on a quiet line"
set ylabel "microseconds (logarithmic)"
set yrange [10:100000]
plot values using "quiet_median_us":xtic(1) lc rgb "#33658a" title "median", \
     "" using "quiet_p99_us" lc rgb "#f6ae2d" title "99th percentile"
set title "one right after another"
set ylabel "questions a second (logarithmic)"
set yrange [100:1000000]
plot values using "burst_asks_per_s":xtic(1) lc rgb "#33658a" notitle
set title "processor time of a question"
set ylabel "microseconds (logarithmic)"
set yrange [1:1000]
plot values using "quiet_processor_us":xtic(1) lc rgb "#33658a" title "on a quiet line", \
     "" using "burst_processor_us" lc rgb "#f6ae2d" title "one after another"
unset logscale y
set title "threads woken up on an idle line"
set ylabel "a second"
set yrange [0:10]
plot values using "idle_wakeups_per_s":xtic(1) lc rgb "#33658a" notitle
set title "allocations of a question"
set ylabel "number"
set yrange [0:1]
plot values using "allocations_per_ask":xtic(1) lc rgb "#33658a" notitle
set logscale y
set title "memory that is loaded"
set ylabel "KiB (logarithmic)"
set yrange [1:1000000]
plot values using "loaded_kib":xtic(1) lc rgb "#33658a" title "by itself", \
     "" using "with_needed_kib" lc rgb "#f6ae2d" title "in all"
unset multiplot
