// The result of a test of kelprobectl check.
#pragma once

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace ctl {

// Texts may hold anything that a device sends: what prints them makes them safe.
struct Outcome {
    enum class Verdict { kPassed, kFailed, kSkipped };

    struct Detail {
        std::string name; // "expected"
        std::vector<std::string> values;
    };

    Verdict verdict = Verdict::kPassed;
    // Why the test failed or was left out: a sentence that the device's maker can act on.
    std::string reason = {};
    std::vector<Detail> details = {};
};

[[nodiscard]] inline Outcome failed(std::string reason, std::vector<Outcome::Detail> details = {})
{
    return {Outcome::Verdict::kFailed, std::move(reason), std::move(details)};
}

[[nodiscard]] inline Outcome skipped(std::string reason)
{
    return {Outcome::Verdict::kSkipped, std::move(reason)};
}

struct TestResult {
    std::string name; // "the ring lamp lights while a call rings"
    Outcome outcome;
    std::chrono::milliseconds duration{};
};

} // namespace ctl
