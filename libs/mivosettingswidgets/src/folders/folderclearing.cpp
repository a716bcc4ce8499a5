#include "folders/folderclearing.h"

#include "mivosettingswidgets/texts.h"

#include <QtCore/QDir>
#include <QtCore/QTimer>

#include <chrono>

namespace mivo::settings {

FolderClearing::FolderClearing(const QString& folder, QWidget* page, const Clear& clear)
{
    QTimer::singleShot(std::chrono::milliseconds(500), this,
                       [this, folder, page = QPointer<QWidget>(page)] {
                           if (isRunning() && page && page->isVisible()) {
                               showProgress(folder, page);
                           }
                       });
    m_thread = std::thread([this, folder, clear] {
        m_result = clear(folder, [this](int /*removed*/) { return !m_cancelled; });
        QMetaObject::invokeMethod(this, "finish", Qt::QueuedConnection);
    });
}

FolderClearing::~FolderClearing()
{
    m_cancelled = true;
    if (isRunning()) {
        m_thread.join();
    }
    delete m_progress;
}

void FolderClearing::finish()
{
    m_thread.join();
    delete m_progress;
    emit finished();
}

void FolderClearing::showProgress(const QString& folder, QWidget* page)
{
    m_progress = new QProgressDialog(page);
    m_progress->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setRange(0, 0); // nobody has counted
    m_progress->setLabelText(text(QStringLiteral("ClearingFolder")) + QStringLiteral("\n\n")
                             + QDir::toNativeSeparators(folder));
    m_progress->setCancelButtonText(text(QStringLiteral("Cancel")));
    connect(m_progress, &QProgressDialog::canceled, this, [this] { m_cancelled = true; });
    m_progress->show();
}

} // namespace mivo::settings
