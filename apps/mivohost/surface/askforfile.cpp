#include "surface/askforfile.h"

#include <mivoqutils/folders.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtWidgets/QMessageBox>

namespace mivohost {

namespace {

/// Qt's dialog completes only names without any dot.
QString completed(const QString& file, const QStringList& suffixes)
{
    const bool isComplete = suffixes.contains(QFileInfo(file).suffix(), Qt::CaseInsensitive);
    return isComplete ? file : file + '.' + suffixes.first();
}

/// As Qt's dialog asks.
bool mayReplace(const QString& file, const QString& title, QWidget* parent)
{
    const QString text = QFileDialog::tr("%1 already exists.\nDo you want to replace it?");
    QMessageBox question(QMessageBox::Warning, title, text.arg(QFileInfo(file).fileName()),
                         QMessageBox::Yes | QMessageBox::No, parent);
    question.setTextFormat(Qt::PlainText);
    question.setDefaultButton(QMessageBox::No);
    return question.exec() == QMessageBox::Yes;
}

} // namespace

QString askForFile(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title,
                   const QString& kind, const QStringList& suffixes, const QString& folder,
                   const QString& name)
{
    // Qt's own last folder, which it looks at where it is given none, may not answer.
    static QString last = QDir::homePath();
    QFileDialog dialog(parent, title,
                       mivo::qutils::answeringFolder(folder.isEmpty() ? last : folder),
                       QStringLiteral("%1 (*.%2)").arg(kind, suffixes.join(QLatin1String(" *."))));
    const bool isSaving = mode == QFileDialog::AcceptSave;
    dialog.setAcceptMode(mode);
    dialog.setFileMode(isSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(suffixes.first());
    dialog.selectFile(name);
    while (dialog.exec() == QDialog::Accepted) {
        const QString chosen = dialog.selectedFiles().value(0);
        const QString file = isSaving ? completed(chosen, suffixes) : chosen;
        if (file == chosen || !QFileInfo::exists(file) || mayReplace(file, title, parent)) {
            last = QFileInfo(file).absolutePath();
            return file;
        }
    }
    return {};
}

} // namespace mivohost
