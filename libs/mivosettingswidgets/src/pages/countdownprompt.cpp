#include "pages/countdownprompt.h"

#include "mivosettingswidgets/texts.h"

#include <mivowidgets/tipdialog.h>

#include <utility>

namespace mivo::settings {

using mivo::widgets::TipDialog;

CountdownPrompt::CountdownPrompt(const CountdownKeys& keys, std::function<void()> onTick,
                                 Clock clock)
    : m_keys(keys), m_onTick(std::move(onTick)), m_clock(std::move(clock))
{
    m_timer.setInterval(1000);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { m_onTick(); });
}

std::optional<int> CountdownPrompt::count(QWidget* parent, int seconds)
{
    const bool wasOpen = m_dialog;
    if (!wasOpen) {
        m_dialog = new TipDialog(parent);
        m_dialog->setTipKind(TipDialog::warning);
        m_dialog->setButtonTexts(settings::text(QString::fromLatin1(m_keys.cancel)),
                                 settings::text(QString::fromLatin1(m_keys.accept)));
        m_dialog->setAssistText(settings::text(QString::fromLatin1(m_keys.assist)));
        m_dialog->setCancelButtonVisible(true);
    }
    const QPointer<TipDialog> dialog = m_dialog;
    m_secondsLeft = seconds;
    m_lastTick = m_clock();
    m_isMissed = false;
    m_timer.start();
    m_onTick();
    if (wasOpen) {
        return std::nullopt;
    }
    // A count-down from zero ran out in m_onTick(): no prompt is shown.
    const int result = m_timer.isActive() ? dialog->run() : TipDialog::dismissed;
    if (!dialog) {
        return std::nullopt;
    }
    m_timer.stop();
    delete dialog;
    return result;
}

bool CountdownPrompt::tick()
{
    if (!m_dialog) {
        return false;
    }
    constexpr std::chrono::seconds slack(10); // by which a tick may be late without a sleep
    const auto now = m_clock();
    m_isMissed = now - std::exchange(m_lastTick, now) > std::chrono::seconds(m_secondsLeft) + slack;
    if (m_isMissed) {
        dismiss();
        return false;
    }
    m_dialog->setTipText(text());
    constexpr int calm = 10; // seconds: nobody can listen to each of them
    constexpr int last = 5;
    if (m_secondsLeft % calm == 0 || m_secondsLeft <= last) {
        m_dialog->announceTip();
    }
    if (--m_secondsLeft >= 0) {
        return false;
    }
    dismiss();
    return true;
}

void CountdownPrompt::dismiss()
{
    m_timer.stop();
    if (m_dialog) {
        m_dialog->done(TipDialog::dismissed);
        m_dialog = nullptr; // it may have to wait for a prompt above it, and is deleted after that
    }
}

QString CountdownPrompt::text() const
{
    const QString key = QString::fromLatin1(m_keys.text);
    QStringList words{settings::text(key + QStringLiteral("Prefix")),
                      QString::number(m_secondsLeft)};
    if (isEnglish()) {
        // "Second" begins with a blank in English: it is also the suffix of number fields.
        words.append(
            settings::text(m_secondsLeft < 2 ? QStringLiteral("Second") : QStringLiteral("Seconds"))
                .trimmed());
    }
    words.append(settings::text(key + QStringLiteral("Suffix")));
    return joined(words);
}

} // namespace mivo::settings
