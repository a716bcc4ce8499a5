#include "folders/folderrow.h"

#include "folders/folderselection.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/texts.h"

#include <mivoqutils/volumes.h>
#include <mivowidgets/alertlabel.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QDir>
#include <QtCore/QPointer>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QStyleOption>

namespace mivo::settings {

using mivo::widgets::AlertLabel;
using mivo::widgets::EditBox;
using mivo::widgets::PushButton;
using mivo::widgets::TipDialog;

namespace {

/// Shows the end of a path that is longer than the box, since paths differ at their ends. With the
/// focus it is a normal edit, in which the cursor reaches the whole path.
class PathEdit : public EditBox
{
public:
    using EditBox::EditBox;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        QStyleOptionFrame option;
        initStyleOption(&option);
        const int margin = 2; // as in every line edit
        const QRect area =
            style()->subElementRect(QStyle::SE_LineEditContents, &option, this) - textMargins();
        const QRect line = area.adjusted(margin, 0, -margin, 0);
        if (m_whole != text() || m_font != font() || m_width != line.width()) { // it takes long
            m_whole = text();
            m_font = font();
            m_width = line.width();
            m_elided = fontMetrics().elidedText(m_whole, Qt::ElideLeft, m_width);
        }
        if (hasFocus() || m_elided == m_whole) {
            EditBox::paintEvent(event);
            return;
        }
        QPainter painter(this);
        style()->drawPrimitive(QStyle::PE_PanelLineEdit, &option, &painter, this);
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(
            line, static_cast<int>(alignment() | Qt::AlignVCenter) | Qt::TextForceLeftToRight,
            m_elided);
    }

private:
    QString m_elided; // of the following
    QString m_whole;
    QFont m_font;
    int m_width = 0;
};

} // namespace

FolderRow::Dependencies::Dependencies()
    : bytesAvailable(&qutils::bytesAvailable), clear(&qutils::clearFolder)
{}

FolderRow::FolderRow(QWidget* page, QWidget* tip, Dependencies dependencies)
    : caption(new QLabel(page)), edit(new PathEdit(page)), browse(new PushButton(page)),
      clear(new PushButton(page)), space(new QLabel(page)),
      layout(rowOf({caption, edit, browse, clear, space, tip})), m_page(page), m_tip(tip),
      m_dependencies(std::move(dependencies))
{
    edit->setReadOnly(true);
    edit->setLayoutDirection(Qt::LeftToRight); // as paths read in every language
    edit->setFixedWidth(180);
    setUsualHeight(browse, 24);
    setUsualHeight(clear, 24);
    clear->setEnabled(false); // like everything that needs a folder
    m_tip->hide();
    connect(clear, &PushButton::clicked, this, &FolderRow::startClearing);
}

FolderRow::~FolderRow() = default;

void FolderRow::addTexts(const char* captionKey, const RegisterText& text)
{
    caption->setBuddy(edit);
    text(captionKey, [this](const QString& name) {
        caption->setText(name);
        edit->setAccessibleName(name);
        browse->setAccessibleDescription(name); // which of the page's buttons of that text
        clear->setAccessibleDescription(name);
    });
    text("Browse", [this](const QString& name) { browse->setText(name); });
    text("Clear", [this](const QString& name) { clear->setText(name); });
    text("RemainSpace", [this](const QString& prefix) {
        m_spacePrefix = prefix;
        showSpace();
    });
}

QString FolderRow::path() const
{
    return edit->text();
}

void FolderRow::setPath(const QString& path)
{
    if (path == edit->text()) {
        return;
    }
    edit->setText(path);
    edit->setCursorPosition(0);
    edit->setToolTip(tipOf(QDir::toNativeSeparators(path))); // it is longer than the box mostly
    clear->setEnabled(!path.isEmpty());
    emit pathChanged(path);
    checkSpace();
}

void FolderRow::choose(const FolderRules& rules, const char* subFolder,
                       const std::function<bool(const QString& path)>& write)
{
    const QString before = path();
    QString chosen = before;
    if (FolderSelection(rules, m_page).createSecLevelDir(chosen, subFolder)) {
        const QPointer<FolderRow> self(this);
        setPath(chosen);
        // The host, which is told of the space, may have taken the page away.
        if (self && !write(chosen)) {
            setPath(before);
        }
    }
}

void FolderRow::checkSpace()
{
    const QString drive = driveOf(path());
    if (m_spaceTask && m_spaceTask->isRunning() && drive == m_askedDrive) {
        return; // the drive hangs; another thread would only hang as well
    }
    m_spaceTask.reset();
    m_askedDrive = drive;
    if (drive.isEmpty()) {
        applySpace(std::nullopt);
        return;
    }
    m_spaceTask = std::make_unique<qutils::FileTask>();
    m_spaceTask->start(
        [bytesAvailable = m_dependencies.bytesAvailable, drive] { return bytesAvailable(drive); },
        // -1 (not known) counts as full.
        [this](qint64 bytes) { applySpace(bytes / (qint64(1) << 30)); });
    // Waits briefly: most drives answer at once, and then the label does not flicker.
    if (!m_spaceTask->waitFor(std::chrono::milliseconds(10))) {
        m_freeGibibytes = std::nullopt;
        showSpace();
        m_tip->hide();
    }
}

void FolderRow::applySpace(std::optional<qint64> gibibytes)
{
    m_freeGibibytes = gibibytes;
    showSpace();
    // Kept on purpose: a limit in mebibytes for a number of whole gibibytes, so less than one.
    const bool usedUp = m_freeGibibytes && *m_freeGibibytes * 1024 < 100;
    // Another tip, as a button, is not spoken by itself.
    if (usedUp && qobject_cast<AlertLabel*>(m_tip) == nullptr) {
        auto* spoken = m_tip->findChild<AlertLabel*>();
        if (spoken == nullptr) {
            spoken = new AlertLabel(m_tip);
            spoken->setFixedSize(0, 0);
        }
        spoken->setText(m_tip->property("text").toString());
    }
    m_tip->setVisible(usedUp);
    emit spaceChecked(usedUp);
}

void FolderRow::showSpace()
{
    // Kept on purpose: one decimal of a whole number, always 0.
    space->setText(m_freeGibibytes
                       ? m_spacePrefix
                             + QString::asprintf("%.1f G", static_cast<double>(*m_freeGibibytes))
                       : QString());
}

void FolderRow::startClearing()
{
    const QString folder = path();
    if (m_clearing && m_clearing->isRunning() && !m_clearing->isCancelled()) {
        m_clearing->showProgress();
        return;
    }
    if (!confirmClearing(m_page, folder)) {
        return;
    }
    m_clearing = std::make_unique<FolderClearing>(folder, m_page, m_dependencies.clear);
    connect(m_clearing.get(), &FolderClearing::finished, this,
            [this, folder](const qutils::ClearResult& result) { endClearing(folder, result); });
}

void FolderRow::endClearing(const QString& folder, const qutils::ClearResult& result)
{
    const QPointer<QWidget> page(m_page);
    checkSpace();
    if (result.refused) {
        showTip(page, text(QStringLiteral("ClearRefused")), TipDialog::warning,
                QDir::toNativeSeparators(folder));
    } else if (!result.notRemoved.isEmpty()) {
        constexpr int mostNamed = 10;
        QStringList named = result.notRemoved.mid(0, mostNamed);
        if (result.notRemoved.size() > mostNamed) {
            named.append(
                text(QStringLiteral("ClearMore")).arg(result.notRemoved.size() - mostNamed));
        }
        showTip(page, text(QStringLiteral("ClearIncomplete")), TipDialog::warning,
                named.join(QLatin1Char('\n')));
    }
}

} // namespace mivo::settings
