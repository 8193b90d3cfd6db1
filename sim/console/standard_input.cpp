#include "sim/console/standard_input.h"

#include "sim/bench/json_line.h"

#include <glib-unix.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace sim {
namespace {

// The bench runs in the background of a shell. Reading would fail.
bool isTerminalOfOthers()
{
    const pid_t foreground = tcgetpgrp(STDIN_FILENO);
    return foreground >= 0 && foreground != getpgrp();
}

} // namespace

StandardInput::StandardInput(Bench& bench, Output& output, Output& errors)
    : output_(output)
    , errors_(errors)
    , conversation_(bench, *this)
    , lines_([this](std::string_view line) { execute(line); })
{
    update();
}

void StandardInput::update()
{
    const bool reads
        = !ended_ && !retry_ && !conversation_.waits() && !output_.isFull() && !errors_.isFull();
    if (!reads) {
        source_.reset();
    } else if (!source_) {
        constexpr auto kReadable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
        const auto onReadable = +[](int, GIOCondition, gpointer self) -> gboolean {
            static_cast<StandardInput*>(self)->read();
            return G_SOURCE_CONTINUE;
        };
        source_.emplace(g_unix_fd_add(STDIN_FILENO, kReadable, onReadable, this));
    }
}

void StandardInput::send(const Json::Value& object)
{
    if (!object["status"].isInt())
        output_.print(object["text"].isString() ? object["text"].asString() : jsonLine(object));
    else if (object["error"].isString())
        fail(object["error"].asString());
}

void StandardInput::execute(std::string_view line)
{
    if (line.size() > LineReader::kMaxLine)
        fail("the line is too long");
    else if (!g_utf8_validate(line.data(), static_cast<gssize>(line.size()), nullptr))
        fail("the line is not text in UTF-8");
    else
        conversation_.add(line);
}

// Often both outputs are the same terminal: what came before the error is shown before it.
void StandardInput::fail(const std::string& error)
{
    output_.write();
    errors_.print("kelprobe-sim: " + error);
    errors_.write();
}

void StandardInput::read()
{
    if (isTerminalOfOthers()) {
        constexpr guint kRetryMs = 300; // there is no event for a change of the foreground
        const auto onRetry = +[](gpointer self) -> gboolean {
            static_cast<StandardInput*>(self)->retry_.reset();
            return G_SOURCE_REMOVE;
        };
        retry_.emplace(g_timeout_add(kRetryMs, onRetry, this));
        return;
    }
    std::array<char, 4096> buffer;
    const ssize_t size = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (size > 0) {
        lines_.add({buffer.data(), static_cast<size_t>(size)});
    } else if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
        lines_.finish();
        ended_ = true;
    }
}

} // namespace sim
