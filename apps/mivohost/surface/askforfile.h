#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtWidgets/QFileDialog>

namespace mivohost {

/// Asks for one file to be opened or written, of a kind of files that has one of these suffixes;
/// empty when none is chosen. One to be written has the first of them where it was given none.
/// Begins in `folder`, or else in that of the last file that was chosen. The texts are shown as
/// they are. GUI thread.
QString askForFile(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title,
                   const QString& kind, const QStringList& suffixes, const QString& folder = {},
                   const QString& name = {});

} // namespace mivohost
