#include "surface/actionpanel.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/actionbutton.h"
#include "surface/actiongrid.h"
#include "surface/actiontext.h"
#include "surface/actiontools.h"
#include "surface/askforfile.h"
#include "surface/buttontext.h"
#include "surface/hintrow.h"

#include <mivoqutils/post.h>
#include <mivosettingswidgets/shortcutfile.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/shortcutcover.h>
#include <mivowidgets/tipdialog.h>

#include <fmt/format.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace mivohost {

using mivo::widgets::ShortCutCover;
using mivo::widgets::TipDialog;

namespace {

constexpr int lockScreen = 208; // its type

} // namespace

ActionPanel::ActionPanel(Peripherals& peripherals)
    : m_peripherals(peripherals), m_heading(new QLabel), m_edit(new QPushButton),
      m_kind(new mivo::widgets::ComboBox), m_clear(new QPushButton), m_export(new QPushButton),
      m_import(new QPushButton), m_lock(new QPushButton), m_hint(new HintRow(peripherals)),
      m_grid(new ActionGrid), m_transfer(m_manager, peripherals), m_fileRetry(m_manager),
      m_tools(new ActionTools(m_manager, peripherals))
{
    m_heading->setObjectName(QStringLiteral("sectionHeading"));
    m_edit->setObjectName(QStringLiteral("editShortcuts"));
    m_edit->setCheckable(true);
    m_edit->setShortcut(QStringLiteral("Ctrl+E"));
    m_kind->setObjectName(QStringLiteral("shortcutKind"));
    m_kind->addItems(kindNames());
    m_clear->setObjectName(QStringLiteral("clearShortcuts"));
    m_export->setObjectName(QStringLiteral("exportShortcuts"));
    m_import->setObjectName(QStringLiteral("importShortcuts"));
    m_lock->setObjectName(QStringLiteral("lockScreen"));
    m_lock->setCheckable(true);

    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_heading);
    row->addStretch();
    for (QWidget* control :
         std::initializer_list<QWidget*>{m_edit, m_kind, m_clear, m_export, m_import, m_lock}) {
        row->addWidget(control);
    }
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addLayout(row);
    column->addWidget(m_tools);
    column->addWidget(m_hint);
    column->addWidget(m_grid);

    addConnections();

    // The manager writes into this folder, and does not make it.
    if (!QDir().mkpath(QFileInfo(mivo::settings::shortCutFilePath()).path())) {
        hostLog()->error("no folder for the shortcuts");
    }
    m_manager.loadShortCutInfoList();
    QList<ShortCutCover*> covers;
    for (const ActionButton* action : m_grid->actions()) {
        covers.append(action->cover());
    }
    m_manager.setBindShortCutAndCover(covers);
    m_peripherals.giveTo(m_manager);
    m_manager.setAllShortCutStr();
    m_keys.setEnabled(true);
    showState();
}

ActionPanel::~ActionPanel() = default;

void ActionPanel::addConnections()
{
    using mivo::settings::ShortCutMgr;
    connect(m_grid, &ActionGrid::clicked, this,
            [this](int type, const std::string& path) { trigger(type, path, {}); });
    connect(m_edit, &QPushButton::toggled, this, &ActionPanel::setEditing);
    connect(m_kind, qOverload<int>(&QComboBox::activated), this, &ActionPanel::setKind);
    connect(m_clear, &QPushButton::clicked, this, &ActionPanel::clearAll);
    connect(m_export, &QPushButton::clicked, this, &ActionPanel::exportAll);
    connect(m_import, &QPushButton::clicked, this, &ActionPanel::importAll);
    connect(m_lock, &QPushButton::toggled, this, &ActionPanel::setLocked);
    connect(&m_keys, &KeyTriggers::triggered, this, &ActionPanel::trigger);
    connect(&m_manager, &ShortCutMgr::signalPeripheralsControl, this, &ActionPanel::trigger);
    connect(&m_manager, &ShortCutMgr::signalCloseShortByEsc, this, &ActionPanel::endEditing);
    connect(&m_manager, &ShortCutMgr::signalShortCutSave, this, &ActionPanel::setBindings);
    // Queued: in the constructor nobody is connected yet.
    connect(
        &m_manager, &ShortCutMgr::signalShortCutFilePutAside, this,
        [this](const std::string& aside) {
            emit failed(QStringLiteral("KeysPutAside"),
                        QDir::toNativeSeparators(QString::fromStdString(aside)));
        },
        Qt::QueuedConnection);
    connect(
        &m_fileRetry, &ShortcutFileRetry::failed, this,
        [this](const QString& reason) {
            emit failed(QStringLiteral("KeysNotWritten"),
                        fileProblem(mivo::settings::shortCutFilePath(), reason));
        },
        Qt::QueuedConnection);
    connect(
        &m_fileRetry, &ShortcutFileRetry::succeeded, this,
        [this] { emit told(QStringLiteral("KeysWritten")); }, Qt::QueuedConnection);
    connect(&m_transfer, &BindingsTransfer::failed, this, &ActionPanel::failed);
    connect(&m_transfer, &BindingsTransfer::told, this, &ActionPanel::told);
    connect(&m_transfer.requests(), &FileRequests::waitingChanged, this, &ActionPanel::showState);
    connect(&m_manager, &ShortCutMgr::signalClearShortCutState, this, &ActionPanel::showState);
    connect(&m_manager, &ShortCutMgr::signalUpdateClearPeripheralsState, this,
            &ActionPanel::showState);
    connect(&m_manager, &ShortCutMgr::signalShortCutStrChanged, this,
            [this](EnumShortCutType /*type*/, const std::string& path, const std::string& keys) {
                showState();
                hostLog()->info("keys of {}: {}", shortened(path), keys.empty() ? "none" : keys);
            });
    connect(&m_tools->search(), &ActionSearch::changed, this, &ActionPanel::showMatches);
    connect(&m_tools->search(), &ActionSearch::found, this, &ActionPanel::showFound);
    connect(m_tools, &ActionTools::failed, this, &ActionPanel::failed);
    // Queued, so that failures at the start are told as well: nobody is connected yet.
    mivo::qutils::post(this, [this] {
        const auto follow = [this](auto& service, const char* name) {
            auto tell = [this, &service, name = QString::fromLatin1(name),
                         before = QString()](const std::string& /*failure*/) mutable {
                if (std::exchange(before, service.problem()) == service.problem()) {
                    return; // only its language is another one
                }
                if (!service.problem().isEmpty()) {
                    emit failed(name + QStringLiteral("Failed"), service.problem());
                } else if (service.info().enabled) {
                    emit told(name + QStringLiteral("Receives"));
                }
            };
            if (!service.problem().isEmpty()) {
                tell(service.failure());
            }
            m_connections.emplace_back(service.failed.connect(tell));
        };
        follow(m_peripherals.osc(), "Osc");
        follow(m_peripherals.dmx(), "Dmx");
    });
    m_connections.emplace_back(
        m_peripherals.bindingsNotWritten.connect([this](const QString& reason) {
            emit failed(QStringLiteral("BindingsNotWritten"), reason);
        }));
    m_connections.emplace_back(m_peripherals.bindingsWritten.connect(
        [this] { emit told(QStringLiteral("BindingsWritten")); }));
    m_connections.emplace_back(m_peripherals.bindingsReplaced.connect([this] {
        m_peripherals.giveTo(m_manager);
        showState();
    }));
    connect(&m_manager, &ShortCutMgr::signalUpdateOscUrl, this,
            [this](const std::string& url) { m_hint->setOscUrl(url); });
}

EnumPeripheralShortCutType ActionPanel::kind() const
{
    return static_cast<EnumPeripheralShortCutType>(m_kind->currentIndex());
}

bool ActionPanel::hasBindings() const
{
    switch (kind()) {
    case PeripheralMidi:
        return !m_peripherals.midi().table().isEmpty();
    case PeripheralDmx:
        return !m_peripherals.dmx().table().isEmpty();
    case PeripheralOsc:
        return false; // addresses are bound for good
    default:
        return m_hasKeys;
    }
}

void ActionPanel::setTexts()
{
    m_heading->setText(hostText("Actions"));
    setAccessibleName(m_heading->text()); // it may have the focus
    m_kind->setItemText(PeripheralKeyboard, hostText("Keys"));
    m_kind->setAccessibleName(hostText("ShortcutKind"));
    setButtonText(*m_edit, hostText("EditShortcuts"));
    m_clear->setText(hostText("ClearShortcuts"));
    m_export->setText(hostText("ExportShortcuts"));
    m_import->setText(hostText("ImportShortcuts"));
    m_lock->setText(hostText("LockScreen"));
    m_tools->setTexts();
    m_hint->setTexts();
    m_grid->setTexts();
}

void ActionPanel::showMatches()
{
    for (ActionButton* action : m_grid->actions()) {
        action->setVisible(m_tools->search().matches(action->textKey()));
    }
}

void ActionPanel::showFound(int type)
{
    for (ActionButton* action : m_grid->actions()) {
        action->setFound(action->type() == type);
    }
}

void ActionPanel::showState()
{
    m_focus.setEnabled(m_tools->search(), !m_locked);
    m_focus.setEnabled(*m_edit, !m_locked);
    m_focus.setEnabled(*m_kind, !m_locked);
    m_focus.setEnabled(*m_clear, !m_locked && hasBindings());
    for (QPushButton* transfer : {m_export, m_import}) {
        m_focus.setEnabled(*transfer,
                           !m_locked && !m_editing && !m_transfer.requests().isWaiting());
    }
    for (ActionButton* action : m_grid->actions()) {
        m_focus.setEnabled(*action, !m_locked);
    }
}

void ActionPanel::keyPressEvent(QKeyEvent* event)
{
    if (m_editing && event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        endEditing(); // also beside the covers
    } else {
        QWidget::keyPressEvent(event);
    }
}

void ActionPanel::endEditing()
{
    setEditing(false);
    m_edit->setFocus();
}

void ActionPanel::setEditing(bool on)
{
    if (m_editing == on || (on && m_locked)) {
        return;
    }
    m_transfer.requests().cancel();
    m_tools->search().setFinding(false);
    m_editing = on;
    m_keys.setEnabled(!on && !m_locked);
    m_edit->setChecked(on);
    m_hint->setState(kind(), m_editing, m_locked);
    for (ActionButton* action : m_grid->actions()) {
        action->setEditing(on);
    }
    m_manager.slotShowAllShortCutCover(on, kind());
    showState();
    if (on) {
        const auto& actions = m_grid->actions();
        const auto shown = std::find_if(actions.begin(), actions.end(), [this](auto* action) {
            return m_tools->search().matches(action->textKey());
        });
        if (shown != actions.end()) {
            (*shown)->cover()->setFocus(); // Qt would give it to one that nobody sees as well
        }
        hostLog()->info("editing shortcuts: {}", m_kind->currentText().toStdString());
    } else {
        hostLog()->info("end of editing shortcuts");
    }
}

void ActionPanel::setKind()
{
    if (m_editing) {
        m_manager.slotShowAllShortCutCover(true, kind());
    }
    showState();
    m_hint->setState(kind(), m_editing, m_locked);
}

void ActionPanel::setLocked(bool locked)
{
    if (m_locked == locked) {
        return;
    }
    setEditing(false);
    m_transfer.requests().cancel();
    m_locked = locked;
    m_lock->setChecked(locked);
    m_keys.setEnabled(!locked);
    m_manager.slotLockScreenChanged(locked);
    showState();
    m_hint->setState(kind(), m_editing, m_locked);
    hostLog()->info(locked ? "screen locked" : "screen unlocked");
}

void ActionPanel::setBindings(const STLinkShortCutInfo& info)
{
    m_hasKeys = !info.shortCutInfoList.empty();
    m_keys.setBindings(info.shortCutInfoList);
    showState();
}

void ActionPanel::trigger(int type, const std::string& path, const std::string& control)
{
    if (m_locked || m_editing) {
        return; // also for what was on its way before
    }
    ActionButton* action = m_grid->actionOf(type);
    if (action == nullptr) {
        m_log.add("no action", path);
        return;
    }
    m_log.add("action " + action->textKey(), control);
    action->flash();
    if (type == lockScreen) {
        setLocked(true);
        emit told(QStringLiteral("LockedByControl"));
    }
}

bool ActionPanel::confirm(const char* question, const char* button)
{
    return TipDialog::ask(this, TipDialog::question, hostText(question), hostText("Cancel"),
                          hostText(button))
           == TipDialog::accepted;
}

void ActionPanel::clearAll()
{
    if (confirm("ClearShortcutsQuestion", "ClearShortcuts") && !m_locked) {
        m_manager.slotClearShortCut(true, kind());
        showState();
    }
}

QString ActionPanel::askForBindings(bool saving)
{
    return askForFile(this, saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen,
                      hostText(saving ? "ExportShortcuts" : "ImportShortcuts"),
                      hostText("ShortcutFiles"), {QStringLiteral("json")});
}

void ActionPanel::exportAll()
{
    const QString path = askForBindings(true);
    if (!path.isEmpty()) {
        m_transfer.exportTo(path);
    }
}

void ActionPanel::importAll()
{
    const QString path = askForBindings(false);
    if (!path.isEmpty() && confirm("ImportShortcutsQuestion", "ImportShortcuts") && !m_locked) {
        m_transfer.importFrom(path);
    }
}

} // namespace mivohost
