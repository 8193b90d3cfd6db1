// peer-window [PATH]: the bare window, compiled ahead of time as Kelprobe's is. With a path it
// reads that device meanwhile.
#include "read_loop.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <thread>

int main(int argc, char* argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    if (argc == 2) {
        hid_device* const device = hid_open_path(argv[1]);
        if (!device)
            return EXIT_FAILURE;
        std::thread(bench::readReports, device, bench::channelFromEnvironment()).detach();
    }
    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/peer_window.qml")));
    static_cast<void>(QGuiApplication::exec());
    std::_Exit(EXIT_SUCCESS); // the reader does not end otherwise
}
