// kelprobe-panel: a window for each simulated device of a bench.
#include "base/src/util/standard_streams.h"
#include "tools/panel/command_line.h"
#include "tools/panel/panel_windows.h"

#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

namespace {

int fail(panel::ExitStatus status, const std::string& text)
{
    std::fprintf(stderr, "kelprobe-panel: %s\n", text.c_str());
    return status;
}

// Qt ends the process with SIGABRT if there is none.
bool hasDisplay()
{
    return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY")
        || std::getenv("QT_QPA_PLATFORM");
}

int openWindows(panel::PanelWindows& windows, const panel::Bench& bench, std::optional<int> device)
{
    if (windows.open(device))
        return panel::kFine;
    const std::string count = std::to_string(bench.devices().size());
    return fail(panel::kWrongUse,
        device ? "there is no device " + std::to_string(*device) + "; the bench has " + count
               : "the bench has no devices; name a profile after kelprobe-sim run");
}

int showPanel(const panel::Options& options)
{
    panel::Theme theme(options.look);
    panel::Bench bench(QFile::decodeName(options.socket.c_str()));
    panel::PanelWindows windows(bench, theme);
    QObject::connect(&bench, &panel::Bench::ready, [&] {
        if (const int status = openWindows(windows, bench, options.device))
            QCoreApplication::exit(status);
    });
    QObject::connect(&bench, &panel::Bench::lost, [&](const QString& reason) {
        if (windows.windows().empty())
            QCoreApplication::exit(fail(panel::kNoAccess,
                "no bench at " + options.socket + ": " + reason.toStdString()
                    + "; start one with kelprobe-sim run PROFILE -- kelprobe-panel"));
    });
    bench.start();
    return QGuiApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    rkb::protect_standard_streams();
    const auto parsed = panel::parseCommandLine(argc, argv, std::getenv("KELPROBE_SIM"));
    if (const auto* const early = std::get_if<panel::EarlyExit>(&parsed)) {
        std::fprintf(early->status ? stderr : stdout, "%s\n", early->text.c_str());
        return early->status;
    }
    if (!hasDisplay())
        return fail(panel::kNoAccess, "there is no display; set DISPLAY or WAYLAND_DISPLAY");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setApplicationName(QStringLiteral("kelprobe-panel"));
    QGuiApplication::setDesktopFileName(QStringLiteral("kelprobe-panel"));
    // The program takes no options of Qt's: its command line was read above.
    int count = 1;
    const QGuiApplication application(count, argv);
    return showPanel(std::get<panel::Options>(parsed));
}
