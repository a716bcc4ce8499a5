#pragma once

#include "mivohostkit/runtimethread.h"
#include "support/hostlanguage.h"
#include "support/teststore.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>

#include <QtCore/QElapsedTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QTimeEdit>

#include <memory>

/// Opening the settings dialog, ours and the floor: a plain QDialog with a QStackedWidget and as
/// many raw Qt controls, of the same kinds and with the same style sheets of their own, in as many
/// sections, which scroll, and group boxes.
namespace opening {

/// What the floor is made of: for each page its section, title and controls. One line an entry,
/// "kind<TAB>text<TAB>style sheet", so that it can be handed to another process.
using Recipe = QStringList;

/// The kind of a control as the floor knows it; empty for what is part of another control.
inline QString rawKind(const QWidget* control)
{
    if (qobject_cast<const QLineEdit*>(control)
        && qobject_cast<QAbstractSpinBox*>(control->parent())) {
        return {};
    }
    for (const QMetaObject* type = control->metaObject(); type; type = type->superClass()) {
        QString name = QString::fromLatin1(type->className());
        if (name.startsWith('Q')) {
            return name;
        }
    }
    return {};
}

inline QWidget* makeRawControl(const QString& kind, const QString& text)
{
    if (kind == "QLabel") {
        return new QLabel(text);
    }
    if (kind == "QCheckBox") {
        return new QCheckBox(text);
    }
    if (kind == "QRadioButton") {
        return new QRadioButton(text);
    }
    if (kind == "QPushButton") {
        return new QPushButton(text);
    }
    if (kind == "QDoubleSpinBox") {
        return new QDoubleSpinBox;
    }
    if (kind == "QListWidget") {
        return new QListWidget;
    }
    if (kind == "QTimeEdit") {
        return new QTimeEdit;
    }
    if (kind == "QLineEdit") {
        return new QLineEdit;
    }
    if (kind == "QComboBox") {
        auto* combo = new QComboBox;
        combo->addItems(text.split('|'));
        return combo;
    }
    return nullptr;
}

inline QString textOf(const QWidget* control)
{
    if (const auto* combo = qobject_cast<const QComboBox*>(control)) {
        QStringList items;
        for (int i = 0; i < combo->count(); ++i) {
            items.append(combo->itemText(i));
        }
        return items.join('|');
    }
    return control->property(qobject_cast<const QGroupBox*>(control) ? "title" : "text").toString();
}

inline Recipe recipeOf(mivohost::SettingsView& view)
{
    Recipe recipe;
    const auto* stack = view.dialog().findChild<QStackedWidget*>();
    for (int i = 0; i < stack->count(); ++i) {
        recipe.append("section\t");
        for (auto* page : view.pages()) {
            if (!stack->widget(i)->isAncestorOf(page)) {
                continue;
            }
            recipe.append("page\t" + page->title());
            const auto children = page->findChildren<QWidget*>();
            for (const QWidget* child : children) {
                recipe.append(rawKind(child) + '\t' + textOf(child) + '\t' + child->styleSheet());
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
    return recipeOf(view);
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
