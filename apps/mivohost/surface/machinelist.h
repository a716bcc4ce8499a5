#pragma once

#include <QtWidgets/QDialog>

class QTableWidget;

namespace mivohost {

class Synchroniser;

/// The machines of the show: names, addresses, versions, and which are connected. GUI thread; the
/// synchroniser must outlive it.
class MachineList : public QDialog
{
    Q_OBJECT

public:
    explicit MachineList(const Synchroniser& synchroniser, QWidget* parent = nullptr);

    /// Makes every text again in the language in force.
    void setTexts();

private:
    void fill();

    const Synchroniser& m_synchroniser;
    QTableWidget* m_table;
};

} // namespace mivohost
