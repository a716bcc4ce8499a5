#pragma once

#include "mivohostkit/runtimethread.h"
#include "rawcontrols.h"
#include "support/hostlanguage.h"
#include "support/teststore.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

#include <memory>

/// Opening the settings dialog, ours and the floor: a plain QDialog with a QStackedWidget and as
/// many raw Qt controls, of the same kinds and with the same style sheets of their own, in as many
/// sections, which scroll, and group boxes.
namespace opening {

/// What the floor is made of: for each page its section, title and controls. One line an entry,
/// "kind<TAB>text<TAB>style sheet", so that it can be handed to another process.
using Recipe = QStringList;

inline Recipe recipeOf(const mivo::settings::SettingsDialog& dialog,
                       const std::vector<mivo::settings::ISettingBox*>& pages)
{
    Recipe recipe;
    const auto* stack = dialog.findChild<QStackedWidget*>();
    for (int i = 0; i < stack->count(); ++i) {
        recipe.append("section\t");
        for (const auto* page : pages) {
            if (!stack->widget(i)->isAncestorOf(page)) {
                continue;
            }
            recipe.append("page\t" + page->title());
            const auto children = page->findChildren<QWidget*>();
            for (const QWidget* child : children) {
                recipe.append(entryOf(child));
            }
        }
    }
    return recipe;
}

inline Recipe makeRecipe()
{
    mivohost::RuntimeThread runtime;
    TestStore store;
    mivohost::SettingsView view(runtime, store, nullptr);
    return recipeOf(view.dialog(), view.pages());
}

struct RawDialog
{
    std::unique_ptr<QDialog> dialog = std::make_unique<QDialog>();
    std::vector<QWidget*> controls; // by the recipe's entries; some are null
};

inline RawDialog makeRaw(const Recipe& recipe)
{
    RawDialog raw;
    auto& dialog = raw.dialog;
    dialog->setFixedSize(1080, 800);
    auto* row = new QHBoxLayout(dialog.get());
    auto* navigation = new QVBoxLayout;
    auto* stack = new QStackedWidget;
    row->addLayout(navigation);
    row->addWidget(stack);
    QVBoxLayout* section = nullptr;
    QVBoxLayout* page = nullptr;
    for (const QString& line : recipe) {
        const QString kind = line.section('\t', 0, 0);
        const QString text = line.section('\t', 1, 1);
        const QString sheet = line.section('\t', 2);
        if (kind == "section") {
            navigation->addWidget(new QPushButton(QStringLiteral("Section")));
            auto* widget = new QWidget;
            section = new QVBoxLayout(widget);
            auto* area = new QScrollArea;
            area->setWidgetResizable(true);
            area->setWidget(widget);
            stack->addWidget(area);
            raw.controls.push_back(nullptr);
        } else if (kind == "page") {
            auto* box = new QGroupBox(text);
            page = new QVBoxLayout(box);
            section->addWidget(box);
            raw.controls.push_back(box);
        } else {
            QWidget* control = makeRawControl(kind, text);
            if (control != nullptr) {
                page->addWidget(control);
                if (!sheet.isEmpty()) {
                    control->setStyleSheet(sheet);
                }
            }
            raw.controls.push_back(control);
        }
    }
    return raw;
}

/// Sets every text to that of a recipe in another language.
inline void setRawTexts(const RawDialog& raw, const Recipe& recipe)
{
    for (std::size_t i = 0; i < raw.controls.size(); ++i) {
        QWidget* control = raw.controls[i];
        const QString text = recipe[static_cast<int>(i)].section('\t', 1, 1);
        if (auto* label = qobject_cast<QLabel*>(control)) {
            label->setText(text);
        } else if (auto* button = qobject_cast<QAbstractButton*>(control)) {
            button->setText(text);
        } else if (auto* box = qobject_cast<QGroupBox*>(control)) {
            box->setTitle(text);
        } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
            const QStringList items = text.split('|');
            for (int item = 0; item < items.size(); ++item) {
                combo->setItemText(item, items[item]);
            }
        }
    }
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

inline double secondsToOpenRaw(const Recipe& recipe)
{
    return secondsFor([&] {
        auto raw = makeRaw(recipe);
        drawFirstFrame(*raw.dialog);
        return raw;
    });
}

} // namespace opening
