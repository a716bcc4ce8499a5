#include "surface/askforcopy.h"

#include "base/hosttext.h"

#include <QtCore/QTimer>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

namespace mivohost {

bool wantsCopy(const QString& path, const QString& reason, const QString& copyTime)
{
    constexpr int secondsToAnswer = 30;
    QMessageBox question(
        QMessageBox::Warning, QStringLiteral("mivohost"),
        hostText("StoreDamaged")
            .arg(path, reasonText(reason), copyTime, QString::number(secondsToAnswer)));
    question.setTextFormat(Qt::PlainText);
    auto* use = question.addButton(hostText("UseCopy"), QMessageBox::AcceptRole);
    question.setEscapeButton(question.addButton(hostText("Quit"), QMessageBox::RejectRole));
    question.setDefaultButton(use);
    QTimer::singleShot(secondsToAnswer * 1000, use, &QPushButton::click);
    question.exec();
    return question.clickedButton() == use;
}

} // namespace mivohost
