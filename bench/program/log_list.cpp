// log-list: Kelprobe's window twice, with few lines in its log list and with many.
#include "bench/program/log_list.h"

#include "bench/program/channel.h"

#include "app/devicemanager.h"
#include "app/hidcontroller.h"
#include "app/logrecorder.h"

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWindow>

#include <array>

namespace {

QQuickItem* findListView(QQuickItem& item)
{
    if (item.inherits("QQuickListView"))
        return &item;
    for (QQuickItem* child : item.childItems())
        if (QQuickItem* found = findListView(*child))
            return found;
    return nullptr;
}

class Window {
public:
    explicit Window(int lines)
    {
        QQmlContext* context = m_engine.rootContext();
        context->setContextProperty("cls_DeviceManager", &DeviceManager::instance());
        context->setContextProperty("cls_HidController", &HidController::instance());
        context->setContextProperty("cls_LogRecorder", &m_recorder);
        m_engine.load(QUrl("qrc:/main.qml"));
        auto* window = qobject_cast<QQuickWindow*>(m_engine.rootObjects().value(0));
        m_view = window ? findListView(*window->contentItem()) : nullptr;
        if (!m_view)
            qFatal("the scene has no list view");
        refill(lines);
    }

    void refill(int lines)
    {
        m_recorder.toggleClearLog();
        append(lines, bench::LogView::AtTop);
    }

    void append(int lines, bench::LogView view)
    {
        const bool follow = view == bench::LogView::MovedToEnd;
        m_view->setProperty("following", follow);
        const char* const show = follow ? "showEnd" : "forceLayout";
        for (int i = 0; i < lines; ++i) {
            m_recorder.append(QStringLiteral("0x0000-HID-0x0000# Muted from device"));
            QMetaObject::invokeMethod(m_view, show); // otherwise done before the next frame
        }
    }

private:
    LogRecorder m_recorder;
    QQmlApplicationEngine m_engine;
    QQuickItem* m_view = nullptr;
};

void processEvents()
{
    while (QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents)) { }
}

} // namespace

int main(int argc, char* argv[])
{
    const int channel = bench::channelFromEnvironment();
    const QGuiApplication application(argc, argv);
    std::array windows{
        std::make_unique<Window>(bench::kShortList), std::make_unique<Window>(bench::kLongList)};
    bench::tell(channel, bench::Moment::Ready, bench::now());
    for (bench::Command command; bench::receive(channel, command);) {
        Window& window = *windows[static_cast<size_t>(command.x)];
        if (command.x == static_cast<int32_t>(bench::LogList::Short))
            window.refill(bench::kShortList);
        processEvents();
        const int64_t begin = bench::now();
        window.append(bench::kAppendedLines, static_cast<bench::LogView>(command.y));
        const int64_t end = bench::now();
        bench::tell(channel, bench::Moment::Acted, begin);
        bench::tell(channel, bench::Moment::Report, end);
    }
}
