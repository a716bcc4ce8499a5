#include "surface/pictures.h"

#include "surface/actionpanel.h"
#include "surface/importdialog.h"
#include "surface/mainwindow.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>

#include <QtCore/QDir>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

namespace mivohost {

namespace {

QScrollArea* sectionOf(QWidget* page)
{
    QWidget* ancestor = page;
    while (ancestor != nullptr && qobject_cast<QScrollArea*>(ancestor) == nullptr) {
        ancestor = ancestor->parentWidget();
    }
    return qobject_cast<QScrollArea*>(ancestor);
}

/// Chooses the page's section as a person does, by its button, and scrolls to the page.
void showPage(QWidget* dialog, QWidget* page)
{
    auto* section = sectionOf(page);
    auto* sections = dialog->findChild<QStackedWidget*>();
    const auto buttons = dialog->findChildren<QPushButton*>();
    int id = sections->indexOf(section);
    for (QPushButton* button : buttons) {
        if (button->property("style") == QLatin1String("settingBtn") && id-- == 0) {
            button->setFocus();
            button->click();
        }
    }
    QApplication::processEvents();
    section->ensureWidgetVisible(page);
    QApplication::processEvents();
}

} // namespace

bool drawPictures(MainWindow& window, const QString& folder)
{
    const QDir directory(folder);
    if (!directory.mkpath(QStringLiteral("."))) {
        return false;
    }
    const qreal scale = window.devicePixelRatioF();
    const QString scaleName = scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale);
    const auto save = [&](QWidget& widget, const QString& name, const QString& language) {
        QApplication::processEvents();
        QApplication::processEvents(); // what is laid out anew may lay out more
        return widget.grab().save(
            directory.filePath(QStringLiteral("%1-%2%3.png").arg(name, language, scaleName)));
    };

    const SettingsFile sample = SettingsFile::read(
        R"({"schema":"mivo-settings","version":1,"programVersion":"1.0.0","machine":"stage-left",
            "date":"2026-05-04T10:00:00Z","settings":{"undoStep":80,"fadeInTime":1.5,
            "blackScreenMute":true,"imageHierarchy":0,"pictureDuration":10000,
            "timedShutdown":{"enabled":true,"weekDayIndex":5,"time":"23:30:00"},
            "graphicsCard":"Card 2","osc":{"enabled":true,"port":9001},
            "autoSaveProjectFilesInterval":60,"outputBrightness":80}})");
    bool saved = true;
    window.show();
    window.openSettings();
    auto& dialog = window.settings().dialog();
    if (auto* add = dialog.findChild<QPushButton*>(QStringLiteral("addMapping"))) {
        add->click(); // an editor, since there is none at first
    }
    for (const QString& language : {QStringLiteral("en"), QStringLiteral("zh_cn")}) {
        window.switchLanguage(language);
        saved = save(window, QStringLiteral("mainwindow"), language) && saved;
        window.actions().setEditing(true);
        saved = save(window, QStringLiteral("mainwindow-editing"), language) && saved;
        window.actions().setEditing(false);
        window.transfer().offer(sample);
        auto* import = window.findChild<ImportDialog*>();
        saved = save(*import, QStringLiteral("importdialog"), language) && saved;
        delete import;
        for (auto* page : window.settings().pages()) {
            showPage(&dialog, page);
            const auto className = QString::fromLatin1(page->metaObject()->className()).toLower();
            saved = save(dialog, className.section(QStringLiteral("::"), -1), language) && saved;
        }
    }
    return saved;
}

} // namespace mivohost
