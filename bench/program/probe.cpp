// Preloaded into Kelprobe and the peers with a window, which need no change for it: reports when
// frames are on the screen and lines in the log list, and clicks on demand. It starts when the
// program enters its event loop, and uses only the program's window and context properties.
#include "bench/program/channel.h"

#include <QAbstractItemModel>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSocketNotifier>

#include <dlfcn.h>

namespace {

void sendMouse(QWindow& window, QEvent::Type type, const QPoint& position, Qt::MouseButtons held)
{
    QMouseEvent event(type, position, position, window.mapToGlobal(position), Qt::LeftButton, held,
        Qt::NoModifier);
    QCoreApplication::sendEvent(&window, &event);
}

// The button acts when it is released, so the time is measured from there.
void click(QWindow& window, const QPoint& position, int channel)
{
    sendMouse(window, QEvent::MouseButtonPress, position, Qt::LeftButton);
    const int64_t begin = bench::now();
    sendMouse(window, QEvent::MouseButtonRelease, position, Qt::NoButton);
    bench::tell(channel, bench::Moment::Acted, begin);
}

// insertRow() and setData() make a line, so the line is complete when its data has changed. The
// view was connected earlier and has handled the signal by then.
void watchLines(const QQuickWindow& window, int channel)
{
    const QQmlContext* context = QQmlEngine::contextForObject(&window);
    if (!context)
        return;
    auto* recorder = context->contextProperty(QStringLiteral("cls_LogRecorder")).value<QObject*>();
    if (!recorder)
        return; // the bare window
    auto* model = recorder->property("logListModel").value<QAbstractItemModel*>();
    QObject::connect(model, &QAbstractItemModel::dataChanged, &window,
        [channel] { bench::tell(channel, bench::Moment::Report, bench::now()); });
}

void watch(QQuickWindow& window, int channel)
{
    QObject::connect(
        &window, &QQuickWindow::frameSwapped, &window,
        [channel] { bench::tell(channel, bench::Moment::Frame, bench::now()); },
        Qt::DirectConnection);
    watchLines(window, channel);
    auto* commands = new QSocketNotifier(channel, QSocketNotifier::Read, &window);
    QObject::connect(commands, &QSocketNotifier::activated, &window, [&window, channel] {
        bench::Command command;
        if (bench::receive(channel, command))
            click(window, {command.x, command.y}, channel);
        else
            QCoreApplication::quit();
    });
}

} // namespace

// Replaces Qt's function, and calls it.
int QGuiApplication::exec()
{
    const int channel = bench::channelFromEnvironment();
    for (QWindow* window : topLevelWindows())
        if (auto* quick = qobject_cast<QQuickWindow*>(window); quick && channel >= 0)
            watch(*quick, channel);
    const auto next = reinterpret_cast<int (*)()>(dlsym(RTLD_NEXT, "_ZN15QGuiApplication4execEv"));
    return next();
}
