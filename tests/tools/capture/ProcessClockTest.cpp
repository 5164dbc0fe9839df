// The process's age: the start time field of /proc/<pid>/stat, whatever the command name holds.
#include "ProcessClock.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// A stat line with `name` as the command and 777 as the start time (field 22).
std::string statLine(const std::string& name)
{
    std::string line = "4242 (" + name + ") S";
    for (int field = 4; field < 22; ++field)
        line += " " + std::to_string(field);
    return line + " 777 8 9 10\n";
}

}  // namespace

TEST(ProcessClock, TheTwentySecondFieldCountedAfterTheNameMalformedLinesRefusedAndThisProcessIsYoung)
{
    EXPECT_EQ(ProcessClock::parseStartTicks(statLine("velmora-capture")), 777);
    // Spaces and parentheses in the command name do not shift the fields.
    EXPECT_EQ(ProcessClock::parseStartTicks(statLine("a (b) c")), 777);
    EXPECT_EQ(ProcessClock::parseStartTicks(""), -1);
    EXPECT_EQ(ProcessClock::parseStartTicks("4242 velmora S 1 2"), -1);
    EXPECT_EQ(ProcessClock::parseStartTicks("4242 (velmora) S 4 5 6"), -1);
    std::string negative = statLine("v");
    negative.replace(negative.find(" 777 "), 5, " -77 ");
    EXPECT_EQ(ProcessClock::parseStartTicks(negative), -1);
    const double age = ProcessClock::secondsSinceStart();
    EXPECT_GE(age, 0.0);
    EXPECT_LT(age, 3600.0);
}
