# Draws what rolu-peers --values wrote. Use: gnuplot -e "values='FILE.csv'; picture='FILE.svg'" plot.gp
set terminal svg size 860,420 noenhanced font "sans-serif,13" background "white"
set output picture
set datafile separator ","
set multiplot layout 1,3 title "Asking an MCU that answers at once (logarithmic scales)"
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
set ylabel "microseconds"
set yrange [10:100000]
plot values using "quiet_median_us":xtic(1) lc rgb "#33658a" title "median", \
     "" using "quiet_p99_us" lc rgb "#f6ae2d" title "99th percentile"
set title "one right after another"
set ylabel "questions a second"
set yrange [100:1000000]
plot values using "burst_asks_per_s":xtic(1) lc rgb "#33658a" notitle
set title "processor time of a question"
set ylabel "microseconds"
set yrange [1:1000]
plot values using "processor_us_per_ask":xtic(1) lc rgb "#33658a" notitle
unset multiplot
