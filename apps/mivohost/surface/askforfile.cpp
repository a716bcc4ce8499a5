#include "surface/askforfile.h"

#include <mivoqutils/folders.h>

namespace mivohost {

QString askForFile(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title,
                   const QString& kind, const QString& suffix, const QString& folder,
                   const QString& name)
{
    QFileDialog dialog(parent, title,
                       folder.isEmpty() ? QString() : mivo::qutils::answeringFolder(folder),
                       QStringLiteral("%1 (*.%2)").arg(kind, suffix));
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile
                                                       : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile(name);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

} // namespace mivohost
