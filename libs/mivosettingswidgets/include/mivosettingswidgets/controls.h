#pragma once

#include <QtCore/QLocale>
#include <QtCore/QSignalBlocker>
#include <QtGui/QTextDocument>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateTimeEdit>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace mivo::settings {

// Shows a value in a control without any signal of it, so that it is not written back.

inline void showValue(QAbstractButton* button, bool on)
{
    const QSignalBlocker blocker(button);
    button->setChecked(on);
}

inline void showValue(QTimeEdit* edit, int milliseconds)
{
    const QSignalBlocker blocker(edit);
    edit->setTime(QTime::fromMSecsSinceStartOfDay(milliseconds));
}

/// Chooses the item of that data; without one, the choice stays.
inline void showValue(QComboBox* combo, const QVariant& data)
{
    const QSignalBlocker blocker(combo);
    const int index = combo->findData(data);
    if (index != -1) {
        combo->setCurrentIndex(index);
    }
}

/// Chooses the item of exactly that text. False where there is none; the choice stays then.
inline bool showText(QComboBox* combo, const std::string& text)
{
    const QSignalBlocker blocker(combo);
    const int index = combo->findText(QString::fromStdString(text));
    if (index != -1) {
        combo->setCurrentIndex(index);
    }
    return index != -1;
}

inline void showValue(QDoubleSpinBox* edit, double value)
{
    const QSignalBlocker blocker(edit);
    edit->setValue(value);
}

/// A time of the day as "hh:mm:ss", whatever the digits of the system's locale.
inline void showTime(QTimeEdit* edit, const std::string& time)
{
    const QSignalBlocker blocker(edit);
    edit->setTime(QLocale::c().toTime(QString::fromStdString(time), QStringLiteral("hh:mm:ss")));
}

inline std::string shownTime(const QTimeEdit* edit)
{
    return QLocale::c().toString(edit->time(), QStringLiteral("hh:mm:ss")).toStdString();
}

inline void showIndex(QComboBox* combo, int index)
{
    const QSignalBlocker blocker(combo);
    combo->setCurrentIndex(index);
}

constexpr const char* usualWidth = "usualWidth";
constexpr const char* usualHeight = "usualHeight";

/// Gives a widget of a page that width. Where its texts need more, by a larger font or another
/// style, it has that as long as it is shown: SettingPage sees to it.
inline void setUsualWidth(QWidget* widget, int width)
{
    widget->setFixedWidth(width);
    widget->setProperty(usualWidth, width);
}

/// The same for a height; of the page itself as well.
inline void setUsualHeight(QWidget* widget, int height)
{
    widget->setFixedHeight(height);
    widget->setProperty(usualHeight, height);
}

/// Lays nothing out while it lives, for the time in which many widgets are made or shown: each that
/// is shown would have all layouts above it done anew. Of several for one layout the outermost
/// counts.
class LayoutPause
{
public:
    /// `layout` is that of a widget, and outlives the pause.
    explicit LayoutPause(QLayout* layout) : m_layout(layout->isEnabled() ? layout : nullptr)
    {
        layout->setEnabled(false);
    }
    ~LayoutPause()
    {
        if (m_layout != nullptr) {
            m_layout->setEnabled(true);
            m_layout->parentWidget()->updateGeometry(); // now, else it is painted without room
        }
    }
    Q_DISABLE_COPY_MOVE(LayoutPause)

private:
    QLayout* m_layout; // null when another one ends the pause
};

/// A field for how long something plays: three seconds to one second before a day.
inline void setUpDuration(QTimeEdit* edit, const QTime& initial)
{
    setUsualWidth(edit, 100);
    edit->setDisplayFormat(QStringLiteral("hh:mm:ss"));
    edit->setButtonSymbols(QAbstractSpinBox::UpDownArrows);
    edit->setTime(initial);
    edit->setTimeRange(QTime(0, 0, 3), QTime(23, 59, 59));
}

/// A tip of just that text, which may look like markup where it is a name that somebody chose.
inline QString tipOf(const QString& text)
{
    const QString lines = text.toHtmlEscaped().replace('\n', QLatin1String("<br>"));
    return Qt::mightBeRichText(text) ? QStringLiteral("<p>%1</p>").arg(lines) : text;
}

/// Names controls after a label that they share.
inline void nameAll(const QList<QWidget*>& controls, const QString& name)
{
    for (QWidget* control : controls) {
        control->setAccessibleName(name);
    }
}

/// The controls in a widget that Tab stops at, in their order from `start` on: the widget itself
/// may stand anywhere among them.
inline std::vector<QWidget*> tabStops(const QWidget* widget, const QWidget* start)
{
    std::vector<QWidget*> stops;
    for (QWidget* next = start->nextInFocusChain(); next != start;
         next = next->nextInFocusChain()) {
        if (widget->isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) != 0
            && next->focusProxy() == nullptr) {
            stops.push_back(next);
        }
    }
    return stops;
}

/// The controls side by side from the left, `leftMargin` pixels from the edge.
inline QHBoxLayout* rowOf(const QList<QWidget*>& controls, int leftMargin = 0)
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(leftMargin, 0, 0, 0);
    for (QWidget* control : controls) {
        row->addWidget(control);
    }
    row->addStretch();
    return row;
}

/// The controls side by side from the left, each with a gap of that many pixels behind it.
inline QHBoxLayout* spacedRow(std::initializer_list<std::pair<QWidget*, int>> controls,
                              int leftMargin = 0)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->setContentsMargins(leftMargin, 0, 0, 0);
    for (const auto& [control, gap] : controls) {
        row->addWidget(control);
        row->addSpacing(gap);
    }
    return row;
}

/// The icon and the text of a tip at the end of a row, `gap` pixels apart.
inline void addTip(QHBoxLayout* row, QLabel* icon, QLabel* text, int gap = 0)
{
    icon->setObjectName(QStringLiteral("shareSpaceTips"));
    icon->setFixedSize(13, 13);
    text->setObjectName(QStringLiteral("shareSpaceTipsText"));
    setUsualHeight(text, 18);
    auto* column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(icon);
    column->addStretch();
    column->setContentsMargins(0, 3, 0, 0);
    row->addLayout(column);
    row->addSpacing(gap);
    row->addWidget(text, 0, Qt::AlignVCenter);
}

/// The tip at the end of a row that a change takes effect after a restart.
inline void addRestartTip(QHBoxLayout* row, QLabel* icon, QLabel* text)
{
    icon->setObjectName(QStringLiteral("restartTip"));
    icon->setFixedSize(14, 14);
    icon->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    text->setObjectName(QStringLiteral("RestartTakeEffectLable"));
    text->setWordWrap(true);     // a large font leaves no room for it in one line
    auto* tip = new QHBoxLayout; // whatever the row's own spacing
    tip->setSpacing(4);
    tip->addWidget(icon);
    tip->addWidget(text, 1);
    row->addLayout(tip, 1);
}

} // namespace mivo::settings
