// peer-window SCENE [PATH]: a window with a scene that is compiled ahead of time as Kelprobe's is:
// "peer_window", "peer_text", or "main", which is Kelprobe's own over plain values. With a path it
// reads that device meanwhile.
#include "bench/program/plain_values.h"
#include "bench/program/read_loop.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>

#include <thread>

namespace {

bool startReading(const char* path)
{
    hid_device* const device = hid_open_path(path);
    if (device)
        std::thread(bench::readReports, device, bench::channelFromEnvironment()).detach();
    return device != nullptr;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    if (argc < 2 || (argc > 2 && !startReading(argv[2])))
        return EXIT_FAILURE;
    PlainValues values;
    QQmlApplicationEngine engine;
    for (const char* name : {"cls_DeviceManager", "cls_HidController", "cls_LogRecorder"})
        engine.rootContext()->setContextProperty(QLatin1String(name), &values);
    engine.load(QUrl(QStringLiteral("qrc:/%1.qml").arg(QLatin1String(argv[1]))));
    static_cast<void>(QGuiApplication::exec());
    std::_Exit(EXIT_SUCCESS); // the reader does not end otherwise
}
