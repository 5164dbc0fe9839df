// Tests of the score grid: writes, panning, and cutting it into patterns and orders.
#include "tools/composer/Score.h"

#include <gtest/gtest.h>

namespace {

int totalRows(const XmModule& m) {
    int rows = 0;
    for (uint8_t o : m.orders) rows += m.patterns[o].rows;
    return rows;
}

// Row at which each order starts.
std::vector<int> orderStarts(const XmModule& m) {
    std::vector<int> starts;
    int row = 0;
    for (uint8_t o : m.orders) {
        starts.push_back(row);
        row += m.patterns[o].rows;
    }
    return starts;
}

}  // namespace

// ---- Writing ----

TEST(ScoreWriting, OutsideTheGridIsIgnored) {
    Score s(4, 2);
    s.note(-1, 0, 49, 1, 64);
    s.note(4, 0, 49, 1, 64);
    s.note(0, 2, 49, 1, 64);
    s.volume(0, -1, 10);
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 2; ++c)
            EXPECT_TRUE(s.at(r, c).empty());
    EXPECT_TRUE(s.at(99, 99).empty());
}

TEST(ScoreWriting, VolumesMapToTheVolumeColumnAndClamp) {
    Score s(1, 4);
    s.note(0, 0, 49, 2, 0);
    s.note(0, 1, 49, 2, 64);
    s.note(0, 2, 49, 2, 99);
    s.note(0, 3, 49, 2);
    EXPECT_EQ(0x10, s.at(0, 0).volume);
    EXPECT_EQ(0x50, s.at(0, 1).volume);
    EXPECT_EQ(0x50, s.at(0, 2).volume);
    EXPECT_EQ(0, s.at(0, 3).volume);
}

TEST(ScoreWriting, NotesOutsideTheKeyboardAreDropped) {
    Score s(1, 2);
    s.note(0, 0, 0, 1, 10);
    s.note(0, 1, 97, 1, 10);
    EXPECT_TRUE(s.at(0, 0).empty());
    EXPECT_TRUE(s.at(0, 1).empty());
}

TEST(ScoreWriting, KeyOffReplacesANoteAndItsInstrument) {
    Score s(1, 2);
    s.note(0, 0, 50, 3, 40);
    s.keyOff(0, 0);
    EXPECT_EQ(Score::kKeyOff, s.at(0, 0).note);
    EXPECT_EQ(0, s.at(0, 0).instrument);
}

// ---- Cutting into patterns ----

TEST(ScoreCutting, SectionsStartNewPatterns) {
    Score s(300, 2);
    s.markSection(100);
    s.markSection(37);
    XmModule m;
    s.toModule(m, 64);
    EXPECT_EQ(300, totalRows(m));
    const std::vector<int> starts = orderStarts(m);
    EXPECT_NE(starts.end(), std::find(starts.begin(), starts.end(), 37));
    EXPECT_NE(starts.end(), std::find(starts.begin(), starts.end(), 100));
    for (uint8_t o : m.orders) EXPECT_LE(m.patterns[o].rows, 64);
}

TEST(ScoreCutting, MarksAtTheEdgesOrTwiceChangeNothing) {
    Score s(128, 2);
    s.markSection(0);
    s.markSection(128);
    s.markSection(64);
    s.markSection(64);
    EXPECT_EQ(std::vector<int>{64}, s.sections());
}

TEST(ScoreCutting, IdenticalPatternsAreStoredOnce) {
    Score s(256, 2);
    for (int r = 0; r < 256; r += 64) s.note(r, 0, 49, 1, 40);
    s.note(200, 1, 52, 1, 40);
    XmModule m;
    s.toModule(m, 64);
    ASSERT_EQ(4u, m.orders.size());
    EXPECT_EQ(2u, m.patterns.size());
    EXPECT_EQ(m.orders[0], m.orders[1]);
    EXPECT_EQ(m.orders[0], m.orders[2]);
    EXPECT_NE(m.orders[0], m.orders[3]);
}

TEST(ScoreCutting, CellsKeepTheirRowAndChannel) {
    Score s(100, 4);
    s.markSection(30);
    s.note(75, 3, 60, 5, 20);
    XmModule m;
    s.toModule(m, 64);
    // 0-29, 30-93, 94-99: row 75 is row 45 of the second order.
    ASSERT_EQ(3u, m.orders.size());
    const XmPattern& p = m.patterns[m.orders[1]];
    EXPECT_EQ(60, p.cells[45 * 4 + 3].note);
    EXPECT_EQ(4, m.channels);
}

// ---- Panning ----

TEST(ScorePanning, NotesGetTheirChannelsPanningWhenTheEffectIsFree) {
    Score s(2, 2);
    s.setPanning(0, 40);
    s.note(0, 0, 49, 1, 30);
    s.note(1, 0, 49, 1, 30);
    s.effect(1, 0, 0x04, 0x42);
    s.note(0, 1, 49, 1, 30);  // channel 1 has no panning of its own
    XmModule m;
    s.toModule(m, 64);
    const XmPattern& p = m.patterns[0];
    EXPECT_EQ(0x08, p.cells[0].effect);
    EXPECT_EQ(40, p.cells[0].param);
    EXPECT_EQ(0x04, p.cells[2].effect);  // vibrato kept
    EXPECT_EQ(0, p.cells[1].effect);
}
