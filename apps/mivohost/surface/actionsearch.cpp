#include "surface/actionsearch.h"

#include "base/hosttext.h"
#include "base/keyholders.h"
#include "peripherals/peripherals.h"
#include "surface/actiontext.h"

#include <mivosettingswidgets/shortcutmgr.h>
#include <mivosettingswidgets/shortcuttable.h>
#include <mivostyle/style.h>
#include <mivowidgets/alertlabel.h>
#include <mivowidgets/shortcutcover.h>

#include <QtCore/QFileInfo>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace mivohost {

namespace {

constexpr int askEvery = 50; // ms

} // namespace

ActionSearch::ActionSearch(const mivo::settings::ShortCutMgr& manager, Peripherals& peripherals)
    : m_manager(manager), m_peripherals(peripherals), m_text(new QLineEdit),
      m_find(new QPushButton), m_result(new mivo::widgets::AlertLabel)
{
    m_text->setObjectName(QStringLiteral("findAction"));
    m_text->setClearButtonEnabled(true);
    m_text->setMaxLength(100);
    m_find->setObjectName(QStringLiteral("findByPressing"));
    m_find->setCheckable(true);
    m_result->setObjectName(QStringLiteral("foundAction"));
    m_result->setTextFormat(Qt::PlainText);
    QSizePolicy policy = m_result->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_result->setSizePolicy(policy);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_text, 1);
    row->addWidget(m_find);
    row->addWidget(m_result, 2);
    m_timer.setInterval(askEvery);
    connect(&m_timer, &QTimer::timeout, this, &ActionSearch::findControls);
    connect(m_text, &QLineEdit::textChanged, this, [this] {
        showIdle();
        emit changed();
    });
    connect(m_find, &QPushButton::toggled, this, &ActionSearch::setFinding);
}

ActionSearch::~ActionSearch()
{
    blockSignals(true); // who would hear them is half gone
    setFinding(false);
}

void ActionSearch::setTexts()
{
    m_text->setPlaceholderText(hostText("FindAction"));
    m_text->setAccessibleName(hostText("FindAction"));
    m_find->setText(hostText("FindByPressing"));
    showIdle();
}

/// Not before somebody searches: the program does not start faster with them.
void ActionSearch::loadLanguages() const
{
    if (!m_languages.empty()) {
        return;
    }
    for (const QString& file : mivo::style::languageFiles()) {
        auto translator = std::make_unique<velorn::trans::Translator>();
        translator->load(file);
        translator->switchLanguage(QFileInfo(file).completeBaseName().section('_', 1));
        m_languages.push_back(std::move(translator));
    }
}

bool ActionSearch::matches(const std::string& textKey) const
{
    const QString wanted = searchText(m_text->text().trimmed());
    if (wanted.isEmpty()) {
        return true;
    }
    loadLanguages();
    return std::any_of(m_languages.begin(), m_languages.end(), [&](const auto& language) {
        return searchText(language->translate(QStringLiteral("MivoHost"),
                                              QStringLiteral("MainWindow"),
                                              QString::fromStdString(textKey)))
            .contains(wanted);
    });
}

void ActionSearch::setFinding(bool on)
{
    if (on == isFinding()) {
        return;
    }
    m_peripherals.midi().table().setFinding(on);
    m_peripherals.dmx().table().setFinding(on);
    m_peripherals.osc().setFinding(on);
    if (on) {
        qApp->installEventFilter(this);
        m_timer.start();
    } else {
        qApp->removeEventFilter(this);
        m_timer.stop();
    }
    m_find->setChecked(on);
    if (on) {
        m_text->clear(); // any action may be what is found
    }
    emit found(0);
    showIdle();
}

void ActionSearch::showIdle()
{
    using mivo::settings::peripheralActions;
    const bool isAny =
        std::any_of(peripheralActions.begin(), peripheralActions.end(), [this](const auto& action) {
            return matches(
                std::string(action.path.substr(mivo::settings::peripheralPrefix.size())));
        });
    showResult(isFinding() ? hostText("FindHint")
               : isAny     ? QString()
                           : hostText("NoActionMatches"));
}

bool ActionSearch::eventFilter(QObject* receiver, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept(); // so that it comes as a key press, whatever has it as a shortcut
        return true;
    case QEvent::KeyPress: {
        const auto* press = static_cast<QKeyEvent*>(event);
        if (!receiver->isWidgetType()) {
            return false;
        }
        if (press->key() == Qt::Key_Escape) {
            setFinding(false);
        } else if (!press->isAutoRepeat()) {
            findKeys(mivo::widgets::keySequenceText(*press));
        }
        return true;
    }
    case QEvent::WindowDeactivate:
        if (receiver == window()) {
            setFinding(false);
        }
        return false;
    default:
        return false;
    }
}

void ActionSearch::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        setFinding(false);
    }
    QWidget::changeEvent(event);
}

void ActionSearch::findKeys(const QString& keys)
{
    if (keys.isEmpty()) {
        return; // only a modifier so far
    }
    if (mivo::settings::isReservedKeySequence(keys)) {
        showResult(hostText("FoundReserved").arg(keys));
        emit found(0);
        return;
    }
    const auto holders = keyHolders(m_manager.linkShortCutInfo().shortCutInfoList);
    const auto held = holders.find(keys);
    if (held == holders.end()) {
        showFound(0, {}, keys);
    } else {
        showFound(held->front().type, held->front().path, keys);
    }
}

void ActionSearch::findControls()
{
    for (const auto& used :
         {m_peripherals.midi().table().takeFound(), m_peripherals.dmx().table().takeFound(),
          m_peripherals.osc().takeFound()}) {
        if (used) {
            showFound(used->type, used->oprKey, QString::fromStdString(used->keyValue));
        }
    }
}

void ActionSearch::showResult(const QString& text)
{
    m_result->setText(text);
    m_result->setVisible(!text.isEmpty());
}

void ActionSearch::showFound(int type, const std::string& path, const QString& control)
{
    showResult(type == 0
                   ? hostText("FoundFree").arg(control)
                   : hostText("FoundAction").arg(control, actionText(actionPath(type, path))));
    emit found(type);
}

} // namespace mivohost
