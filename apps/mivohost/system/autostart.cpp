#include "system/autostart.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"
#include "mivohostkit/settingsstore.h"

#include <utility>

namespace mivohost {

Autostart::Autostart(RuntimeThread& runtime, SettingsStore& store, const QString& program,
                     bool powerActionsAllowed, Settings settings, FailureHandler failed)
    : m_runtime(runtime), m_store(store), m_program(program),
      m_powerActionsAllowed(powerActionsAllowed), m_settings(settings), m_failed(std::move(failed))
{
    m_runtime.call([this] {
        m_connections = {
            m_store.autoStartChanged.connect([this](bool) { apply(); }),
            m_store.autoStartDelayTimeChanged.connect([this](int) { apply(); }),
        };
        if (m_settings == Settings::own) {
            apply();
        }
    });
}

Autostart::~Autostart()
{
    m_runtime.call([this] {
        for (auto& connection : m_connections) {
            connection.disconnect();
        }
    });
}

void Autostart::apply()
{
    if (!m_store.isKept(SettingsStore::Key::autoStart)) {
        return; // nobody has set it, or the store was lost: what is there may be wanted
    }
    const STMivoAutoStartSettings settings = m_store.getAutoStartSettings();
    QString reason;
    if (m_settings == Settings::others) {
        reason = QStringLiteral("it goes by the settings without --store");
    } else if (settings.autoStart) {
        const QString allow = QStringLiteral("--allow-power-actions");
        QStringList arguments{QStringLiteral("--start-delay"),
                              QString::number(settings.autoStartDelayTime)};
        if (m_powerActionsAllowed || entry().contains(allow)) {
            arguments.prepend(allow);
        }
        reason = setEntry(m_program, arguments);
    } else {
        reason = removeEntry();
    }
    if (!reason.isEmpty()) {
        hostLog()->error("start at log-on could not be set: {}", reason.toStdString());
        m_failed(reason);
    }
}

} // namespace mivohost
