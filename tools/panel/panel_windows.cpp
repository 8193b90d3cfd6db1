#include "tools/panel/panel_windows.h"

#include <QQmlComponent>

namespace panel {

PanelWindows::PanelWindows(Bench& bench, Theme& theme)
    : bench_(bench)
{
    qmlRegisterSingletonInstance("Kelprobe.Panel", 1, 0, "Theme", &theme);
    qmlRegisterSingletonInstance("Kelprobe.Panel", 1, 0, "Bench", &bench);
}

bool PanelWindows::open(std::optional<int> device)
{
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/panel/PanelWindow.qml")));
    for (const auto& candidate : bench_.devices())
        if ((!device || *device == candidate->number()) && !openWindow(component, *candidate))
            return false;
    return !windows_.empty();
}

bool PanelWindows::openWindow(QQmlComponent& component, Device& device)
{
    // Otherwise the engine would own, and destroy, what QML gets from a function.
    QQmlEngine::setObjectOwnership(&device, QQmlEngine::CppOwnership);
    std::unique_ptr<QObject> object(component.createWithInitialProperties(
        {{QStringLiteral("device"), QVariant::fromValue<QObject*>(&device)}}));
    auto* const window = qobject_cast<QQuickWindow*>(object.get());
    if (!window) {
        for (const QQmlError& error : component.errors())
            qWarning("%s", qPrintable(error.toString()));
        return false;
    }
    static_cast<void>(object.release());
    windows_.emplace_back(window);
    return true;
}

} // namespace panel
