// Splits the input of a stream into lines.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace sim {

class LineReader {
public:
    // Long enough for the longest valid line: "raw" with the longest report.
    static constexpr size_t kMaxLine = 256 * size_t{1024};

    // Called with each line, without its end. Of a line longer than kMaxLine it gets the first
    // kMaxLine + 1 characters.
    using Callback = std::function<void(std::string_view line)>;

    explicit LineReader(Callback onLine)
        : onLine_(std::move(onLine))
    {
    }

    void add(std::string_view text);
    // Whether the line that has begun is longer than kMaxLine already.
    [[nodiscard]] bool isTooLong() const { return line_.size() > kMaxLine; }

    // To be called at the end of the stream. Text after the last line end is a line, too.
    void finish();

private:
    const Callback onLine_;
    std::string line_; // begun, not yet ended
};

} // namespace sim
