#include "folders/folderclearing.h"

#include "folders/folderwork.h"

namespace mivo::settings {

using qutils::FileTask;

FolderClearing::FolderClearing(const QString& folder, QWidget* page, const Clear& clear)
    : m_folder(folder), m_page(page)
{
    connect(&m_task, &FileTask::slow, this, [this] {
        m_isSlow = true;
        showProgress();
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

void FolderClearing::showProgress()
{
    if (m_isSlow && !m_progress && m_page && m_page->isVisible()) {
        m_progress = showFolderProgress(m_page, "ClearingFolder", m_folder);
        connect(m_progress, &QProgressDialog::canceled, this, [this] { *m_cancelled = true; });
    }
}

} // namespace mivo::settings
