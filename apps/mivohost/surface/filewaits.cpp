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
        // Queued: how it ended is told next. Where that calls the close off, or is told by a
        // dialog, the operator is to see it.
        connect(
            requests, &FileRequests::waitingChanged, this,
            [this] {
                if (m_sinceClose.isValid() && !isSaving()) {
                    callOffClose();
                    if (!QApplication::activeModalWidget()) {
                        emit saved();
                    }
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
