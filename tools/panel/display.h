// The application object, which connects to the display.
#pragma once

#include <QGuiApplication>

#include <memory>

namespace panel {

// If the display cannot be opened, prints one line and ends the process with kNoAccess; Qt itself
// would end it with SIGABRT. Qt's messages are dropped meanwhile. `count` and `words` are those of
// QGuiApplication, and must outlive it.
[[nodiscard]] std::unique_ptr<QGuiApplication> openDisplay(int& count, char** words);

} // namespace panel
