#pragma once

#include <mivowidgets/tipdialog.h>

#include <gtest/gtest.h>

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <functional>
#include <vector>

/// Calls `act` once a modal window of that type is open; a test fails when none opens in 10 s.
template <typename Window>
void whenModal(std::function<void(Window&)> act)
{
    auto* timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer,
                     [timer, act = std::move(act), left = 1000]() mutable {
                         auto* window = qobject_cast<Window*>(QApplication::activeModalWidget());
                         if (window == nullptr && --left > 0) {
                             return;
                         }
                         timer->stop(); // before another event loop runs in the window
                         timer->deleteLater();
                         if (window == nullptr) {
                             ADD_FAILURE() << "no such window opened";
                         } else {
                             act(*window);
                         }
                     });
    timer->start(10);
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
    QTest::keyClick(field, Qt::Key_Return);
    field->clearFocus();
    QApplication::processEvents();
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
    struct Tip
    {
        QString text;
        QString assist;
        int kind;
    };

    TipWatch() { startTimer(5); }

    std::vector<Tip> tips;
    std::function<void()> onTip; ///< in place of the button

protected:
    void timerEvent(QTimerEvent* /*event*/) override
    {
        auto* tip = qobject_cast<mivo::widgets::TipDialog*>(QApplication::activeModalWidget());
        if (tip == nullptr || tip == m_noted || isQuestion(*tip)) {
            return;
        }
        m_noted = tip;
        tips.push_back({tip->tipText(), tip->findChild<QLabel*>("tipAssistText")->text(),
                        tip->findChild<QLabel*>("tipIcon")->property("kind").toInt()});
        if (onTip) {
            onTip();
        } else {
            tip->done(mivo::widgets::TipDialog::accepted);
            m_noted = nullptr;
        }
    }

private:
    static bool isQuestion(const QWidget& tip)
    {
        const auto buttons = tip.findChildren<QPushButton*>();
        return std::all_of(buttons.begin(), buttons.end(), std::mem_fn(&QWidget::isVisible));
    }

    QPointer<QWidget> m_noted;
};
