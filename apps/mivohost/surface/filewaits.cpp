#include "surface/filewaits.h"

#include "base/filerequests.h"
#include "surface/waitingline.h"

#include <QtWidgets/QApplication>

#include <algorithm>

namespace mivohost {

FileWaits::FileWaits(const std::vector<FileRequests*>& files) : m_files(files)
{
    for (FileRequests* requests : files) {
        m_lines.push_back(new WaitingLine(*requests));
        addWidget(m_lines.back());
        // Queued: how it ended is told next, perhaps by a dialog, and that may call the close off.
        connect(
            requests, &FileRequests::waitingChanged, this,
            [this] {
                if (m_sinceClose.isValid() && !isSaving() && !QApplication::activeModalWidget()) {
                    callOffClose();
                    emit saved();
                }
            },
            Qt::QueuedConnection);
    }
}

void FileWaits::setTexts()
{
    for (WaitingLine* line : m_lines) {
        line->setTexts();
    }
}

bool FileWaits::isSaving() const
{
    return std::any_of(m_files.begin(), m_files.end(),
                       [](const FileRequests* requests) { return requests->isSaving(); });
}

bool FileWaits::holdUpClose()
{
    constexpr int shownAfter = 500; // ms, as FileRequests::slow()
    if (isSaving() && !m_sinceClose.isValid()) {
        m_sinceClose.start();
    }
    if (isSaving() && !m_sinceClose.hasExpired(shownAfter)) {
        return true;
    }
    for (FileRequests* requests : m_files) {
        if (requests->isSaving()) {
            requests->cancel();
        }
    }
    callOffClose();
    return false;
}

} // namespace mivohost
