#include "surface/waitingline.h"

#include "base/filerequests.h"
#include "base/hosttext.h"

#include <mivowidgets/alertlabel.h>

#include <QtCore/QDir>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

namespace mivohost {

WaitingLine::WaitingLine(FileRequests& requests)
    : m_text(new mivo::widgets::AlertLabel), m_stop(new QPushButton)
{
    m_text->setObjectName(QStringLiteral("waiting"));
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    m_stop->setObjectName(QStringLiteral("stopWaiting"));
    m_stop->setAutoDefault(false); // Return is for the dialog that the line stands in
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_text, 1);
    row->addWidget(m_stop);
    connect(m_stop, &QPushButton::clicked, &requests, &FileRequests::cancel);
    connect(&requests, &FileRequests::slow, this, [this](const QString& key, const QString& path) {
        m_key = key;
        m_path = path;
        setTexts();
        setVisible(!key.isEmpty());
    });
    hide();
}

void WaitingLine::setTexts()
{
    m_stop->setText(hostText("StopWaiting"));
    m_text->setText(m_key.isEmpty() ? QString()
                                    : hostText(m_key).arg(QDir::toNativeSeparators(m_path)));
}

} // namespace mivohost
