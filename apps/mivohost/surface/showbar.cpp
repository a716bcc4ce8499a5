#include "surface/showbar.h"

#include "base/hosttext.h"
#include "cluster/sharedshortcuts.h"
#include "cluster/synchroniser.h"
#include "surface/actiontext.h"
#include "surface/machinelist.h"
#include "surface/mainwindow.h"
#include "surface/settingstexts.h"

#include <mivowidgets/alertlabel.h>

#include <QtCore/QCoreApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace mivohost {

namespace {

constexpr int mostNames = 20;  // in one notice
constexpr int mostHolders = 4; // of each key in one notice

QString shortened(const QString& text)
{
    constexpr int longest = 60;
    const QString line = text.simplified();
    return line.size() <= longest ? line : line.left(longest) + QStringLiteral("…");
}

/// What a person calls the setting, or the action whose key it is.
QString nameText(const QString& name)
{
    const STShortCutItem action = SharedShortcuts::itemOf(name);
    return shortened(SharedShortcuts::isName(name)
                         ? actionText(actionPath(action.type, action.path))
                         : settingText(name));
}

/// At most some of the names, as a person reads them.
template <typename ToText>
QString listText(const QStringList& names, ToText toText, int most = mostNames)
{
    QStringList texts;
    const QStringList first = names.mid(0, most);
    std::transform(first.begin(), first.end(), std::back_inserter(texts), toText);
    if (first.size() < names.size()) {
        texts.append(QStringLiteral("…"));
    }
    return mivohost::listText(texts);
}

} // namespace

ShowBar::ShowBar(Synchroniser& synchroniser, MainWindow& window)
    : m_synchroniser(synchroniser), m_window(window), m_lostText(new mivo::widgets::AlertLabel),
      m_setAgain(new QPushButton), m_leave(new QPushButton), m_state(new QLabel),
      m_machines(new QPushButton), m_list(new MachineList(synchroniser, this))
{
    m_lostText->setObjectName(QStringLiteral("lostChange"));
    m_lostText->setProperty("style", QStringLiteral("notice"));
    m_setAgain->setObjectName(QStringLiteral("setAgain"));
    m_leave->setObjectName(QStringLiteral("leaveLost"));
    m_state->setObjectName(QStringLiteral("showState"));
    m_machines->setObjectName(QStringLiteral("showMachines"));
    for (QLabel* label : {static_cast<QLabel*>(m_lostText), m_state}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);
    }
    auto* row = new QHBoxLayout;
    row->addWidget(m_lostText, 1);
    row->addWidget(m_setAgain);
    row->addWidget(m_leave);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    auto* stateRow = new QHBoxLayout;
    stateRow->addWidget(m_state, 1);
    stateRow->addWidget(m_machines);
    column->addLayout(stateRow);
    connect(m_machines, &QPushButton::clicked, m_list, &QWidget::show);
    connect(m_machines, &QPushButton::clicked, m_list, &QWidget::raise);
    connect(&synchroniser, &Synchroniser::otherVersion, this, [this](const Machine& machine) {
        const QString text =
            hostText("OtherVersion")
                .arg(machine.name, machine.version, QCoreApplication::applicationVersion());
        m_window.messages().postMessage({velorn::msgcenter::MsgWarning, text.toStdString(), -1});
    });
    connect(m_setAgain, &QPushButton::clicked, this, [this] {
        m_synchroniser.setAgain(m_lost.front());
        takeLost();
    });
    connect(m_leave, &QPushButton::clicked, this, &ShowBar::takeLost);
    connect(&synchroniser, &Synchroniser::stateChanged, this,
            [this] { m_state->setText(stateText()); });
    connect(&synchroniser, &Synchroniser::lost, this, &ShowBar::add);
    connect(&synchroniser, &Synchroniser::replaced, this, [this](const QStringList& names) {
        m_window.showNotice(QStringLiteral("ShowReplaced"), listText(names, nameText));
    });
    connect(&synchroniser, &Synchroniser::keysClash, this, [this](const auto& actions) {
        m_window.showNotice(
            QStringLiteral("KeysClash"), listText(actions.keys(), [&actions](const QString& keys) {
                return QStringLiteral("%1 (%2)").arg(
                    shortened(keys), listText(actions.value(keys), nameText, mostHolders));
            }));
    });
    connect(&synchroniser, &Synchroniser::tooLong, this, [this](const QString& name) {
        m_window.showNotice(QStringLiteral("SettingTooLong"), nameText(name));
    });
    connect(&synchroniser, &Synchroniser::otherKeys, this,
            [this](const QMap<QString, QString>& keys) {
                m_window.showNotice(
                    QStringLiteral("KeysReplaced"), listText(keys.keys(), [&](const QString& name) {
                        return QStringLiteral("%1 (%2)").arg(
                            nameText(name), shortened(valueText(name, keys.value(name))));
                    }));
            });
    connect(&synchroniser, &Synchroniser::notKept, this,
            [this](const QStringList& names, const QString& reason) {
                if (names.isEmpty()) {
                    m_window.showNotice(QStringLiteral("ShowNotSaved"), reason);
                } else {
                    m_window.showNotice(QStringLiteral("SharedNotSaved"),
                                        listText(names, nameText) + QStringLiteral(": ") + reason);
                }
            });
    connect(&synchroniser, &Synchroniser::notSet, this,
            [this](const QString& name, const QString& reason) {
                m_window.showNotice(QStringLiteral("SettingNotSaved"),
                                    nameText(name) + QStringLiteral(": ") + reason);
            });
    connect(&window, &MainWindow::languageSwitched, this, &ShowBar::setTexts);
    window.centralWidget()->layout()->addWidget(this);
    setTexts();
}

void ShowBar::setTexts()
{
    m_state->setText(stateText());
    m_setAgain->setVisible(!m_lost.empty());
    m_leave->setVisible(!m_lost.empty());
    m_setAgain->setText(hostText("SetAgain"));
    m_leave->setText(hostText("Dismiss"));
    m_machines->setText(hostText("Machines"));
    m_list->setTexts();
    if (!m_lost.empty()) {
        const QString further =
            m_lost.size() == 1 ? QString() : QStringLiteral(" (%1)").arg(m_lost.size());
        m_lostText->setText(lostText(m_lost.front()) + further);
    }
    m_lostText->setVisible(!m_lost.empty());
}

void ShowBar::add(const LostChange& change)
{
    m_window.messages().postMessage(
        {velorn::msgcenter::MsgWarning, lostText(change).toStdString(), -1});
    m_lost.push_back(change);
    if (m_lost.size() > mostLost) {
        m_lost.pop_front();
    }
    setTexts();
}

void ShowBar::takeLost()
{
    m_lost.pop_front();
    setTexts();
}

QString ShowBar::lostText(const LostChange& change)
{
    const auto value = [&change](const QVariant& kept) {
        return shortened(valueText(change.name, kept));
    };
    return hostText("ChangeLost")
        .arg(nameText(change.name), value(change.mine), value(change.theirs),
             shortened(change.machine));
}

QString ShowBar::stateText() const
{
    const auto& state = m_synchroniser.state();
    QString text = state.isConnected
                       ? hostText("ShowConnected").arg(m_synchroniser.show(), state.server)
                       : hostText("ShowAlone").arg(m_synchroniser.show(), timeText(state.since));
    if (state.waiting > 0) {
        text += hostText("ShowWaiting").arg(state.waiting);
    }
    if (!state.reason.isEmpty()) {
        text += hostText("ShowReason").arg(state.server, reasonText(state.reason));
    }
    return text;
}

} // namespace mivohost
