#include "base/src/util/local_time.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

TEST(LocalTime, IsTheSystemsCalendarCountedFromOne)
{
    rkb::local_time_t now{};
    rkb::local_time_t date{};
    time_t seconds = 0;
    do { // until all are of one second, past the tick by which a clock may lag
        now = rkb::local_time();
        seconds = time(nullptr);
        date = rkb::local_date();
    } while (now.milliseconds < 100 || rkb::local_time().second != now.second);
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
