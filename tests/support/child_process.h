// Runs part of a test in a separate process, for state that a process has only once.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

// Runs `body` in a forked process that then calls exit(). True when that process ended with status
// 0 and no EXPECT in it failed. A process that takes longer than `seconds` is killed, which counts
// as a failure.
template <typename body_t>
[[nodiscard]] bool passesInChild(const body_t& body, unsigned seconds = 30)
{
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(seconds);
        body();
        exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

} // namespace test
