#include "surface/pictures.h"

#include "surface/actionpanel.h"
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
