// The contact sheet's layout and the frame pasting it is built from: places, clipping, label strips.
#include "ContactSheet.h"
#include "Frame.h"

#include <gtest/gtest.h>
#include <cstdint>

namespace {

Frame plain(int width, int height, uint8_t value)
{
    Frame frame;
    frame.fill(width, height, value, value, value);
    return frame;
}

uint8_t at(const Frame& frame, int x, int y)
{
    return frame.getPixels()[(static_cast<size_t>(y) * frame.getWidth() + x) * 3];
}

}  // namespace

TEST(ContactSheet, PastesInPlaceSixToARowEachLabelUnderItsStillAndFewStillsMakeOneShortRow)
{
    Frame target = plain(6, 4, 0);
    target.paste(plain(2, 2, 9), 1, 1);
    EXPECT_EQ(at(target, 1, 1), 9);
    EXPECT_EQ(at(target, 2, 2), 9);
    EXPECT_EQ(at(target, 3, 2), 0);
    EXPECT_EQ(at(target, 0, 0), 0);
    // Hanging over every edge, and wholly outside: no byte outside the picture is written.
    target.paste(plain(3, 3, 7), -1, -1);
    target.paste(plain(3, 3, 5), 5, 3);
    target.paste(plain(3, 3, 1), 6, 0);
    target.paste(plain(3, 3, 1), 0, -3);
    EXPECT_EQ(at(target, 0, 0), 7);
    EXPECT_EQ(at(target, 1, 1), 7);
    EXPECT_EQ(at(target, 2, 2), 9);
    EXPECT_EQ(at(target, 5, 3), 5);
    EXPECT_EQ(at(target, 4, 3), 0);
    EXPECT_EQ(target.getByteCount(), 6u * 4u * 3u);
    Frame empty = plain(-3, 2, 1);
    EXPECT_EQ(empty.getByteCount(), 0u);
    const int w = 10, h = 8, label = 3, gap = ContactSheet::GAP;
    ContactSheet sheet(w, h, label, 24);
    EXPECT_EQ(sheet.getColumns(), 6);
    EXPECT_EQ(sheet.getRows(), 4);
    EXPECT_EQ(sheet.getPicture().getWidth(), gap + 6 * (w + gap));
    EXPECT_EQ(sheet.getPicture().getHeight(), gap + 4 * (h + label + gap));
    EXPECT_EQ(at(sheet.getPicture(), 0, 0), ContactSheet::GREY);

    // Entry 8 sits second in the second row.
    sheet.place(7, plain(w, h, 200), plain(w, label, 100));
    const int x = gap + (w + gap), y = gap + (h + label + gap);
    EXPECT_EQ(at(sheet.getPicture(), x, y), 200);
    EXPECT_EQ(at(sheet.getPicture(), x + w - 1, y + h - 1), 200);
    EXPECT_EQ(at(sheet.getPicture(), x, y + h), 100);
    EXPECT_EQ(at(sheet.getPicture(), x + w - 1, y + h + label - 1), 100);
    EXPECT_EQ(at(sheet.getPicture(), x + w, y), ContactSheet::GREY);
    EXPECT_EQ(at(sheet.getPicture(), x, y + h + label), ContactSheet::GREY);

    // Past the count: nothing changes.
    const Frame before = sheet.getPicture();
    sheet.place(24, plain(w, h, 1), plain(w, label, 1));
    EXPECT_EQ(std::vector<uint8_t>(before.getPixels(), before.getPixels() + before.getByteCount()),
              std::vector<uint8_t>(sheet.getPicture().getPixels(),
                                   sheet.getPicture().getPixels() + sheet.getPicture().getByteCount()));
    ContactSheet four(10, 8, 3, 4);
    EXPECT_EQ(four.getColumns(), 4);
    EXPECT_EQ(four.getRows(), 1);
    ContactSheet seven(10, 8, 3, 7);
    EXPECT_EQ(seven.getRows(), 2);
    EXPECT_EQ(ContactSheet::labelHeightFor(240), 30);
    EXPECT_EQ(ContactSheet::labelHeightFor(48), 12);
    EXPECT_EQ(ContactSheet::labelHeightFor(8), 8);
}
