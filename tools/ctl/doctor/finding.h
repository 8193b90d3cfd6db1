// What `kelprobectl doctor` finds out.
#pragma once

#include <string>
#include <vector>

namespace ctl {

struct Finding {
    enum class Level {
        kFine,
        kNote,    // good to know
        kProblem, // stands in the way
    };

    Level level = Level::kFine;
    std::string id;     // a fixed word, documented in docs/kelprobectl-json.md
    std::string text;   // a sentence without a full stop, printable
    std::string remedy; // lines without the last line end; empty if there is none
};

using Findings = std::vector<Finding>;

} // namespace ctl
