#include "tools/ctl/cli/output.h"

#include "tools/ctl/cli/failure.h"
#include "tools/ctl/cli/write_all.h"

#include <json/json.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace ctl {
namespace {

constexpr std::string_view kEraseLine = "\r\033[K";

std::mutex mutex; // one for both streams, which are often the same terminal

// Whether the stream is a terminal that obeys control sequences.
bool obeysSequences(int fd)
{
    const char* const terminal = std::getenv("TERM");
    return isatty(fd) == 1 && terminal && std::string_view(terminal) != "dumb";
}

bool wantsColours()
{
    const char* const noColour = std::getenv("NO_COLOR");
    return !(noColour && *noColour);
}

// The part that fits into one row of the terminal: a longer line could not be erased.
std::string_view firstRow(int fd, std::string_view text)
{
    winsize size{};
    if (ioctl(fd, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
        return text;
    const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; };
    size_t columns = 0;
    const auto end = std::find_if(
        text.begin(), text.end(), [&](char c) { return begins(c) && ++columns == size.ws_col; });
    return {text.begin(), end};
}

std::string_view sequence(Style style)
{
    switch (style) {
    case Style::kPlain:
        return "";
    case Style::kStrong:
        return "\033[1m";
    case Style::kGood:
        return "\033[32m";
    case Style::kBad:
        return "\033[31m";
    case Style::kFaint:
        return "\033[2m";
    }
    return "";
}

std::string serialized(const Json::Value& value, const char* indentation)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = indentation;
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

} // namespace

std::string jsonLineText(const Json::Value& value)
{
    return serialized(value, "");
}

Output::Output(int fd)
    : fd_(fd)
    , terminal_(obeysSequences(fd))
    , colours_(terminal_ && wantsColours())
{
}

Output& Output::out()
{
    static Output output(STDOUT_FILENO);
    return output;
}

Output& Output::err()
{
    static Output output(STDERR_FILENO);
    return output;
}

void Output::line(std::string_view text)
{
    const std::lock_guard lock(mutex);
    std::string whole(hasProgress_ ? kEraseLine : "");
    hasProgress_ = false;
    whole += text;
    whole += '\n';
    write(whole);
}

void Output::json(const Json::Value& value)
{
    line(serialized(value, "  "));
}

void Output::jsonLine(const Json::Value& value)
{
    line(jsonLineText(value));
}

std::string Output::styled(Style style, std::string_view text) const
{
    if (!colours_ || style == Style::kPlain)
        return std::string(text);
    return std::string(sequence(style)) + std::string(text) + "\033[0m";
}

void Output::progress(std::string_view text)
{
    if (!terminal_)
        return;
    const std::lock_guard lock(mutex);
    hasProgress_ = true;
    write(std::string(kEraseLine) + std::string(firstRow(fd_, text)));
}

void Output::write(std::string_view text)
{
    const int error = writeAll(fd_, text);
    if (error && fd_ != STDERR_FILENO)
        throw Failure(kNoAccess, "standard output: " + std::generic_category().message(error));
}

} // namespace ctl
