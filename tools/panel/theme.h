// Colours, fonts and distances of the windows.
#pragma once

#include "tools/panel/command_line.h"

#include <QFont>
#include <QObject>
#include <QPalette>

namespace panel {

// Text has a contrast of at least 4.5 to what is below it, the edge of a control 3.
class Theme : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool dark READ isDark NOTIFY changed)
    Q_PROPERTY(QPalette palette READ palette NOTIFY changed) // for controls of Qt's own style
    Q_PROPERTY(QColor window READ window NOTIFY changed)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed) // of lists and fields
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor muted READ muted NOTIFY changed)           // less important text
    Q_PROPERTY(QColor line READ line NOTIFY changed)             // separators
    Q_PROPERTY(QColor edge READ edge NOTIFY changed)             // of controls
    Q_PROPERTY(QColor accent READ accent NOTIFY changed)         // what is on, or has the focus
    Q_PROPERTY(QColor accentText READ accentText NOTIFY changed) // on the accent colour
    Q_PROPERTY(QColor lamp READ lamp NOTIFY changed)             // of a lamp that is on
    Q_PROPERTY(QColor lampGlow READ lampGlow NOTIFY changed)     // below its row
    Q_PROPERTY(QColor selection READ selection NOTIFY changed)   // below selected lines
    Q_PROPERTY(QString mono READ mono CONSTANT)                  // family of bytes and times
    Q_PROPERTY(int fontSize READ fontSize CONSTANT)              // the system's, in pixels
    Q_PROPERTY(int smallSize READ smallSize CONSTANT)
    Q_PROPERTY(int titleSize READ titleSize CONSTANT)
    Q_PROPERTY(int gap READ gap CONSTANT) // the unit of all distances, in pixels
public:
    // Needs the application object.
    explicit Theme(Look look, QObject* parent = nullptr);

    [[nodiscard]] bool isDark() const;
    [[nodiscard]] QPalette palette() const;
    [[nodiscard]] QColor window() const;
    [[nodiscard]] QColor surface() const;
    [[nodiscard]] QColor text() const;
    [[nodiscard]] QColor muted() const;
    [[nodiscard]] QColor line() const;
    [[nodiscard]] QColor edge() const;
    [[nodiscard]] QColor accent() const;
    [[nodiscard]] QColor accentText() const;
    [[nodiscard]] QColor lamp() const;
    [[nodiscard]] QColor lampGlow() const;
    [[nodiscard]] QColor selection() const;
    [[nodiscard]] QString mono() const;
    [[nodiscard]] int fontSize() const;
    [[nodiscard]] int smallSize() const;
    [[nodiscard]] int titleSize() const;
    [[nodiscard]] int gap() const;

Q_SIGNALS:
    void changed();

private:
    const Look look_;
};

} // namespace panel
