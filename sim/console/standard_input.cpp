#include "sim/console/standard_input.h"

#include "sim/bench/json_line.h"
#include "sim/console/transcript.h"

#include <glib-unix.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

namespace sim {

StandardInput::StandardInput(Bench& bench)
    : conversation_(bench, *this)
    , lines_([this](std::string_view line) { execute(line); })
{
    constexpr auto kReadable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
    const auto onReadable = +[](int, GIOCondition, gpointer self) -> gboolean {
        return static_cast<StandardInput*>(self)->read() ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
    };
    source_
        = std::make_unique<EventSource>(g_unix_fd_add(STDIN_FILENO, kReadable, onReadable, this));
}

void StandardInput::send(const Json::Value& object)
{
    if (!object["status"].isInt())
        printLine(object["text"].isString() ? object["text"].asString() : jsonLine(object));
    else if (object["error"].isString())
        fprintf(stderr, "kelprobe-sim: %s\n", object["error"].asCString());
}

void StandardInput::execute(std::string_view line)
{
    if (line.size() > LineReader::kMaxLine)
        fputs("kelprobe-sim: the line is too long\n", stderr);
    else if (!g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr))
        fputs("kelprobe-sim: the line is not text in UTF-8\n", stderr);
    else
        conversation_.add(line);
}

// False at the end of the input.
bool StandardInput::read()
{
    std::array<char, 4096> buffer;
    const ssize_t size = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (size > 0)
        lines_.add({buffer.data(), static_cast<size_t>(size)});
    else if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
        lines_.finish();
        return false;
    }
    return true;
}

} // namespace sim
