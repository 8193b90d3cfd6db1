// peer-window SCENE [PATH]: a window with a scene that is compiled ahead of time, as Kelprobe's is:
// "peer_window", "peer_text", or "main", which is Kelprobe's scene over plain values. Reads the
// device PATH in a loop; each report is a mute press.
#include "bench/program/plain_values.h"
#include "bench/program/read_loop.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>

#include <thread>

namespace {

bool startReading(const char* path, PlainValues& values)
{
    hid_device* const device = hid_open_path(path);
    if (!device)
        return false;
    std::thread([device, &values] {
        bench::readReports(device, [&values] {
            QMetaObject::invokeMethod(&values, &PlainValues::pressMute, Qt::QueuedConnection);
        });
    }).detach();
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    PlainValues values;
    if (argc < 2 || (argc > 2 && !startReading(argv[2], values)))
        return EXIT_FAILURE;
    QQmlApplicationEngine engine;
    for (const char* name : {"cls_DeviceManager", "cls_HidController", "cls_LogRecorder"})
        engine.rootContext()->setContextProperty(QLatin1String(name), &values);
    engine.load(QUrl(QStringLiteral("qrc:/%1.qml").arg(QLatin1String(argv[1]))));
    static_cast<void>(QGuiApplication::exec());
    std::_Exit(EXIT_SUCCESS); // the reader does not end otherwise
}
