// The windows: one for each device.
#pragma once

#include "tools/panel/bench.h"
#include "tools/panel/theme.h"

#include <QQmlEngine>
#include <QQuickWindow>

#include <optional>

namespace panel {

class PanelWindows {
public:
    static constexpr size_t kMaxWindows = 32; // more would not fit on a screen

    // Both must outlive the object.
    PanelWindows(Bench& bench, Theme& theme);

    // Opens the window of each device of the bench, at most kMaxWindows, or of this one. False if
    // there is none, or if a window cannot be made.
    [[nodiscard]] bool open(std::optional<int> device);

    // Why a window cannot be made, in one line; empty if none has failed.
    [[nodiscard]] QString problem() const { return problem_; }

    [[nodiscard]] const std::vector<std::unique_ptr<QQuickWindow>>& windows() const
    {
        return windows_;
    }

private:
    [[nodiscard]] bool openWindow(QQmlComponent& component, Device& device);

    Bench& bench_;
    QQmlEngine engine_;
    std::vector<std::unique_ptr<QQuickWindow>> windows_;
    QString problem_;
};

} // namespace panel
