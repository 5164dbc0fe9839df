// The progress line: its text at the ends and in between, and silence where nobody watches.
#include "ProgressBar.h"

#include <gtest/gtest.h>
#include <cstdio>
#include <string>

TEST(ProgressBarText, EmptyHalfAndFull)
{
    std::string empty = ProgressBar::render("frames", 0, 200);
    EXPECT_EQ(empty, "frames [" + std::string(40, '.') + "] 0% 0/200");
    std::string half = ProgressBar::render("frames", 100, 200);
    EXPECT_EQ(half, "frames [" + std::string(20, '#') + std::string(20, '.') + "] 50% 100/200");
    std::string full = ProgressBar::render("frames", 200, 200);
    EXPECT_EQ(full, "frames [" + std::string(40, '#') + "] 100% 200/200");
}

TEST(ProgressBarText, NeverRunsPastTheEnd)
{
    // Step counts are estimates: extra steps must not overfill the bar.
    EXPECT_EQ(ProgressBar::render("x", 250, 200), ProgressBar::render("x", 200, 200));
    EXPECT_NE(ProgressBar::render("x", 0, 0).find("100%"), std::string::npos);
}

TEST(ProgressBarOutput, NothingGoesToAFileOrPipe)
{
    FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ProgressBar bar(file);
    bar.start("frames", 1000);
    for (int i = 0; i < 1000; ++i)
        bar.advance();
    bar.finish();
    EXPECT_EQ(std::ftell(file), 0L);
    std::fclose(file);
}
