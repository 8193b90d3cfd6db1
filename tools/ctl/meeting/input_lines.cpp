#include "tools/ctl/meeting/input_lines.h"

#include <array>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace ctl {
namespace {

constexpr size_t kMaxWaiting = 1000; // lines
constexpr std::string_view kBlanks = " \t\r\v\f";

std::string trimmed(std::string_view text)
{
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == text.npos)
        return {};
    return std::string(text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1));
}

} // namespace

InputLines::InputLines()
    : notifier_(STDIN_FILENO, QSocketNotifier::Read)
{
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

std::optional<std::string> InputLines::take()
{
    if (lines_.empty())
        return std::nullopt;
    std::string line = std::move(lines_.front());
    lines_.pop_front();
    limit();
    return line;
}

void InputLines::discard()
{
    lines_.clear();
    limit();
}

// Lines that come faster than they are taken wait in the pipe.
void InputLines::limit()
{
    notifier_.setEnabled(lines_.size() < kMaxWaiting && !ended_);
}

void InputLines::read()
{
    std::array<char, kMaxLine> buffer;
    const ssize_t size = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (size > 0) {
        add({buffer.data(), static_cast<size_t>(size)});
    } else if (size == 0 || (errno != EINTR && errno != EAGAIN)) {
        ended_ = true;
        if (!begun_.empty())
            endLine();
    }
    limit();
}

void InputLines::add(std::string_view text)
{
    for (const char c : text) {
        if (c == '\n')
            endLine();
        else if (begun_.size() < kMaxLine)
            begun_ += c;
    }
}

void InputLines::endLine()
{
    lines_.push_back(trimmed(std::exchange(begun_, {})));
}

} // namespace ctl
