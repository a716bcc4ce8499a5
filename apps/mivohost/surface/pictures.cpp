#include "surface/pictures.h"

#include "peripherals/inputtap.h"
#include "surface/actionpanel.h"
#include "surface/actiontools.h"
#include "surface/bindingsheet.h"
#include "surface/importdialog.h"
#include "surface/inputmonitor.h"
#include "surface/mainwindow.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

namespace mivohost {

namespace {

/// Chooses the page's section as a person does, by its button, and scrolls to the page.
void showPage(QWidget* dialog, QWidget* page)
{
    auto* section = areaOf(page);
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

/// Searches, and goes to the first place that was found.
void search(QWidget& dialog, const QString& wanted)
{
    auto* line = dialog.findChild<QLineEdit*>(QStringLiteral("settingsSearch"));
    line->setText(wanted);
    line->setFocus();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(line, &press);
}

/// Chooses an option of the page, so that it differs from its default, or its default again.
void toggleOption(SettingsView& settings, const QString& name)
{
    settings.dialog().findChild<QCheckBox*>(name)->click();
    const std::size_t marks = settings.putBack()->differences().empty() ? 1 : 0;
    QElapsedTimer elapsed;
    elapsed.start();
    while (settings.putBack()->differences().size() != marks && elapsed.elapsed() < 5000) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
}

/// One message of each kind, as controllers would send them.
void putSamples(InputTap& tap)
{
    const QString desk = QStringLiteral("192.168.1.20");
    QByteArray levels("Art-Net\0\x00\x50\x00\x0e\x00\x00\x00\x00\x02\x00", 18);
    levels.append(QByteArray(512, '\0'));
    tap.put(PeripheralDmx, desk, levels);
    levels[18 + 11] = '\xc8';
    tap.put(PeripheralDmx, desk, levels);
    tap.put(PeripheralMidi, QStringLiteral("Fader wing"), "\x90\x3c\x64");
    tap.put(PeripheralMidi, QStringLiteral("Fader wing"), "\xb0\x07\x50");
    const QString tablet = QStringLiteral("192.168.1.31");
    tap.put(PeripheralOsc, tablet, {"/Peripherals/Stage/Take\0,i\0\0\0\0\0\1", 32});
    tap.put(PeripheralOsc, tablet, {"/cue/go\0,fs\0\x3f\0\0\0Act 2\0\0\0", 24});
}

} // namespace

bool drawPictures(MainWindow& window, InputTap& tap, const QString& folder)
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
        InputMonitor& monitor = window.actions().tools().monitor();
        monitor.openWindow();
        saved = save(monitor, QStringLiteral("inputmonitor-empty"), language) && saved;
        putSamples(tap);
        monitor.read();
        saved = save(monitor, QStringLiteral("inputmonitor"), language) && saved;
        monitor.clear();
        monitor.close();
        BindingSheet& sheet = window.actions().tools().sheet();
        sheet.openWindow();
        saved = save(sheet, QStringLiteral("bindingsheet"), language) && saved;
        sheet.close();
        window.transfer().offer(sample);
        auto* import = window.findChild<ImportDialog*>();
        saved = save(*import, QStringLiteral("importdialog"), language) && saved;
        delete import;
        for (auto* page : window.settings().pages()) {
            showPage(&dialog, page);
            const auto className = QString::fromLatin1(page->metaObject()->className()).toLower();
            saved = save(dialog, className.section(QStringLiteral("::"), -1), language) && saved;
        }
        search(dialog, QStringLiteral("fade")); // in English, whatever the language
        saved = save(dialog, QStringLiteral("search"), language) && saved;
        search(dialog, {});
        toggleOption(window.settings(), QStringLiteral("MFPS")); // of the section shown by now
        saved = save(dialog, QStringLiteral("putback"), language) && saved;
        toggleOption(window.settings(), QStringLiteral("MFPS"));
    }
    return saved;
}

} // namespace mivohost
