#include "app/quitsignals.h"

#include "base/src/util/stop_signals.h"

#include <QCoreApplication>

#include <array>
#include <csignal>

namespace {

constexpr std::array kSignals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};

} // namespace

QuitSignals::QuitSignals()
{
    const int readable = rkb::catch_stop_signals(kSignals);
    if (readable < 0)
        return;
    // It stays readable, so the notifier also fires in an event loop that starts later.
    m_notifier = std::make_unique<QSocketNotifier>(readable, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, &QCoreApplication::quit);
}
