// Tests of the score grid: writes at its edges, and cutting it into patterns and orders.
#include "tools/composer/Score.h"

#include <gtest/gtest.h>
#include <algorithm>

namespace {

std::vector<int> orderStarts(const XmModule& m)
{
    std::vector<int> starts;
    int row = 0;
    for (uint8_t o : m.orders) {
        starts.push_back(row);
        row += m.patterns[o].rows;
    }
    starts.push_back(row);  // the end
    return starts;
}

}  // namespace

TEST(ScoreWriting, OutsideTheGridOrKeyboardIsIgnored)
{
    Score s(4, 2);
    s.note(-1, 0, 49, 1, 64);
    s.note(4, 0, 49, 1, 64);
    s.note(0, 2, 49, 1, 64);
    s.note(0, 0, 0, 1, 10);
    s.note(0, 1, 97, 1, 10);
    s.volume(0, -1, 10);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 2; ++c)
            EXPECT_TRUE(s.at(r, c).empty());
    EXPECT_TRUE(s.at(99, 99).empty());
}

TEST(ScoreCutting, SectionsStartNewPatternsAndCellsKeepTheirPlace)
{
    Score s(300, 4);
    s.markSection(0);  // edges and repeats change nothing
    s.markSection(300);
    s.markSection(100);
    s.markSection(37);
    s.markSection(37);
    EXPECT_EQ((std::vector<int>{37, 100}), s.sections());
    s.note(75, 3, 60, 5, 20);
    XmModule m;
    s.toModule(m, 64);
    const std::vector<int> starts = orderStarts(m);
    EXPECT_EQ(300, starts.back());
    EXPECT_NE(starts.end(), std::find(starts.begin(), starts.end(), 37));
    EXPECT_NE(starts.end(), std::find(starts.begin(), starts.end(), 100));
    for (uint8_t o : m.orders)
        EXPECT_LE(m.patterns[o].rows, 64);
    // 37-99 is the second order: row 75 is its row 38.
    EXPECT_EQ(60, m.patterns[m.orders[1]].cells[38 * 4 + 3].note);
}
