#pragma once

#include "mivohostkit/runtimethread.h"
#include "rawdialog.h"
#include "support/hostlanguage.h"
#include "support/teststore.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>

#include <memory>

/// Opening the settings dialog, ours and its floor.
namespace opening {

/// The recipe of the dialog with all pages, in a language of the host.
inline Recipe makeRecipe(const QString& language = QStringLiteral("en"), bool showsValues = false)
{
    mivohost::RuntimeThread runtime;
    TestStore store;
    const auto recipeIn = [&](const QString& itsLanguage) {
        useHostLanguage(itsLanguage);
        mivohost::SettingsView view(runtime, store, nullptr);
        if (showsValues) {
            QApplication::processEvents();
        }
        return recipeOf(view.dialog(), view.pages());
    };
    const Recipe keys = recipeIn({});
    Recipe recipe = recipeIn(language);
    takeKeys(recipe, keys);
    return recipe;
}

/// The host's texts in the language of that name, as a bare QTranslator has them.
inline std::unique_ptr<QTranslator> loadTexts(const QString& language = QStringLiteral("en"))
{
    auto texts = std::make_unique<QTranslator>();
    for (const QString& file : mivo::style::languageFiles()) {
        if (texts->load(file) && texts->language().toLower() == language) {
            break;
        }
    }
    return texts;
}

class PaintWatch : public QObject
{
public:
    bool painted = false;

    bool eventFilter(QObject* /*object*/, QEvent* event) override
    {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }
};

/// Shows the dialog and returns once its first frame is drawn.
inline void drawFirstFrame(QDialog& dialog)
{
    PaintWatch watch;
    dialog.installEventFilter(&watch);
    dialog.show();
    while (!watch.painted) {
        QApplication::processEvents();
    }
    QApplication::processEvents();
    dialog.removeEventFilter(&watch);
}

/// Seconds that `work` takes; what it returns ends unmeasured.
template <typename Work>
double secondsFor(Work work)
{
    QElapsedTimer timer;
    timer.start();
    auto made = work();
    return 1e-9 * static_cast<double>(timer.nsecsElapsed());
}

inline double secondsToOpenOurs(mivohost::RuntimeThread& runtime, TestStore& store)
{
    return secondsFor([&] {
        auto view = std::make_unique<mivohost::SettingsView>(runtime, store, nullptr);
        drawFirstFrame(view->dialog());
        return view;
    });
}

inline double secondsToOpenRaw(const Recipe& recipe, const QTranslator& texts)
{
    return secondsFor([&] {
        auto raw = makeRaw(recipe, texts);
        drawFirstFrame(*raw.dialog);
        return raw;
    });
}

} // namespace opening
