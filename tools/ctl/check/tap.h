// Test results in the Test Anything Protocol, version 14. Pure.
#pragma once

#include "tools/ctl/check/test_result.h"

#include <cstddef>
#include <string>

namespace ctl {

// The lines that come first, without the last line end.
[[nodiscard]] std::string tapHeader(size_t tests);

// The lines of one test, counted from 1, without the last line end. A test with details, or that
// failed, has a YAML block.
[[nodiscard]] std::string tapResult(size_t number, const TestResult& result);

// The line that ends an incomplete run.
[[nodiscard]] std::string tapBailOut(const std::string& reason);

} // namespace ctl
