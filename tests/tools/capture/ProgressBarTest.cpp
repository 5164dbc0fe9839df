// The progress bar's text: the bar, the scene detail, the rate and the time left; and silence off a terminal.
#include "ProgressBar.h"

#include <gtest/gtest.h>
#include <cmath>
#include <cstdio>

TEST(ProgressBar, BarPercentDetailRateAndTimeLeftButNothingToAStreamThatIsNoTerminal)
{
    EXPECT_EQ(ProgressBar::render("video", 250, 1000, 59.94, 12.5 * 60 + 0.4, "121.8 s Islands"),
              "video [######..................] 25%  121.8 s Islands  59.9 fps  12:30 left");
    // Not started: no rate, no estimate, and no detail gives no gap.
    EXPECT_EQ(ProgressBar::render("sheet", 0, 40, 0.0, -1.0, ""),
              "sheet [........................] 0%  0.0 fps  --:-- left");
    // More steps than announced stay a full bar.
    EXPECT_EQ(ProgressBar::render("x", 50, 40, 1.0, 0.0, "").substr(0, 33), "x [########################] 100%");
    EXPECT_EQ(ProgressBar::minutes(0.0), "0:00");
    EXPECT_EQ(ProgressBar::minutes(59.6), "1:00");
    EXPECT_EQ(ProgressBar::minutes(125.0), "2:05");
    EXPECT_EQ(ProgressBar::minutes(3600.0), "60:00");
    EXPECT_EQ(ProgressBar::minutes(-1.0), "--:--");
    EXPECT_EQ(ProgressBar::minutes(std::nan("")), "--:--");
    EXPECT_EQ(ProgressBar::minutes(INFINITY), "--:--");
    FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ProgressBar bar(file);
    bar.start("video", 1000, [] { return std::string("detail"); });
    for (int i = 0; i < 1000; ++i)
        bar.advance();
    bar.tick();
    bar.finish();
    EXPECT_EQ(std::ftell(file), 0L);
    std::fclose(file);
}
