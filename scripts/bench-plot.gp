# Draws the bench's frame times along the schedule: gnuplot -e "frames='bench.csv'; schedule='schedule.csv'; out='bench.png'" bench-plot.gp
# frames: the CSV of velmora-capture --bench --csv, one or more sizes (width,height,time_s,frame_ms,budget_ms,kind,...);
# schedule: start,end,class per entry, scenes starting together joined by "+". Scene starts are marked, fades
# shaded, and each size's budget drawn.
if (!exists("frames")) frames = "bench.csv"
if (!exists("schedule")) schedule = "bench-schedule.csv"
if (!exists("out")) out = "bench.png"

set terminal pngcairo size 1800,900 font "DejaVu Sans,11"
set output out
set datafile separator ","
set title "Frame time along the schedule (velmora-capture --bench)"
set xlabel "scene time (s)"
set ylabel "frame time (ms, log scale)"
set logscale y
ylow = 0.1
yhigh = 2000.0
set yrange [ylow:yhigh]
set xrange [-2:295]
set xtics 10
set grid ytics xtics lc rgb "#dddddd"
set key below horizontal maxcols 6

small = "#1f77b4"
large = "#ff7f0e"
# The budget: 120 fps up to 640 x 480, 60 fps above, and no frame over 50 ms but a scene's first under a fade.
set arrow from graph 0, first 8.3 to graph 1, first 8.3 nohead dt 2 lw 2 lc rgb small front
set arrow from graph 0, first 16.7 to graph 1, first 16.7 nohead dt 2 lw 2 lc rgb large front
set arrow from graph 0, first 50 to graph 1, first 50 nohead dt 3 lw 2 lc rgb "#d62728" front
set label "8.3 ms: 120 fps" at graph 0.005, first 7.2 tc rgb small front
set label "16.7 ms: 60 fps" at graph 0.005, first 19.5 tc rgb large front
set label "50 ms" at graph 0.005, first 58 tc rgb "#d62728" front

fade(class) = class eq "Fader"
at(w, value) = (column(1) == w ? value : NaN)
start(kind) = strcol(6) eq kind

plot \
    schedule using (fade(strcol(3)) ? ($1 + $2) / 2 : NaN):(ylow):1:2:(ylow):(yhigh) \
        with boxxyerror fs solid 0.12 noborder lc rgb "#555555" title "fade", \
    schedule using (fade(strcol(3)) ? NaN : $1):(ylow):(0):(yhigh - ylow) \
        with vectors nohead dt 4 lc rgb "#888888" notitle, \
    schedule using (fade(strcol(3)) ? NaN : $1 + 0.4):(900):3 \
        with labels rotate by -90 left font ",10" tc rgb "#333333" notitle, \
    frames every ::1 using 3:(at(640, $4)) with points pt 7 ps 0.35 lc rgb small title "640 x 480", \
    frames every ::1 using 3:(at(1280, $4)) with points pt 7 ps 0.35 lc rgb large title "1280 x 720", \
    frames every ::1 using 3:(start("covered-start") ? $4 : NaN) \
        with points pt 6 ps 2 lw 2 lc rgb "#2ca02c" title "scene start under a fade", \
    frames every ::1 using 3:(start("scene-start") ? $4 : NaN) \
        with points pt 8 ps 2 lw 2 lc rgb "#d62728" title "scene start, no fade", \
    frames every ::1 using 3:(start("run-start") ? $4 : NaN) \
        with points pt 4 ps 2 lw 2 lc rgb "#9467bd" title "the run's first frame"
