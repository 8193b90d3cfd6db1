#include "app/devicemanager.h"
#include "app/hidcontroller.h"
#include "app/logrecorder.h"
#include "app/quitsignals.h"
#include "base/src/util/standard_streams.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>

namespace {

constexpr int kFailed = -1;

int runWindow()
{
    QQmlApplicationEngine engine;
    QQmlContext* context = engine.rootContext();
    if (!context)
        return kFailed;
    // In this order: the devices are enumerated before there is a controller.
    context->setContextProperty("cls_DeviceManager", &DeviceManager::instance());
    context->setContextProperty("cls_HidController", &HidController::instance());
    context->setContextProperty("cls_LogRecorder", &LogRecorder::instance());
    engine.load(QUrl("qrc:/main.qml"));
    return engine.rootObjects().isEmpty() ? kFailed : QGuiApplication::exec();
}

} // namespace

int main(int argc, char* argv[])
{
    rkb::protect_standard_streams();
    // Deliberately fixed: the tool always uses this home and ignores the user's RKB_HOME.
    qputenv("RKB_HOME", "/home/tarnu/.mivo");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    const QuitSignals quitSignals;
    return runWindow();
}
