#pragma once

#include "project/programdispatch.h"

#include <QtWidgets/QTreeWidget>

#include <vector>

namespace mivohost {

/// The programs of the open project in their groups. GUI thread.
class ProgramList : public QTreeWidget
{
    Q_OBJECT

public:
    ProgramList();

    /// Shows the programs of `state`, in the language of now; the current one stays.
    void showPrograms(const ProgramDispatch::State& state);

signals:
    /// The user wants to play the program.
    void chosen(qint64 id);

private:
    std::vector<Project::Group> m_shownGroups;
    QString m_shownFades; // the text of their tips
};

} // namespace mivohost
