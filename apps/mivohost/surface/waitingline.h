#pragma once

#include <QtWidgets/QWidget>

class QLabel;
class QPushButton;

namespace mivohost {

class FileRequests;

/// Shows for which file the operator waits, with a button that ends the wait; hidden while there is
/// none. GUI thread; the requests outlive it.
class WaitingLine : public QWidget
{
    Q_OBJECT

public:
    explicit WaitingLine(FileRequests& requests);

    void setTexts();

private:
    QLabel* m_text;
    QPushButton* m_stop;
    QString m_key;
    QString m_path;
};

} // namespace mivohost
