#include "surface/settingstransfer.h"

#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"
#include "surface/askforfile.h"
#include "surface/importdialog.h"
#include "surface/settingstexts.h"

#include <zrcutils/nocachefile.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <vector>

namespace mivohost {

namespace {

using Section = SettingsFile::Section;

/// Empty when the operator chooses nothing.
std::set<Section> askForSections(QWidget* window)
{
    QDialog dialog(window);
    dialog.setWindowTitle(hostText("ExportSettingsTitle"));
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* column = new QVBoxLayout(&dialog);
    column->setContentsMargins(20, 16, 20, 16);
    column->setSpacing(6);
    auto* heading = new QLabel(hostText("SettingsToExport"));
    heading->setWordWrap(true);
    column->addWidget(heading);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* accept = buttons->button(QDialogButtonBox::Ok);
    std::vector<std::pair<Section, QCheckBox*>> boxes;
    for (const Section section : SettingsFile::sections()) {
        auto* box = new QCheckBox(sectionText(section));
        box->setObjectName(SettingsFile::nameOf(section));
        box->setChecked(true);
        column->addWidget(box);
        boxes.emplace_back(section, box);
    }
    const auto chosen = [&boxes] {
        std::set<Section> sections;
        for (const auto& [section, box] : boxes) {
            if (box->isChecked()) {
                sections.insert(section);
            }
        }
        return sections;
    };
    for (const auto& box : boxes) {
        QObject::connect(box.second, &QCheckBox::toggled, accept,
                         [accept, chosen] { accept->setEnabled(!chosen().empty()); });
    }
    accept->setText(hostText("ExportShortcuts"));
    buttons->button(QDialogButtonBox::Cancel)->setText(hostText("Cancel"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    column->addSpacing(6);
    column->addWidget(buttons);
    return dialog.exec() == QDialog::Accepted ? chosen() : std::set<Section>();
}

/// Writes a new file and leaves nine of the others; empty, or why it is not there.
QString keep(const QString& path, const std::string& content)
{
    const QFileInfo file(path);
    QDir folder = file.dir();
    folder.mkpath(QStringLiteral("."));
    NoCacheFile::removeLeftovers(folder.path().toStdString());
    QString error = saveFile(path, content);
    if (error.isEmpty()) {
        removeOlder(folder, folder.entryList({QStringLiteral("settings-*.json")}, QDir::Files),
                    file.fileName(), 10);
    }
    return error;
}

} // namespace

SettingsTransfer::SettingsTransfer(RuntimeThread& runtime, SettingsStore& store, QWidget* window)
    : m_runtime(runtime), m_store(store), m_window(window)
{}

QString SettingsTransfer::askForSettings(bool saving)
{
    return askForFile(m_window, saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen,
                      hostText(saving ? "ExportSettingsTitle" : "ImportSettingsTitle"),
                      hostText("SettingsFiles"), {QStringLiteral("json")}, {},
                      saving ? QStringLiteral("settings.json") : QString());
}

void SettingsTransfer::chooseExport()
{
    const std::set<Section> sections = askForSections(m_window);
    const QString path = sections.empty() ? QString() : askForSettings(true);
    if (!path.isEmpty()) {
        exportTo(path, sections);
    }
}

void SettingsTransfer::exportTo(const QString& path, const std::set<Section>& sections)
{
    const QString shown = QDir::toNativeSeparators(path);
    const auto fail = [this, path](const QString& reason) {
        emit failed(QStringLiteral("SettingsNotExported"), fileProblem(path, reason));
    };
    m_requests.start(
        {path, true, fail}, [path, content = m_runtime.call([&] {
            return SettingsFile::write(m_store, sections);
        })] { return saveFile(path, content); },
        [this, shown, fail](const QString& error, bool isWaitedFor) {
            if (error.isEmpty()) {
                emit told(
                    QString::fromLatin1(isWaitedFor ? "SettingsExported" : "SettingsExportedLate"),
                    shown);
            } else if (isWaitedFor) {
                fail(error);
            }
        });
}

void SettingsTransfer::keepAll(
    const std::function<void(const QString& file, const QString& error)>& kept)
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                         + QLocale::c().toString(
                             QDateTime::currentDateTime(),
                             QStringLiteral("'/keptsettings/settings-'yyyyMMdd-hhmmsszzz'.json'"));
    const QString shown = QDir::toNativeSeparators(path);
    const auto fail = [kept, path](const QString& reason) {
        kept({}, reasonText(fileProblem(path, reason)));
    };
    m_requests.start(
        {path, true, fail}, [path, content = m_runtime.call([&] {
            const auto all = SettingsFile::sections();
            return SettingsFile::write(m_store, {all.begin(), all.end()});
        })] { return keep(path, content); },
        [kept, fail, shown](const QString& error, bool isWaitedFor) {
            if (isWaitedFor && error.isEmpty()) {
                kept(shown, {});
            } else if (isWaitedFor) {
                fail(error);
            }
        });
}

void SettingsTransfer::chooseImport()
{
    const QString path = askForSettings(false);
    if (!path.isEmpty()) {
        importFrom(path);
    }
}

void SettingsTransfer::importFrom(const QString& path)
{
    const auto fail = [this](const QString& reason) {
        emit failed(QStringLiteral("SettingsNotImported"), reason);
    };
    struct Read
    {
        QString error;
        SettingsFile file;
    };
    m_requests.start(
        {path, false, fail},
        [path] {
            const FileContent content = readFile(path, SettingsFile::mostBytes);
            return content.error.isEmpty() ? Read{{}, SettingsFile::read(content.bytes)}
                                           : Read{content.error, {}};
        },
        [this, fail](const Read& read, bool isWaitedFor) {
            if (!isWaitedFor) {
                return;
            }
            if (!read.error.isEmpty()) {
                fail(read.error);
            } else if (!read.file.error().isEmpty()) {
                fail(problemText(read.file));
            } else {
                offer(read.file);
            }
        });
}

void SettingsTransfer::offer(const SettingsFile& file)
{
    auto* dialog =
        new ImportDialog(file, m_runtime.call([&] { return file.plan(m_store); }), m_window);
    dialog->setObjectName(QStringLiteral("importSettings"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        const auto chosen = dialog->chosen();
        const QString problem = m_runtime.call([&] { return m_store.setAll(chosen); });
        if (!problem.isEmpty()) {
            emit failed(QStringLiteral("SettingsNotImported"), problem);
            return;
        }
        emit imported();
        emit told(QStringLiteral("SettingsImported"), QString::number(chosen.size()));
    });
    dialog->open(); // modal for the window, without blocking the event loop here
}

} // namespace mivohost
