#pragma once

#include "mivosettingswidgets/controls.h"

#include <QtCore/QObject>

namespace mivo::settings {

/// Takes the values that are queued to a check box, and shows them without echo.
class StoredCheck : public QObject
{
    Q_OBJECT

public:
    StoredCheck(QAbstractButton* box, QObject* parent) : QObject(parent), m_box(box) {}

    /// Has the value shown from the event loop. Any thread.
    void queueChecked(bool on)
    {
        QMetaObject::invokeMethod(this, "setChecked", Qt::QueuedConnection, Q_ARG(bool, on));
    }

public slots:
    void setChecked(bool on)
    {
        showValue(m_box, on);
        emit shown(on);
    }

signals:
    void shown(bool /*on*/);

private:
    QAbstractButton* m_box;
};

} // namespace mivo::settings
