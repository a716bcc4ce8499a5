#include "surface/bindingsheet.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/askforfile.h"
#include "surface/plaintable.h"
#include "surface/waitingline.h"

#include <mivosettingswidgets/shortcutmgr.h>
#include <mivowidgets/findkeys.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>

#include <mutex>

namespace mivohost {

using mivo::settings::ShortCutMgr;

struct BindingSheet::Layout
{
    std::mutex mutex; // held while something is laid out
    bool isOver = false;
};

BindingSheet::BindingSheet(const ShortCutMgr& manager, Peripherals& peripherals, QWidget* parent)
    : QDialog(parent), m_manager(manager), m_peripherals(peripherals),
      m_layout(std::make_shared<Layout>()), m_view(new QTableView), m_text(new QLineEdit),
      m_pdf(new QPushButton), m_html(new QPushButton), m_waiting(new WaitingLine(m_requests)),
      m_state(new QLabel), m_replaced(peripherals.bindingsReplaced.connect([this] { refill(); }))
{
    setObjectName(QStringLiteral("bindingSheet"));
    m_filter.setSourceModel(&m_model);
    m_view->setObjectName(QStringLiteral("bindings"));
    m_view->setModel(&m_filter);
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(-1, Qt::AscendingOrder); // as the actions stand in the program
    makePlain(*m_view);
    m_view->verticalHeader()->setDefaultSectionSize(25);
    m_view->horizontalHeader()->setMinimumSectionSize(110);
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_text->setObjectName(QStringLiteral("bindingFilter"));
    m_text->setClearButtonEnabled(true);
    m_text->setMaxLength(100);
    m_pdf->setObjectName(QStringLiteral("sheetAsPdf"));
    m_html->setObjectName(QStringLiteral("sheetAsHtml"));
    m_state->setObjectName(QStringLiteral("sheetState"));
    m_state->setTextFormat(Qt::PlainText);
    m_state->setWordWrap(true);
    auto* row = new QHBoxLayout;
    row->addWidget(m_text, 1);
    for (QPushButton* button : {m_pdf, m_html}) {
        button->setAutoDefault(false);
        row->addWidget(button);
    }
    auto* column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(m_view);
    column->addWidget(m_waiting);
    column->addWidget(m_state);
    resize(980, 620);
    m_view->setFocus();

    connect(m_text, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_filter.setText(text);
        showState({});
    });
    mivo::widgets::goToByFindKeys(*m_text, *this);
    connect(m_pdf, &QPushButton::clicked, this, [this] { askAndSave({"pdf", "html", "htm"}); });
    connect(m_html, &QPushButton::clicked, this, [this] { askAndSave({"html", "htm", "pdf"}); });
    connect(&manager, &ShortCutMgr::signalShortCutSave, this, &BindingSheet::refill);
    connect(&manager, &ShortCutMgr::signalUpdateClearPeripheralsState, this, &BindingSheet::refill);
}

BindingSheet::~BindingSheet()
{
    // A layout is waited for: it uses fonts, which go with the application. The file is not.
    const std::lock_guard lock(m_layout->mutex);
    m_layout->isOver = true;
}

void BindingSheet::openWindow()
{
    show();
    raise();
    activateWindow();
    refill();
    m_view->resizeColumnsToContents();
}

void BindingSheet::setTexts()
{
    setWindowTitle(hostText("BindingSheet") + QStringLiteral(" – mivohost"));
    m_view->setAccessibleName(hostText("BindingSheet"));
    m_text->setPlaceholderText(hostText("FilterInputs"));
    m_text->setAccessibleName(hostText("FilterInputs"));
    m_pdf->setText(hostText("SheetAsPdf"));
    m_html->setText(hostText("SheetAsHtml"));
    m_waiting->setTexts();
    refill();
}

void BindingSheet::refill()
{
    if (isVisible()) {
        m_model.fill(m_manager, m_peripherals);
        showState({});
    }
}

void BindingSheet::showState(const QString& state)
{
    const bool isEmpty = m_filter.rowCount() == 0;
    m_pdf->setEnabled(!isEmpty && !m_requests.isWaiting());
    m_html->setEnabled(!isEmpty && !m_requests.isWaiting());
    m_state->setText(isEmpty && state.isEmpty() ? hostText("NoBindingMatches") : state);
    m_state->setVisible(!m_state->text().isEmpty());
}

void BindingSheet::askAndSave(const QStringList& suffixes)
{
    const QString path = askForFile(this, QFileDialog::AcceptSave, hostText("BindingSheet"),
                                    hostText("BindingSheet"), suffixes);
    if (!path.isEmpty()) {
        saveTo(path);
    }
}

void BindingSheet::saveTo(const QString& path)
{
    const QString html = bindingsHtml(m_filter);
    const bool isHtml =
        QFileInfo(path).suffix().startsWith(QLatin1String("htm"), Qt::CaseInsensitive);
    const QString shown = QDir::toNativeSeparators(path);
    const auto fail = [this, path](const QString& reason) {
        const QString problem = fileProblem(path, reason);
        showState(hostText("ShortcutsNotExported").arg(reasonText(problem)));
        emit failed(QStringLiteral("ShortcutsNotExported"), problem);
    };
    m_requests.start(
        {path, true, fail},
        [path, html, isHtml, title = hostText("BindingSheet"), layout = m_layout] {
            if (isHtml) {
                return saveFile(path, html.toStdString());
            }
            std::unique_lock lock(layout->mutex);
            if (layout->isOver) {
                return QStringLiteral("no answer");
            }
            const std::string pdf = pdfOf(html, title).toStdString();
            lock.unlock();
            return saveFile(path, pdf);
        },
        [this, fail, shown](const QString& error, bool isWaitedFor) {
            if (error.isEmpty()) {
                showState(hostText("SheetSaved").arg(shown));
            } else if (isWaitedFor) {
                fail(error);
            }
        });
    if (m_requests.isWaiting()) {
        showState({}); // no other one meanwhile
    }
}

} // namespace mivohost
