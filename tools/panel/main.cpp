// kelprobe-panel: a window for each simulated device of a bench.
#include "base/src/util/standard_streams.h"
#include "tools/panel/command_line.h"
#include "tools/panel/display.h"
#include "tools/panel/panel_windows.h"

#include <QFile>
#include <QIcon>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

int fail(panel::ExitStatus status, const std::string& text)
{
    std::fprintf(stderr, "kelprobe-panel: %s\n", text.c_str());
    return status;
}

int print(const std::string& text)
{
    if (std::printf("%s\n", text.c_str()) >= 0 && std::fflush(stdout) == 0)
        return panel::kFine;
    return fail(panel::kNoAccess, std::string("standard output: ") + std::strerror(errno));
}

int openWindows(panel::PanelWindows& windows, const panel::Bench& bench, std::optional<int> device)
{
    const std::string count = std::to_string(bench.devices().size());
    const bool opened = windows.open(device);
    if (opened && !device && bench.devices().size() > windows.windows().size())
        std::fprintf(stderr,
            "kelprobe-panel: the bench has %s devices, of which the first %zu have a window; "
            "choose another with --device N\n",
            count.c_str(), windows.windows().size());
    if (opened)
        return panel::kFine;
    if (!windows.problem().isEmpty())
        return fail(panel::kNoAccess,
            "cannot make the windows: " + windows.problem().toStdString()
                + "; install qml-module-qtquick2, qml-module-qtquick-window2, "
                  "qml-module-qtquick-layouts and qml-module-qtquick-controls2");
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
        if (early->status == panel::kFine)
            return print(early->text);
        std::fprintf(stderr, "%s\n", early->text.c_str());
        return early->status;
    }
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setApplicationName(QStringLiteral("kelprobe-panel"));
    QGuiApplication::setDesktopFileName(QStringLiteral("kelprobe-bench"));
    // The program takes no options of Qt's: its command line was read above.
    int count = 1;
    const auto application = panel::openDisplay(count, argv);
    QGuiApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("kelprobe")));
    return showPanel(std::get<panel::Options>(parsed));
}
