#pragma once

#include "cluster/sharedsettings.h"

#include <QtWidgets/QWidget>

#include <deque>

class QLabel;
class QPushButton;

namespace mivohost {

class MachineList;
class MessageCentre;
class Synchroniser;

/// How it stands with the show that this machine shares: one line, and above it the changes that
/// were lost to a faster machine, one at a time, each to be set again with one click. GUI thread;
/// what it is given must outlive it.
class ShowBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr std::size_t mostLost = 100; ///< of which the oldest is dropped

    ShowBar(Synchroniser& synchroniser, MessageCentre& messages);

    /// Makes every text again in the language in force.
    void setTexts();

signals:
    /// To be told as a notice: the text's key and its argument.
    void told(const QString& key, const QString& argument);

private:
    void add(const LostChange& change);
    void takeLost();
    static QString lostText(const LostChange& change);
    QString stateText() const;

    Synchroniser& m_synchroniser;
    MessageCentre& m_messages;
    std::deque<LostChange> m_lost;
    QLabel* m_lostText;
    QPushButton* m_setAgain;
    QPushButton* m_leave;
    QLabel* m_state;
    QPushButton* m_machines;
    MachineList* m_list;
};

} // namespace mivohost
