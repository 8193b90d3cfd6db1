#include "app/devicemanager.h"
#include "app/hidcontroller.h"
#include "app/logrecorder.h"
#include "app/quitsignals.h"
#include "base/src/util/standard_streams.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int kFailed = -1;

constexpr const char* kHelp
    = "usage: kelprobe [QT-OPTION...]\n"
      "       kelprobe --help | --version\n"
      "\n"
      "Opens a window in which you play a meeting with the call controls of a USB\n"
      "speakerphone, headset or conference camera.\n"
      "\n"
      "Qt's own options are for example -platform NAME and -style NAME.\n"
      "Exit status: 0 when the window was closed, also by SIGINT, SIGQUIT, SIGTERM and\n"
      "SIGHUP; another one if it cannot be shown.\n";

// True if the argument asks for a text, which is printed then. Other arguments are Qt's.
bool printsText(std::string_view argument)
{
    if (argument == "--version")
        std::puts("kelprobe " KELPROBE_VERSION);
    else if (argument == "--help" || argument == "-h")
        std::fputs(kHelp, stdout);
    else
        return false;
    return true;
}

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
    if (argc == 2 && printsText(argv[1])) // needs no display
        return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    // Deliberately fixed: the tool always uses this home and ignores the user's RKB_HOME.
    qputenv("RKB_HOME", "/home/tarnu/.mivo");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    const QGuiApplication application(argc, argv);
    const QuitSignals quitSignals;
    return runWindow();
}
