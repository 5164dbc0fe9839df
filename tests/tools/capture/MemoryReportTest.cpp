// Resident-memory figures of a run: reading VmRSS, when lines are printed, the growth verdict, the --memory option.
#include "MemoryProbe.h"
#include "MemoryReport.h"
#include "Schedule.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        out.push_back(line);
    return out;
}

}  // namespace

TEST(MemoryProbe, ReadsTheFigureAfterTheKeyRefusesMalformedOnesAndThisProcessHasAResidentSet)
{
    const struct {
        const char* text;
        long kilobytes;
    } cases[] = {
        {"Name:\tcat\nVmPeak:\t  9000 kB\nVmRSS:\t    1234 kB\nVmData: 5 kB\n", 1234},
        {"VmRSS: 0 kB", 0},
        {"XVmRSS:\t 7 kB\nVmRSS:\t 8 kB\n", 8},
        {"XVmRSS:\t 7 kB\n", -1},
        {"", -1},
        {"VmHWM:\t 100 kB\n", -1},
        {"VmRSS:\t\n", -1},
        {"VmRSS:\t -5 kB\n", -1},
        {"VmRSS:\t 12 MB\n", -1},
        {"VmRSS:\t 12", -1},
        {"VmRSS:\t 99999999999999999999999 kB\n", -1},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MemoryProbe::parseResident(c.text), c.kilobytes) << c.text;
    EXPECT_EQ(MemoryProbe::parseKilobytes("VmHWM:\t 2345 kB\nVmRSS:\t 1234 kB\n", "VmHWM:"), 2345);
    const long resident = MemoryProbe::residentKilobytes();
    EXPECT_GT(resident, 0);
    EXPECT_GE(MemoryProbe::peakKilobytes(), resident);
}

TEST(MemoryReportLines, StartMarksLastSceneAndEndAndMarksNeverRepeat)
{
    MemoryReport report(1.0, 2.5);
    std::ostringstream out;
    // Four frames a second from 0 to 4.75 s.
    for (int k = 0; k < 20; ++k)
        report.addFrame(k * 0.25, 100 + k, k == 19, out);
    std::vector<std::string> printed = lines(out.str());
    ASSERT_EQ(printed.size(), 7u) << out.str();
    EXPECT_NE(printed[0].find("0.000 s  VmRSS      100 kB  start"), std::string::npos) << printed[0];
    EXPECT_NE(printed[3].find("2.500 s  VmRSS      110 kB  last scene starts"), std::string::npos) << printed[3];
    EXPECT_NE(printed[6].find("4.750 s  VmRSS      119 kB  end"), std::string::npos) << printed[6];
    // Frames every 0.4 s from 10 s land between the 1 s marks: each mark prints once, at the
    // first frame on or after it.
    MemoryReport marks(1.0, 1000.0);
    std::ostringstream marked;
    for (int k = 0; k < 8; ++k)
        marks.addFrame(10.0 + k * 0.4, 5, false, marked);
    const std::vector<std::string> later = lines(marked.str());
    ASSERT_EQ(later.size(), 3u) << marked.str();
    EXPECT_NE(later[0].find("10.000 s"), std::string::npos);
    EXPECT_NE(later[1].find("11.200 s"), std::string::npos);
    EXPECT_NE(later[2].find("12.000 s"), std::string::npos);
}

TEST(MemoryReportGrowth, HighestSinceTheLastSceneLessItsFirstFrameAndNoVerdictForARunEndingBeforeIt)
{
    MemoryReport report(100.0, 2.0);
    std::ostringstream out;
    const long sizes[] = {500, 900, 300, 340, 320, 310};
    for (int k = 0; k < 6; ++k)
        report.addFrame(k, sizes[k], k == 5, out);
    ASSERT_TRUE(report.sawLastScene());
    // Before the last scene memory may rise and fall as scenes come and go; only later counts.
    EXPECT_EQ(report.growthAfterLastStart(), 40);
    std::ostringstream summary;
    report.printSummary(summary);
    EXPECT_EQ(summary.str(),
              "memory since the last scene started at 2.000 s: first 300 kB, highest 340 kB, "
              "last 310 kB, growth 40 kB\n");
    MemoryReport early(1.0, 50.0);
    early.addFrame(0.0, 10, true, out);
    EXPECT_FALSE(early.sawLastScene());
    EXPECT_EQ(early.growthAfterLastStart(), 0);
    std::ostringstream none;
    early.printSummary(none);
    EXPECT_NE(none.str().find("no growth figure"), std::string::npos);
}

TEST(ScheduleLastStart, LatestStartOfAnyEntry)
{
    Schedule schedule;
    EXPECT_EQ(schedule.getLastStart(), 0.0);
    schedule.add(ScheduleEntry{1, "A", 0.0f, 300.0f, 0});
    schedule.add(ScheduleEntry{2, "B", 270.5f, 290.0f, 1});
    schedule.add(ScheduleEntry{3, "C", 100.0f, 120.0f, 2});
    EXPECT_EQ(schedule.getLastStart(), 270.5);
    EXPECT_EQ(schedule.getEnd(), 300.0);
}
