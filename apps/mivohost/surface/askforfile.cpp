#include "surface/askforfile.h"

#include <mivoqutils/folders.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace mivohost {

QString askForFile(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title,
                   const QString& kind, const QString& suffix, const QString& folder,
                   const QString& name)
{
    // Qt's own last folder, which it looks at where it is given none, may not answer.
    static QString last = QDir::homePath();
    QFileDialog dialog(parent, title,
                       mivo::qutils::answeringFolder(folder.isEmpty() ? last : folder),
                       QStringLiteral("%1 (*.%2)").arg(kind, suffix));
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile
                                                       : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile(name);
    if (dialog.exec() != QDialog::Accepted) {
        return {};
    }
    const QString file = dialog.selectedFiles().value(0);
    last = QFileInfo(file).absolutePath();
    return file;
}

} // namespace mivohost
