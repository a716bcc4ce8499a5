#include "pages/timedrows.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/alertlabel.h>
#include <mivowidgets/checkbox.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/timeeditbox.h>

#include <QtCore/QDate>
#include <QtCore/QTimer>
#include <QtWidgets/QLabel>

#include <algorithm>
#include <chrono>
#include <future>
#include <utility>

namespace mivo::settings {

using mivo::widgets::AlertLabel;
using mivo::widgets::CheckBox;
using mivo::widgets::ComboBox;
using mivo::widgets::TimeEditBox;

namespace {

constexpr std::chrono::milliseconds writeDelay{100};
constexpr int longestMonth = 31;

/// The numbers of days from the first to the last, as they are said.
QStringList dayTexts(int first, int last)
{
    const QString word = text(QStringLiteral("Day"));
    const bool isWordFirst = isEnglish();
    QStringList texts;
    for (int day = first; day <= last; ++day) {
        const QString number = QString::number(day);
        texts.append(isWordFirst ? joined({word, number}) : joined({number, word}));
    }
    return texts;
}

} // namespace

TimedRow::TimedRow(QWidget* page, const std::vector<int>& widths)
    : layout(new QHBoxLayout), m_enabled(new CheckBox(page))
{
    connect(m_enabled, &CheckBox::stateChanged, this, &TimedRow::edited);
    layout->addWidget(m_enabled);
    for (const int width : widths) {
        m_days.push_back(new ComboBox(page));
        setUsualWidth(m_days.back(), width);
        connect(m_days.back(), qOverload<int>(&ComboBox::currentIndexChanged), this,
                &TimedRow::edited);
        layout->addWidget(m_days.back());
    }
    m_time = new TimeEditBox(page);
    m_time->setDisplayFormat(QStringLiteral("hh:mm:ss"));
    setUsualWidth(m_time, 100);
    m_time->setContextMenuPolicy(Qt::NoContextMenu);
    m_time->setFocusPolicy(Qt::WheelFocus); // kept on purpose, though other boxes wait for a click
    m_time->setTime(QTime(0, 0));
    connect(m_time, &TimeEditBox::timeChanged, this, &TimedRow::edited);
    layout->addWidget(m_time);
    layout->addStretch();
}

void TimedRow::addText(SettingPageImpl& page, const char* key)
{
    page.addText(key, [this](const QString& label) {
        m_enabled->setText(label);
        m_time->setAccessibleName(label);
        for (ComboBox* days : m_days) {
            days->setAccessibleName(label);
        }
    });
}

ShutdownRow::ShutdownRow(QWidget* page) : TimedRow(page, {72}) {}

void ShutdownRow::addTexts(SettingPageImpl& page)
{
    addText(page, "TimedShutdown");
    page.addItemTexts(m_days[0], {"EveryDay", "Monday", "Tuesday", "Wednesday", "Thursday",
                                  "Friday", "Saturday", "Sunday"});
}

STMivoTimedShutdownSettings ShutdownRow::shown() const
{
    return {m_enabled->isChecked(), m_days[0]->currentIndex(), shownTime(m_time)};
}

void ShutdownRow::show(const STMivoTimedShutdownSettings& info)
{
    if (info == shown()) {
        return;
    }
    showValue(m_enabled, info.enabled);
    showIndex(m_days[0], info.weekDayIndex);
    showTime(m_time, info.time);
}

RestartRow::RestartRow(QWidget* page)
    : TimedRow(page, {90, 80}), m_month(m_days[0]), m_day(m_days[1]),
      m_neverComes(new AlertLabel(page))
{
    m_neverComes->setObjectName(QStringLiteral("scheduleTip"));
    m_neverComes->hide();
    layout->insertWidget(layout->count() - 1, m_neverComes);
    connect(this, &TimedRow::edited, this, &RestartRow::showWhetherItComes);
    connect(m_month, qOverload<int>(&ComboBox::currentIndexChanged), this,
            &RestartRow::monthChosen);
}

void RestartRow::addTexts(SettingPageImpl& page)
{
    addText(page, "TimedAutomaticRestart");
    page.addItemTexts(m_month,
                      {"EveryMonth", "January", "February", "March", "April", "May", "June", "July",
                       "August", "September", "October", "November", "December"});
    page.addText("EveryDay", [this](const QString& every) { m_day->setItemText(0, every); });
    page.addText("NoSuchDay", m_neverComes);
    // fillDays() makes the items; here they are set anew, as number and word may change places.
    page.addText(
        "Day",
        [this](const QString& /*word*/) {
            int day = 0;
            const QStringList days = dayTexts(1, m_day->count() - 1);
            for (const QString& text : days) {
                m_day->setItemText(++day, text);
            }
        },
        "-");
}

STMivoTimedAutomaticRestartSettings RestartRow::shown() const
{
    return {m_enabled->isChecked(), m_month->currentIndex(), m_day->currentIndex(),
            shownTime(m_time)};
}

void RestartRow::show(const STMivoTimedAutomaticRestartSettings& info)
{
    if (info == shown()) {
        return;
    }
    showValue(m_enabled, info.enabled);
    // The list of days stays that of the month before; kept on purpose. A day that it lacks is
    // added, so that it is shown and not lost with the next edit.
    showIndex(m_month, info.monthIndex);
    m_day->addItems(dayTexts(m_day->count(), std::min(info.dayIndex, longestMonth)));
    showIndex(m_day, info.dayIndex);
    showTime(m_time, info.time);
    showWhetherItComes();
}

void RestartRow::showWhetherItComes()
{
    constexpr int leapYear = 2000;
    const int month = m_month->currentIndex();
    m_neverComes->setVisible(month > 0
                             && m_day->currentIndex() > QDate(leapYear, month, 1).daysInMonth());
}

void RestartRow::fillDays(int month)
{
    const QDate today = QDate::currentDate();
    const int days = QDate(today.year(), month == 0 ? today.month() : month, 1).daysInMonth();
    const QSignalBlocker blocker(m_day);
    const int chosen = m_day->currentIndex();
    m_day->clear();
    m_day->addItems(QStringList(text(QStringLiteral("EveryDay"))) + dayTexts(1, days));
    m_day->setCurrentIndex(qBound(0, chosen, days));
    showWhetherItComes();
}

void DelayedWrite::start()
{
    ++m_waiting;
    QTimer::singleShot(writeDelay, this, [this] {
        --m_waiting;
        m_write();
    });
}

void DelayedWrite::flush()
{
    if (std::exchange(m_waiting, 0) > 0) {
        try {
            m_write();
        } catch (const std::future_error&) { // the runtime has stopped; the edit is lost, as the
                                             // header says
        }
    }
}

} // namespace mivo::settings
