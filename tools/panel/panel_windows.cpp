#include "tools/panel/panel_windows.h"

#include <QCoreApplication>
#include <QQmlComponent>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace panel {
namespace {

// Without a window manager all windows are at the upper left corner, as is Kelprobe's. Puts them to
// the right of that, as far as the screen has room, each a little further down.
void placeUnlessManaged(QQuickWindow& window, int index)
{
    constexpr int kKelprobe = 656; // its width of 640, and a gap
    constexpr int kStep = 24;
    if (!window.position().isNull() || !window.frameMargins().isNull())
        return; // a window manager has moved or framed it
    const QRect screen = window.screen()->availableGeometry();
    const QPoint last(screen.right() + 1 - window.width(), screen.bottom() + 1 - window.height());
    const int step = kStep * index;
    window.setPosition(std::clamp(last.x(), 0, kKelprobe + step), std::clamp(last.y(), 0, step));
}

// The first error is the cause of the others.
QString causeOf(const QQmlComponent& component)
{
    const QList<QQmlError> errors = component.errors();
    return errors.isEmpty() ? QStringLiteral("no window") : oneLine(errors.first().description());
}

} // namespace

PanelWindows::PanelWindows(Bench& bench, Theme& theme)
    : bench_(bench)
{
    qmlRegisterSingletonInstance("Kelprobe.Panel", 1, 0, "Theme", &theme);
    qmlRegisterSingletonInstance("Kelprobe.Panel", 1, 0, "Bench", &bench);
    QObject::connect(
        &engine_, &QQmlEngine::quit, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

bool PanelWindows::open(std::optional<int> device)
{
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/panel/PanelWindow.qml")));
    for (const auto& candidate : bench_.devices()) {
        if (windows_.size() == kMaxWindows)
            break;
        if ((!device || *device == candidate->number()) && !openWindow(component, *candidate)) {
            problem_ = causeOf(component);
            return false;
        }
    }
    return !windows_.empty();
}

bool PanelWindows::openWindow(QQmlComponent& component, Device& device)
{
    if (component.isError())
        return false;
    // Otherwise the engine would own, and destroy, what QML gets from a function.
    QQmlEngine::setObjectOwnership(&device, QQmlEngine::CppOwnership);
    std::unique_ptr<QObject> object(component.createWithInitialProperties(
        {{QStringLiteral("device"), QVariant::fromValue<QObject*>(&device)}}));
    auto* const window = qobject_cast<QQuickWindow*>(object.get());
    if (!window)
        return false;
    static_cast<void>(object.release());
    const auto index = static_cast<int>(windows_.size());
    windows_.emplace_back(window);
    // With the first frame a window manager, if there is one, has placed the window.
    QObject::connect(
        window, &QQuickWindow::frameSwapped, window, [window, index, placed = false]() mutable {
            if (!std::exchange(placed, true))
                placeUnlessManaged(*window, index);
        });
    return true;
}

} // namespace panel
