#include "tools/panel/display.h"

#include "tools/panel/command_line.h"

#include <QByteArray>

#include <cstdio>
#include <unistd.h>

namespace panel {
namespace {

[[noreturn]] void end(const char* problem, const QByteArray& display)
{
    std::fprintf(stderr,
        "kelprobe-panel: %s%s; check DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM\n", problem,
        display.constData());
    _exit(kNoAccess); // Qt's objects exist only in part
}

// An empty value is the same as none.
QByteArray displayName()
{
    for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (QByteArray value = qgetenv(variable); !value.isEmpty())
            return value;
    return {};
}

void takeMessage(QtMsgType type, const QMessageLogContext&, const QString&)
{
    if (type == QtFatalMsg)
        end("cannot open the display ", displayName());
}

} // namespace

std::unique_ptr<QGuiApplication> openDisplay(int& count, char** words)
{
    if (displayName().isEmpty())
        end("there is no display", {});
    const QtMessageHandler before = qInstallMessageHandler(takeMessage);
    auto application = std::make_unique<QGuiApplication>(count, words);
    qInstallMessageHandler(before);
    return application;
}

} // namespace panel
