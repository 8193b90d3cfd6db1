#include "sim/control/line_reader.h"

#include <utility>

namespace sim {

void LineReader::add(std::string_view text)
{
    while (!text.empty()) {
        const size_t end = text.find('\n');
        line_ += text.substr(0, end);
        line_.resize(std::min(line_.size(), kMaxLine + 1));
        if (end == text.npos)
            return;
        onLine_(std::exchange(line_, {}));
        text.remove_prefix(end + 1);
    }
}

void LineReader::finish()
{
    if (!line_.empty())
        onLine_(std::exchange(line_, {}));
}

} // namespace sim
