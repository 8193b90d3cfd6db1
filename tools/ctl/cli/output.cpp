#include "tools/ctl/cli/output.h"

#include "tools/ctl/cli/failure.h"

#include <json/json.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <system_error>
#include <unistd.h>

namespace ctl {
namespace {

constexpr std::string_view kEraseLine = "\r\033[K";

std::mutex mutex; // one for both streams, which are often the same terminal

bool wantsColours()
{
    const char* const noColour = std::getenv("NO_COLOR");
    const char* const terminal = std::getenv("TERM");
    return !(noColour && *noColour) && terminal && std::string_view(terminal) != "dumb";
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
    , terminal_(isatty(fd) == 1)
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
    write(std::string(kEraseLine) + std::string(text));
}

void Output::write(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t size = ::write(fd_, text.data(), text.size());
        if (size >= 0) {
            text.remove_prefix(static_cast<size_t>(size));
        } else if (errno != EINTR) {
            if (fd_ == STDERR_FILENO)
                return;
            throw Failure(kNoAccess, "standard output: " + std::generic_category().message(errno));
        }
    }
}

} // namespace ctl
