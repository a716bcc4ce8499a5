#pragma once

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QVBoxLayout>

#include <vector>

namespace mivohost {

class FileRequests;
class WaitingLine;

/// Shows for which files the operator waits, and has a close of the window wait for those that are
/// being saved. GUI thread; it only borrows the requests.
class FileWaits : public QVBoxLayout
{
    Q_OBJECT

public:
    explicit FileWaits(const std::vector<FileRequests*>& files);

    void setTexts();

    /// Whether a close is to wait now. No longer when it is tried again while the wait is shown:
    /// then nobody waits for the files any more.
    bool holdUpClose();

    /// The close that waits is not wanted any more.
    void callOffClose() { m_sinceClose.invalidate(); }

signals:
    /// The files are saved for which a close waits.
    void saved();

private:
    bool isSaving() const;

    const std::vector<FileRequests*> m_files;
    std::vector<WaitingLine*> m_lines;
    QElapsedTimer m_sinceClose; // that waits; invalid while none does
};

} // namespace mivohost
