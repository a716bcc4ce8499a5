// Linked with an example: operates its dialog as a person would once it runs, and ends the program,
// with 0 where each page showed its texts and what its store made of the edit.

#include <mivosettingswidgets/isettingbox.h>

#include <QtCore/QDeadlineTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDoubleSpinBox>

namespace {

template <typename Condition>
bool comesTrue(Condition condition)
{
    const QDeadlineTimer deadline(10000);
    while (!condition() && !deadline.hasExpired()) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return condition();
}

mivo::settings::ISettingBox* findPage(const QString& title)
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        for (auto* page : window->findChildren<mivo::settings::ISettingBox*>()) {
            if (page->title() == title) {
                return page;
            }
        }
    }
    return nullptr;
}

/// The store corrects what is beyond its range, and the page shows what it holds then.
bool showsCorrected(QWidget* page)
{
    auto* rate = page->findChild<QDoubleSpinBox*>();
    const bool loaded = comesTrue([rate] { return rate->value() == 25; });
    rate->setValue(500);
    Q_EMIT rate->editingFinished();
    return loaded && comesTrue([rate] { return rate->value() == 60; });
}

/// The store has the size follow the preset that is chosen.
bool showsFollowing(QWidget* page)
{
    auto* presets = page->findChild<QComboBox*>();
    auto* width = page->findChild<QDoubleSpinBox*>();
    const bool loaded = comesTrue([width] { return width->value() == 1920; });
    presets->setCurrentIndex(presets->currentIndex() + 1);
    return loaded && comesTrue([width] { return width->value() != 1920; });
}

bool isAsExpected()
{
    const bool chinese = QCoreApplication::arguments().value(1) == "zh_cn";
    if (auto* own = findPage(chinese ? "预览" : "Preview")) {
        return showsCorrected(own);
    }
    auto* slideShows = findPage(chinese ? "幻灯片放映" : "Slide shows");
    return slideShows != nullptr && showsFollowing(slideShows);
}

void operate()
{
    QCoreApplication::exit(isAsExpected() ? 0 : 1);
}

void startOperating()
{
    QTimer::singleShot(0, qApp, operate);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startOperating)
