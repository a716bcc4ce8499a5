#pragma once

#include "cluster/sharedsettings.h"

#include <QtWidgets/QWidget>

#include <deque>

class QLabel;
class QPushButton;

namespace mivo::widgets {
class AlertLabel;
}

namespace mivohost {

class MachineList;
class MainWindow;
class Synchroniser;

/// How it stands with the show that this machine shares: one line, and above it the changes that
/// were lost to a faster machine, one at a time, each to be set again with one click. It puts
/// itself at the bottom of the window. GUI thread; what it is given must outlive it.
class ShowBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr std::size_t mostLost = 100; ///< of which the oldest is dropped

    ShowBar(Synchroniser& synchroniser, MainWindow& window);

private:
    void setTexts();
    void add(const LostChange& change);
    void takeLost();
    static QString lostText(const LostChange& change);
    QString stateText() const;

    Synchroniser& m_synchroniser;
    MainWindow& m_window;
    std::deque<LostChange> m_lost;
    mivo::widgets::AlertLabel* m_lostText;
    QPushButton* m_setAgain;
    QPushButton* m_leave;
    QLabel* m_state;
    QPushButton* m_machines;
    MachineList* m_list;
};

} // namespace mivohost
