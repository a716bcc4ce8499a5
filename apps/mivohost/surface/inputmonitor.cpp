#include "surface/inputmonitor.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/actiontext.h"
#include "surface/inputdelegate.h"
#include "surface/inputhint.h"
#include "surface/plaintable.h"

#include <mivowidgets/combobox.h>
#include <mivowidgets/findkeys.h>

#include <QtCore/QLocale>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace mivohost {

namespace {

constexpr int frame = 16; // ms
// To paint all lines anew is what costs most; faster than this nobody reads them.
constexpr qint64 refreshEvery = 48; // ms
constexpr qint64 rateEvery = 1000;  // ms
constexpr int margin = 24;
constexpr std::array kinds{PeripheralMidi, PeripheralDmx, PeripheralOsc};

} // namespace

InputMonitor::InputMonitor(Peripherals& peripherals, QWidget* parent)
    : QDialog(parent), m_peripherals(peripherals), m_decoder(peripherals), m_view(new QTableView),
      m_kind(new mivo::widgets::ComboBox), m_text(new QLineEdit), m_pause(new QPushButton),
      m_clear(new QPushButton), m_copy(new QPushButton), m_empty(new QLabel), m_state(new QLabel)
{
    setObjectName(QStringLiteral("inputMonitor"));
    m_view->setObjectName(QStringLiteral("inputs"));
    m_view->setModel(&m_model);
    m_view->setItemDelegate(new InputDelegate(m_view));
    makePlain(*m_view);
    m_view->setWordWrap(false);
    m_view->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->verticalHeader()->setDefaultSectionSize(25);
    QHeaderView* header = m_view->horizontalHeader();
    header->setSectionResizeMode(InputModel::wordsColumn, QHeaderView::Stretch);
    m_view->setColumnWidth(InputModel::timeColumn, 96);
    m_view->setColumnWidth(InputModel::kindColumn, 56);
    m_view->setColumnWidth(InputModel::sourceColumn, 150);
    m_view->setColumnWidth(InputModel::levelColumn, 104);
    m_view->setColumnWidth(InputModel::actionColumn, 190);
    m_kind->setObjectName(QStringLiteral("inputKind"));
    m_kind->addItems(kindNames()); // and that of the keyboard for all
    m_text->setObjectName(QStringLiteral("inputFilter"));
    m_text->setClearButtonEnabled(true);
    m_text->setMaxLength(200);
    m_pause->setObjectName(QStringLiteral("pauseInputs"));
    m_pause->setCheckable(true);
    m_clear->setObjectName(QStringLiteral("clearInputs"));
    m_copy->setObjectName(QStringLiteral("copyInputs"));
    m_empty->setObjectName(QStringLiteral("noInputs"));
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_empty->setTextFormat(Qt::PlainText);
    m_state->setObjectName(QStringLiteral("inputState"));

    auto* row = new QHBoxLayout;
    row->addWidget(m_kind);
    row->addWidget(m_text, 1);
    for (QPushButton* button : {m_pause, m_clear, m_copy}) {
        button->setAutoDefault(false);
        row->addWidget(button);
    }
    auto* over = new QVBoxLayout(m_view->viewport());
    over->addWidget(m_empty);
    auto* column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(m_view);
    column->addWidget(m_state);
    resize(980, 420);
    m_view->setFocus();
    addConnections();
    setTexts();
}

InputMonitor::~InputMonitor()
{
    m_peripherals.tap().setOpen(false);
}

void InputMonitor::addConnections()
{
    m_view->installEventFilter(this);
    connect(&m_timer, &QTimer::timeout, this, &InputMonitor::read);
    connect(m_kind, qOverload<int>(&QComboBox::activated), this, &InputMonitor::filter);
    connect(m_text, &QLineEdit::textChanged, this, &InputMonitor::filter);
    connect(m_text, &QLineEdit::returnPressed, m_view, qOverload<>(&QWidget::setFocus));
    connect(m_pause, &QPushButton::toggled, this, &InputMonitor::showState);
    connect(m_copy, &QPushButton::clicked, this, &InputMonitor::copy);
    connect(m_clear, &QPushButton::clicked, this, &InputMonitor::clear);
    mivo::widgets::goToByFindKeys(*m_text, *this);
    // Who reads what came before has it stay where it is.
    connect(&m_model, &QAbstractItemModel::rowsRemoved, m_view,
            [this](const QModelIndex& /*parent*/, int first, int last) {
                QScrollBar* scroll = m_view->verticalScrollBar();
                scroll->setValue(scroll->value() - (last - first + 1));
            });
}

void InputMonitor::openWindow()
{
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    show();
    raise();
    activateWindow();
}

void InputMonitor::showKind(EnumPeripheralShortCutType kind)
{
    m_kind->setCurrentIndex(kind);
    filter();
    if (!isVisible() && parentWidget() != nullptr) { // below what is being bound
        const QRect window = parentWidget()->window()->frameGeometry();
        move(window.left() + margin, window.bottom() - height() - margin);
    }
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
}

void InputMonitor::setTexts()
{
    setWindowTitle(hostText("InputMonitor") + QStringLiteral(" – mivohost"));
    m_kind->setItemText(PeripheralKeyboard, hostText("AllInputs"));
    m_kind->setAccessibleName(hostText("MonitorKind"));
    m_text->setPlaceholderText(hostText("FilterInputs"));
    m_text->setAccessibleName(hostText("FilterInputs"));
    m_view->setAccessibleName(hostText("InputMonitor"));
    m_pause->setText(hostText("PauseInputs"));
    m_pause->setToolTip(QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText));
    m_clear->setText(hostText("ClearInputs"));
    m_copy->setText(hostText("CopyInputs"));
    m_copy->setToolTip(QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText));
    m_model.setTexts();
    showState();
}

void InputMonitor::showEvent(QShowEvent* event)
{
    m_decoder.forgetLevels();
    m_counts = {};
    m_rates = {};
    m_dropped = 0;
    m_counted.start();
    m_refreshed.invalidate();
    m_peripherals.tap().setOpen(true);
    m_timer.start(frame);
    showState();
    hostLog()->info("input monitor open");
    QDialog::showEvent(event);
}

void InputMonitor::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    m_peripherals.tap().setOpen(false);
    QDialog::hideEvent(event);
}

bool InputMonitor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto* press = static_cast<QKeyEvent*>(event);
        if (press->matches(QKeySequence::Copy)) {
            copy();
            return true;
        }
        if (press->key() == Qt::Key_Space && press->modifiers() == Qt::NoModifier) {
            m_pause->toggle();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

EnumPeripheralShortCutType InputMonitor::kind() const
{
    return static_cast<EnumPeripheralShortCutType>(m_kind->currentIndex());
}

void InputMonitor::filter()
{
    m_model.setFilter(kind(), m_text->text());
    m_view->scrollToBottom();
    showState();
}

void InputMonitor::read()
{
    m_dropped += m_peripherals.tap().take(m_messages);
    for (const InputMessage& message : m_messages) {
        ++m_counts[message.kind];
        if (!m_pause->isChecked()) {
            m_decoder.decode(message, m_inputs);
        }
    }
    if (!m_inputs.empty() && (!m_refreshed.isValid() || m_refreshed.hasExpired(refreshEvery))) {
        m_refreshed.start();
        const QScrollBar* scroll = m_view->verticalScrollBar();
        const bool isAtEnd = scroll->value() == scroll->maximum();
        const bool wasEmpty = m_model.rowCount() == 0;
        m_model.add(m_inputs);
        m_inputs.clear();
        if (isAtEnd) {
            m_view->scrollToBottom();
        }
        if (wasEmpty) {
            showState();
        }
    }
    if (m_counted.hasExpired(rateEvery)) {
        const double seconds = static_cast<double>(m_counted.restart()) / 1000;
        std::transform(m_counts.begin(), m_counts.end(), m_rates.begin(),
                       [seconds](int count) { return qRound(count / seconds); });
        m_counts = {};
        showState();
    }
}

void InputMonitor::clear()
{
    m_model.clear();
    m_dropped = 0;
    showState();
}

void InputMonitor::showState()
{
    const QLocale locale;
    m_state->setText(hostText(m_pause->isChecked() ? "MonitorPaused" : "MonitorRates")
                         .arg(locale.toString(m_rates[PeripheralMidi]),
                              locale.toString(m_rates[PeripheralDmx]),
                              locale.toString(m_rates[PeripheralOsc]),
                              locale.toString(static_cast<qulonglong>(m_dropped))));
    const bool isEmpty = m_model.rowCount() == 0;
    m_empty->setVisible(isEmpty);
    m_focus.setEnabled(*m_copy, !isEmpty);
    m_focus.setEnabled(*m_clear, m_model.hasInputs());
    if (!isEmpty) {
        return;
    }
    QStringList lines{hostText(m_model.hasInputs() ? "NoInputMatches" : "NothingCameIn")};
    for (const EnumPeripheralShortCutType each : kinds) {
        if (kind() == PeripheralKeyboard || kind() == each) {
            lines.append(inputProblem(m_peripherals, each));
        }
    }
    lines.removeAll({});
    m_empty->setText(lines.join('\n'));
}

void InputMonitor::copy() const
{
    QModelIndexList rows = m_view->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const QModelIndex& index : rows) {
        lines.append(m_model.line(index.row()));
    }
    for (int row = 0; rows.isEmpty() && row < m_model.rowCount(); ++row) {
        lines.append(m_model.line(row));
    }
    if (!lines.isEmpty()) {
        QGuiApplication::clipboard()->setText(lines.join('\n'));
        hostLog()->info("inputs copied: {}", lines.size());
    }
}

} // namespace mivohost
