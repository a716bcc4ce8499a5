#include "folders/folderwork.h"

#include "folders/folderselection.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/tipdialog.h>

#include <QtCore/QDir>

namespace mivo::settings {

QProgressDialog* showFolderProgress(QWidget* page, const char* key, const QString& folder)
{
    auto* progress = new QProgressDialog(page);
    progress->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    progress->setWindowModality(Qt::WindowModal);
    progress->setRange(0, 0); // busy, since the number of entries is not known
    progress->setLabelText(text(QString::fromLatin1(key)) + QStringLiteral("\n\n")
                           + QDir::toNativeSeparators(folder));
    progress->setCancelButtonText(text(QStringLiteral("Cancel")));
    progress->show();
    return progress;
}

void tellNoAnswer(const QPointer<QWidget>& page, const QString& folder)
{
    showTip(page, text(QStringLiteral("FolderNoAnswer")), mivo::widgets::TipDialog::warning,
            QDir::toNativeSeparators(folder));
}

} // namespace mivo::settings
