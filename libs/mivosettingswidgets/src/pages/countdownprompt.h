#pragma once

#include "mivosettingswidgets/export.h"
#include "zrcutils/uptime.h"

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <optional>

class QWidget;

namespace mivo::widgets {
class TipDialog;
}

namespace mivo::settings {

/// The translation keys of a count-down prompt.
struct CountdownKeys
{
    const char* text; // with "Prefix" and "Suffix" appended: what stands around the number
    const char* cancel;
    const char* accept;
    const char* assist;
};

/// A modal prompt that counts seconds down, unless the machine sleeps through its end. GUI thread.
class MIVOSETTINGSWIDGETS_TEST_EXPORT CountdownPrompt
{
public:
    /// Nobody sets it, but it runs while the machine sleeps.
    using Clock = std::function<std::chrono::milliseconds()>;

    /// `onTick` runs at the start and then each second, and is to call tick().
    CountdownPrompt(const CountdownKeys& keys, std::function<void()> onTick,
                    Clock clock = &zrcutils::uptime);

    /// Counts `seconds` down to zero and returns how the prompt ended, a TipDialog::Result; a
    /// count-down that ran out dismisses it, and so does one that was missed. Runs an event loop.
    /// Nothing is returned when the prompt was open already, which then counts anew, or when
    /// `parent` is gone, and this with it.
    std::optional<int> count(QWidget* parent, int seconds);

    /// Shows the next second while the prompt is open; true when the count-down has run out.
    bool tick();

    /// Whether the last count-down had its end while the machine slept, so that nobody could
    /// decide.
    bool isMissed() const { return m_isMissed; }

    void dismiss();

private:
    QString text() const;

    CountdownKeys m_keys;
    std::function<void()> m_onTick;
    Clock m_clock;
    QPointer<mivo::widgets::TipDialog> m_dialog;
    QTimer m_timer;
    int m_secondsLeft = 0;
    std::chrono::milliseconds m_lastTick{0}; // by m_clock
    bool m_isMissed = false;
};

} // namespace mivo::settings
