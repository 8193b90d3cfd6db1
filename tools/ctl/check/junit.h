// Test results as JUnit XML. Pure.
#pragma once

#include "tools/ctl/check/test_result.h"

#include <string>
#include <vector>

namespace ctl {

// A document with one suite. Every text is made valid XML: control characters become "\xNN". With a
// `bailOut` the run was not completed, which counts as a failed test.
[[nodiscard]] std::string junitDocument(const std::string& suite,
    const std::vector<TestResult>& results, const std::string& bailOut = {});

} // namespace ctl
