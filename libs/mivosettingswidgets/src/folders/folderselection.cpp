#include "folders/folderselection.h"

#include "folders/folderwork.h"
#include "mivosettingswidgets/texts.h"

#include <mivoqutils/folders.h>
#include <mivoqutils/volumes.h>
#include <mivowidgets/tipdialog.h>
#include <zrcutils/folderpermission.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFileDialog>

namespace mivo::settings {

using mivo::widgets::TipDialog;

const FolderRules projectFolderRules{
    "OpenProject",
    // Kept on purpose: this page logs the comparison's line for what is no folder.
    "--ProjectSetting-- compare last time path is true!",
    nullptr,
    // Kept on purpose: the pages have keys of their own for the same two tips.
    "MoblieTip",
    "NoAuthorized",
    false,
};

const FolderRules fileInfoFolderRules{
    "Open",
    // Kept on purpose: all lines but the comparison's bear the name of the other page.
    "--ProjectSetting--The selected folder is not a folder!",
    "--FileInfoSetting-- compare last time path is true!",
    "MoblieTips",
    "NoPermission",
    // Kept on purpose: this page checks a folder before it finds that it is set already.
    true,
};

namespace {

QString textOf(const char* key)
{
    return text(QString::fromLatin1(key));
}

/// Closes the dialog when the page is destroyed.
void closeWith(const QWidget* page, QDialog& dialog)
{
    QObject::connect(page, &QObject::destroyed, &dialog, &QDialog::reject);
}

} // namespace

FolderDependencies::FolderDependencies()
    : select([](QFileDialog& dialog) {
          return dialog.exec() == QDialog::Accepted ? std::optional(dialog.selectedFiles())
                                                    : std::nullopt;
      }),
      isMobile(&qutils::isBelongToMobile)
{}

FolderSelection::FolderSelection(const FolderRules& rules, QWidget* page,
                                 FolderDependencies dependencies)
    : m_rules(rules), m_page(page), m_dependencies(std::move(dependencies))
{}

bool FolderSelection::openBrowseFileDialog(QString& path) const
{
    const QString start = qutils::answeringFolder(QDir(path).absolutePath());
    if (!m_page) {
        return false;
    }
    QFileDialog dialog(nullptr, textOf("SelectFolder"), start);
    dialog.setViewMode(QFileDialog::Detail);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setAcceptDrops(false);
    dialog.setLabelText(QFileDialog::FileName, textOf("NameInput"));
    dialog.setLabelText(QFileDialog::Reject, textOf("Cancel"));
    dialog.setLabelText(QFileDialog::Accept, textOf(m_rules.acceptKey));
    closeWith(m_page, dialog);
    const auto selected = m_dependencies.select(dialog);
    if (!m_page || !selected) {
        return false;
    }
    if (selected->isEmpty() || selected->first().isEmpty()) {
        qWarning("--ProjectSetting--browse folder is empty!");
        return false;
    }
    const auto isFolder = askFolder(m_page, selected->first(), [folder = selected->first()] {
        return QFileInfo(folder).isDir();
    });
    if (!isFolder) {
        return false;
    }
    if (!*isFolder) {
        qWarning("%s", m_rules.notAFolderLine);
        return false;
    }
    if (m_rules.checksBeforeComparing && !mayBeUsed(selected->first())) {
        return false;
    }
    path = selected->first();
    return true;
}

bool FolderSelection::createSecLevelDir(QString& path, const std::string& suffix) const
{
    QString chosen = path;
    if (!openBrowseFileDialog(chosen)) {
        return false;
    }
    if (chosen == path) {
        if (m_rules.sameFolderLine != nullptr) {
            qWarning("%s", m_rules.sameFolderLine);
        }
        return false;
    }
    // Checked before "/" is removed: "D:" alone means the current folder on that drive.
    if (!m_rules.checksBeforeComparing && !mayBeUsed(chosen)) {
        return false;
    }
    chosen = withoutTrailingSlash(chosen);
    const auto made = askFolder(
        m_page, chosen, [folder = chosen, name = QString::fromStdString(suffix)]() mutable {
            return qutils::addFolderSuffix(folder, name) ? folder : QString();
        });
    if (!made) {
        return false;
    }
    if (made->isEmpty()) {
        qWarning("--ProjectSetting--make next level dir failure!");
        showTip(m_page, textOf("MakeDirTips"), TipDialog::information);
        return false;
    }
    path = *made;
    return true;
}

bool FolderSelection::mayBeUsed(const QString& folder) const
{
    const auto isMobile = askFolder(
        m_page, folder, [isMobile = m_dependencies.isMobile, folder] { return isMobile(folder); });
    if (!isMobile) {
        return false;
    }
    if (*isMobile) {
        qWarning("--ProjectSetting--The current folder belongs to a mobile device!");
        showTip(m_page, textOf(m_rules.mobileTipKey), TipDialog::warning);
        return false;
    }
    const auto mayWrite = askFolder(
        m_page, folder, [path = folder.toStdString()] { return folderWritePermission(path); });
    if (!mayWrite) {
        return false;
    }
    if (!*mayWrite) {
        qWarning("--ProjectSetting--have no permission to write file!");
        showTip(m_page, textOf(m_rules.permissionTipKey), TipDialog::warning);
        return false;
    }
    return true;
}

void showTip(const QPointer<QWidget>& page, const QString& text, int kind,
             const QString& assistText)
{
    if (!page) {
        return;
    }
    TipDialog dialog;
    dialog.setTipKind(kind);
    dialog.setTipText(text);
    dialog.setAssistText(assistText);
    dialog.setButtonTexts(QString(), textOf("OK"));
    closeWith(page, dialog);
    dialog.run();
}

bool confirmClearing(QWidget* page, const QString& folder)
{
    return TipDialog::ask(page, TipDialog::warning, textOf("ClearTips"), textOf("Cancel"),
                          textOf("OK"), QDir::toNativeSeparators(folder))
           == TipDialog::accepted;
}

void showFolder(QWidget* page, const QString& folder)
{
    const QPointer<QWidget> guard(page);
    const auto there = askFolder(guard, folder, [folder] { return QFileInfo(folder).isDir(); });
    if (there && !(*there && qutils::openFolder(folder))) {
        showTip(guard, textOf("OpenFolderFailed"), TipDialog::warning,
                QDir::toNativeSeparators(folder));
    }
}

QString driveOf(const QString& path)
{
    const QString first = path.section(QLatin1Char('/'), 0, 0, QString::SectionSkipEmpty);
    return first.size() == 2 && first.endsWith(QLatin1Char(':')) ? first : QString();
}

QString withoutTrailingSlash(const QString& path)
{
    return path.size() > 1 && path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}

} // namespace mivo::settings
