#pragma once

#include <mivowidgets/tipdialog.h>

#include <gtest/gtest.h>

#include <QtTest/QtTest>
#include <QtWidgets/QtWidgets>

#include <algorithm>
#include <functional>
#include <vector>

/// Calls `act` once a modal window of that type is open; a test fails when none opens in 10 s.
template <typename Window>
void whenModal(const std::function<void(Window&)>& act, int left = 1000)
{
    QTimer::singleShot(10, qApp, [act, left] {
        if (auto* window = qobject_cast<Window*>(QApplication::activeModalWidget())) {
            act(*window);
        } else if (left > 0) {
            whenModal(act, left - 1);
        } else {
            ADD_FAILURE() << "no such window opened";
        }
    });
}

/// Types over what a field holds, or deletes it, and leaves the field.
inline void typeInto(QWidget* field, const QString& text)
{
    field->setFocus();
    QTest::keySequence(field, QKeySequence::SelectAll);
    QTest::keyClicks(field, text);
    if (text.isEmpty()) {
        QTest::keyClick(field, Qt::Key_Delete);
    }
    field->clearFocus();
    QApplication::processEvents();
}

inline void activateWindow(QWidget* window)
{
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
}

/// Where the focus is, else in the active window; returns where it is then.
inline QWidget* press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    QWidget* focused = QApplication::focusWidget();
    QTest::keyClick(focused != nullptr ? focused : QApplication::activeWindow(), key, modifiers);
    return QApplication::focusWidget();
}

/// Turns the wheel up by a step over a widget; returns whether that or a parent has used it.
inline bool turnWheel(QWidget* widget)
{
    const QPoint middle = widget->rect().center();
    QWheelEvent wheel(middle, widget->mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel); // else it gives no focus, and parents do not get it
    qApp->notify(widget, &wheel);
    return wheel.isAccepted();
}

/// As a person chooses in the list that opens.
inline void chooseItem(QComboBox* combo, int index)
{
    combo->setCurrentIndex(index);
    emit combo->activated(index);
}

inline QStringList itemsOf(const QComboBox* combo)
{
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i) {
        texts.append(combo->itemText(i));
    }
    return texts;
}

/// Types the folder and presses the accept button, as a person does.
inline void chooseFolder(QFileDialog& dialog, const QString& folder)
{
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(folder);
    const auto buttons = dialog.findChild<QDialogButtonBox*>()->buttons();
    QTest::mouseClick(buttons.first(), Qt::LeftButton);
}

/// Notes every tip that opens, not a question, and closes it with its accept button.
class TipWatch : public QObject
{
public:
    TipWatch() { startTimer(5); }

    QStringList tips;            ///< each as "text|assist text|kind"
    std::function<void()> onTip; ///< in place of the button

protected:
    void timerEvent(QTimerEvent* /*event*/) override
    {
        auto* tip = qobject_cast<mivo::widgets::TipDialog*>(QApplication::activeModalWidget());
        const auto* cancel = tip != nullptr ? tip->findChild<QPushButton*>() : nullptr;
        if (tip == nullptr || tip == m_noted || cancel->isVisible()) {
            return;
        }
        m_noted = tip;
        const auto* assist = tip->findChild<QLabel*>("tipAssistText");
        tips.append(tip->tipText() + '|' + (assist->isVisible() ? assist->text() : "") + '|'
                    + tip->findChild<QLabel*>("tipIcon")->property("kind").toString());
        if (onTip) {
            onTip();
        } else {
            tip->done(mivo::widgets::TipDialog::accepted);
            m_noted = nullptr;
        }
    }

private:
    QPointer<QWidget> m_noted;
};
