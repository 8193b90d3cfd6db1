// Lines from standard input, read in the event loop.
#pragma once

#include <QSocketNotifier>

#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace ctl {

// Reads terminals, pipes and files. A process has at most one.
class InputLines {
public:
    // Longer lines are cut.
    static constexpr size_t kMaxLine = 4096;

    InputLines();

    // Whether take() returns something.
    [[nodiscard]] bool hasLine() const { return !lines_.empty(); }

    // The oldest line, without its end and without blanks around it.
    [[nodiscard]] std::optional<std::string> take();

    // Whether the input has ended, perhaps with lines that have not been taken. An input that
    // cannot be read has ended.
    [[nodiscard]] bool ended() const { return ended_; }

    // Forgets the lines that have not been taken.
    void discard();

private:
    void read();
    void limit();
    void add(std::string_view text);
    void endLine();

    QSocketNotifier notifier_;
    std::string begun_; // a line without its end
    std::deque<std::string> lines_;
    bool ended_ = false;
};

} // namespace ctl
