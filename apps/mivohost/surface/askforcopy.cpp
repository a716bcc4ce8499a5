#include "surface/askforcopy.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "surface/mainwindow.h"

#include <QtCore/QDir>
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

void tellReplaced(MainWindow& window, const QString& path, const SqlitePersistence::Opened& opened)
{
    const QString aside = listText(opened.aside);
    const QString time = timeText(opened.copyTime);
    const bool isFromCopy = opened.copyTime.isValid();
    if (aside.isEmpty()) {
        window.showNotice(QLatin1String(isFromCopy ? "StoreMissingFromCopy" : "StoreMissing"),
                          isFromCopy ? time : QDir::toNativeSeparators(path));
        return;
    }
    hostLog()->error("the settings file was put aside as {}", aside.toStdString());
    window.showNotice(QLatin1String(isFromCopy ? "StoreFromCopy" : "StorePutAside"),
                      isFromCopy ? time : aside);
}

} // namespace mivohost
