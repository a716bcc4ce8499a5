#pragma once

#include <QtCore/QString>
#include <QtWidgets/QFileDialog>

namespace mivohost {

/// Asks for one file to be opened or written, of a kind of files that has this suffix; empty when
/// none is chosen. Begins in `folder`, or else in that of the last file that was chosen. The texts
/// are shown as they are. GUI thread.
QString askForFile(QWidget* parent, QFileDialog::AcceptMode mode, const QString& title,
                   const QString& kind, const QString& suffix, const QString& folder = {},
                   const QString& name = {});

} // namespace mivohost
