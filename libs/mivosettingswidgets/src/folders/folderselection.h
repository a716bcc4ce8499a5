#pragma once

#include "mivosettingswidgets/export.h"

#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

#include <functional>
#include <optional>
#include <string>

class QFileDialog;

namespace mivo::settings {

/// Where the choice of a folder differs between pages: keys of texts, lines of the log, order.
struct FolderRules
{
    const char* acceptKey;        ///< the dialog's accept button
    const char* notAFolderLine;   ///< the selection is no folder
    const char* sameFolderLine;   ///< the selection is the folder that is set already; may be null
    const char* mobileTipKey;     ///< the folder is on a mobile device
    const char* permissionTipKey; ///< the user may not write there
    bool checksBeforeComparing;   ///< else the selection is compared with what is set first
};

MIVOSETTINGSWIDGETS_TEST_EXPORT extern const FolderRules projectFolderRules;
MIVOSETTINGSWIDGETS_TEST_EXPORT extern const FolderRules fileInfoFolderRules;

/// What the choice depends on, for tests to replace.
struct MIVOSETTINGSWIDGETS_TEST_EXPORT FolderDependencies
{
    FolderDependencies();

    std::function<std::optional<QStringList>(QFileDialog&)> select; ///< nothing when cancelled
    std::function<bool(const QString&)> isMobile;                   ///< on a thread of its own
};

/// One choice of a folder by the user: dialog, checks, each with its line in Qt's log and some with
/// a modal tip, and the sub-folder that is made in the chosen folder. GUI thread, which handles
/// events meanwhile: a folder may hang. When the user does not wait, or it has not answered for
/// 30 s, the choice ends with false.
///
/// The page may be destroyed while a dialog is open: the dialog is closed then, the choice ends
/// with false, and no path that was passed is touched.
class MIVOSETTINGSWIDGETS_TEST_EXPORT FolderSelection
{
public:
    FolderSelection(const FolderRules& rules, QWidget* page, FolderDependencies dependencies = {});

    /// Both start at the folder "path" and, on success, leave the result there: the chosen folder,
    /// and the sub-folder `suffix` in it.
    bool openBrowseFileDialog(QString& path) const;
    bool createSecLevelDir(QString& path, const std::string& suffix) const;

private:
    bool mayBeUsed(const QString& folder) const;

    const FolderRules& m_rules;
    QPointer<QWidget> m_page;
    FolderDependencies m_dependencies;
};

/// Shows a modal tip: an information (0) or a warning (2), with a smaller text below. It is closed
/// when the page is destroyed, and not shown where it has been.
void showTip(const QPointer<QWidget>& page, const QString& text, int kind,
             const QString& assistText = {});

/// Asks, over the page, whether the folder is to be cleared; no when the page is destroyed
/// meanwhile.
bool confirmClearing(QWidget* page, const QString& folder);

/// Shows the folder in the system's file manager; a tip tells when that fails.
void showFolder(QWidget* page, const QString& folder);

/// The drive that a path begins with, as "D:"; empty when it does not.
MIVOSETTINGSWIDGETS_TEST_EXPORT QString driveOf(const QString& path);

/// The path without one "/" at its end; the root stays.
MIVOSETTINGSWIDGETS_TEST_EXPORT QString withoutTrailingSlash(const QString& path);

} // namespace mivo::settings
