#pragma once

#include "mivohostapi/settingsrecords.h"

#include <QtCore/QObject>

#include <functional>
#include <vector>

class QHBoxLayout;
class QLabel;
class QString;
class QWidget;

namespace mivo::widgets {
class CheckBox;
class ComboBox;
class TimeEditBox;
} // namespace mivo::widgets

namespace mivo::settings {

class SettingPageImpl;

/// A row of the general page: whether, on which days, and at what time an action is due. Showing a
/// schedule is no edit. GUI thread.
class TimedRow : public QObject
{
    Q_OBJECT

public:
    QHBoxLayout* const layout; ///< the page's column takes it

signals:
    void edited();

protected:
    /// Makes the check box, a combo box of each width in pixels, and the time, in `page`.
    TimedRow(QWidget* page, const std::vector<int>& widths);

    void addText(SettingPageImpl& page, const char* key);

    mivo::widgets::CheckBox* m_enabled;
    std::vector<mivo::widgets::ComboBox*> m_days;
    mivo::widgets::TimeEditBox* m_time;
};

class ShutdownRow : public TimedRow
{
public:
    explicit ShutdownRow(QWidget* page);

    void addTexts(SettingPageImpl& page);

    STMivoTimedShutdownSettings shown() const;
    void show(const STMivoTimedShutdownSettings& info);
};

class RestartRow : public TimedRow
{
    Q_OBJECT

public:
    explicit RestartRow(QWidget* page);

    void addTexts(SettingPageImpl& page);

    STMivoTimedAutomaticRestartSettings shown() const;
    void show(const STMivoTimedAutomaticRestartSettings& info);

    /// Offers the days that the month, 0 for today's, has this year. The chosen day stays, or the
    /// last one takes its place.
    void fillDays(int month);

signals:
    void monthChosen(int month);

private:
    /// Shows a hint where the chosen month never has the chosen day.
    void showWhetherItComes();

    mivo::widgets::ComboBox* m_month;
    mivo::widgets::ComboBox* m_day;
    QLabel* m_neverComes;
};

/// Writes a tenth of a second after each edit, as often as there were edits. GUI thread.
class DelayedWrite : public QObject
{
public:
    explicit DelayedWrite(std::function<void()> write) : m_write(std::move(write)) {}

    void start();

    /// Writes at once what is waiting, for the end of the page. It is lost if the runtime has
    /// stopped.
    void flush();

private:
    std::function<void()> m_write;
    int m_waiting = 0;
};

} // namespace mivo::settings
