// Linked with an example: operates its dialog as a person would once it runs, and ends the program,
// with 0 where each page showed its texts and what its store made of the edit.

#include <mivosettingswidgets/isettingbox.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>

namespace {

/// Whether the first number of the page becomes `value`.
bool becomes(const mivo::settings::ISettingBox* page, double value)
{
    const QDeadlineTimer deadline(10000);
    const auto* number = page->findChild<QDoubleSpinBox*>();
    while (number->value() != value && !deadline.hasExpired()) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return number->value() == value;
}

bool isAsExpected()
{
    const bool chinese = QCoreApplication::arguments().value(1) == "zh_cn";
    for (QWidget* window : QApplication::topLevelWidgets()) {
        for (auto* page : window->findChildren<mivo::settings::ISettingBox*>()) {
            const QString title = page->title();
            auto* number = page->findChild<QDoubleSpinBox*>();
            if (title == (chinese ? "预览" : "Preview") && becomes(page, 25)) {
                // The store corrects what is beyond its range, and the page shows what it holds.
                number->setValue(500);
                Q_EMIT number->editingFinished();
                return becomes(page, 60);
            }
            if (title == (chinese ? "幻灯片放映" : "Slide shows") && becomes(page, 1920)) {
                // The store has the size follow the preset that is chosen.
                auto* presets = page->findChild<QComboBox*>();
                presets->setCurrentIndex(presets->currentIndex() + 1);
                return becomes(page, 800) && QFile::exists(":/mivo/style/icons/check.svg");
            }
        }
    }
    return false;
}

void startOperating()
{
    QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(isAsExpected() ? 0 : 1); });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startOperating)
