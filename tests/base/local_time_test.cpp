#include "local_time.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

TEST(LocalTime, IsTheSystemsCalendarCountedFromOne)
{
    rkb::local_time_t now{};
    while (now.milliseconds < 100 || now.milliseconds > 900) // away from the end of a second
        now = rkb::local_time();
    const time_t seconds = time(nullptr);
    rkb::local_time_t date = rkb::local_date();
    tm parts{};
    localtime_r(&seconds, &parts);
    char expected[64];
    char found[64];
    strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S %w", &parts);
    snprintf(found, sizeof found, "%d-%02d-%02d %02d:%02d:%02d %d", now.year, now.month, now.day,
        now.hour, now.minute, now.second, now.weekday);
    EXPECT_STREQ(found, expected);
    date.milliseconds = now.milliseconds;
    EXPECT_EQ(date, now);
}

} // namespace
