#include "folders/folderclearing.h"

#include "folders/folderwork.h"

namespace mivo::settings {

using qutils::FileTask;

FolderClearing::FolderClearing(const QString& folder, QWidget* page, const Clear& clear)
{
    connect(&m_task, &FileTask::slow, this, [this, folder, page = QPointer<QWidget>(page)] {
        if (page && page->isVisible()) {
            m_progress = showFolderProgress(page, "ClearingFolder", folder);
            connect(m_progress, &QProgressDialog::canceled, this, [this] { *m_cancelled = true; });
        }
    });
    m_task.start(
        [folder, clear, cancelled = m_cancelled] {
            return clear(folder, [cancelled](int /*removed*/) { return !*cancelled; });
        },
        [this](const qutils::ClearResult& result) {
            delete m_progress;
            emit finished(result);
        });
}

FolderClearing::~FolderClearing()
{
    *m_cancelled = true;
    delete m_progress;
}

} // namespace mivo::settings
