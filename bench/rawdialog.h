#pragma once

#include "rawcontrols.h"

#include <QtCore/QDataStream>
#include <QtCore/QHash>
#include <QtCore/QSignalBlocker>
#include <QtCore/QTranslator>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

#include <memory>
#include <vector>

/// The floor of a settings dialog: a plain QDialog with a QStackedWidget, and in as many sections,
/// which scroll, as many group boxes with as many rows of raw Qt controls of the same kinds, which
/// are set up as those of the dialog: ranges, sizes, names, style sheets of their own.
namespace opening {

/// A control, or the section or page that the following ones are in, as a person sees it.
struct RawPart
{
    QString kind; // as makeRawControl() knows it, "section" or "page"
    QString text;
    QString key; // of the text
    int row = -1;
    int buddy = -1; // index of the part that a label names
    QString sheet;
    QString objectName;
    QString style; // the property by which a style sheet knows the control
    QString accessibleName;
    QString accessibleDescription;
    QString toolTip;
    int width = -1;
    int height = -1;
    bool isEnabled = true;
    bool isHidden = false;
    bool isCheckable = false;
    bool isReadOnly = false;
    bool isWrapping = false;
    int decimals = 0;
    double minimum = 0;
    double maximum = 0;
    QString suffix;
    QString format;
    QVariant value;
    QMargins margins; // of a page, in its frame
    int spacing = -1; // of its rows
};

using Recipe = std::vector<RawPart>;

inline QVariant valueOf(const QWidget* control)
{
    if (const auto* combo = qobject_cast<const QComboBox*>(control)) {
        return combo->currentIndex();
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(control)) {
        return button->isCheckable() ? QVariant(button->isChecked()) : QVariant();
    }
    for (const char* name : {"value", "time", "plainText"}) {
        if (control->metaObject()->indexOfProperty(name) != -1) {
            return control->property(name);
        }
    }
    return qobject_cast<const QLineEdit*>(control) ? control->property("text") : QVariant();
}

inline void showRawValue(QWidget* control, const QVariant& value)
{
    const QSignalBlocker blocker(control);
    if (auto* spin = qobject_cast<QDoubleSpinBox*>(control)) {
        spin->setValue(value.toDouble());
    } else if (auto* time = qobject_cast<QTimeEdit*>(control)) {
        time->setTime(value.toTime());
    } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
        combo->setCurrentIndex(value.toInt());
    } else if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        button->setChecked(value.toBool());
    } else if (auto* edit = qobject_cast<QLineEdit*>(control)) {
        edit->setText(value.toString());
    } else if (auto* text = qobject_cast<QPlainTextEdit*>(control)) {
        text->setPlainText(value.toString());
    }
}

inline RawPart partOf(const QWidget* control)
{
    RawPart part;
    part.kind = rawKind(control);
    part.text = textOf(control);
    part.sheet = control->styleSheet();
    part.objectName = control->objectName();
    part.style = control->property("style").toString();
    part.accessibleName = control->accessibleName();
    part.accessibleDescription = control->accessibleDescription();
    part.toolTip = control->toolTip();
    part.width = control->minimumWidth() == control->maximumWidth() ? control->minimumWidth() : -1;
    part.height =
        control->minimumHeight() == control->maximumHeight() ? control->minimumHeight() : -1;
    part.isEnabled = control->isEnabledTo(control->parentWidget());
    part.isHidden = control->testAttribute(Qt::WA_WState_ExplicitShowHide) && control->isHidden();
    part.isCheckable = control->property("checkable").toBool();
    part.isReadOnly = control->property("readOnly").toBool();
    part.isWrapping = control->property("wordWrap").toBool();
    if (const auto* spin = qobject_cast<const QDoubleSpinBox*>(control)) {
        part.decimals = spin->decimals();
        part.minimum = spin->minimum();
        part.maximum = spin->maximum();
        part.suffix = spin->suffix();
    } else if (const auto* time = qobject_cast<const QTimeEdit*>(control)) {
        part.format = time->displayFormat();
    }
    if (control->parentWidget()->isEnabled()) { // else of a service that is not there
        part.value = valueOf(control);
    }
    return part;
}

/// The widgets of a layout in their order, and the row of controls side by side that each is in, or
/// -1; those that stand one below the other within a row are in rows of their own.
inline void addInOrder(const QLayout* layout, int row, QVector<QPair<QWidget*, int>>& widgets,
                       int& rows)
{
    int parts = 0;
    for (int i = 0; i < layout->count(); ++i) {
        parts += layout->itemAt(i)->spacerItem() == nullptr ? 1 : 0;
    }
    if (qobject_cast<const QHBoxLayout*>(layout) == nullptr) {
        row = parts > 1 ? -1 : row;
    } else if (row == -1) {
        row = rows++;
    }
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (QWidget* widget = item->widget()) {
            widgets.append({widget, row});
            if (widget->layout() != nullptr) {
                addInOrder(widget->layout(), -1, widgets, rows);
            }
        } else if (item->layout() != nullptr) {
            addInOrder(item->layout(), row, widgets, rows);
        }
    }
}

/// The recipe of a dialog and its pages.
template <typename Pages>
Recipe recipeOf(const QDialog& dialog, const Pages& pages)
{
    Recipe recipe;
    QHash<const QWidget*, int> indexes;
    int rows = 0;
    const auto* stack = dialog.findChild<QStackedWidget*>();
    for (int i = 0; i < stack->count(); ++i) {
        recipe.emplace_back().kind = QStringLiteral("section");
        for (const auto* page : pages) {
            if (!stack->widget(i)->isAncestorOf(page)) {
                continue;
            }
            recipe.emplace_back().kind = QStringLiteral("page");
            recipe.back().text = page->title();
            recipe.back().objectName = page->objectName();
            recipe.back().margins = page->layout()->contentsMargins();
            recipe.back().spacing = page->layout()->spacing();
            QVector<QPair<QWidget*, int>> widgets;
            addInOrder(page->layout(), -1, widgets, rows);
            for (const auto& [widget, row] : widgets) {
                indexes[widget] = static_cast<int>(recipe.size());
                recipe.push_back(partOf(widget));
                recipe.back().row = row;
            }
        }
    }
    for (auto child = indexes.begin(); child != indexes.end(); ++child) {
        if (const auto* label = qobject_cast<const QLabel*>(child.key())) {
            recipe[static_cast<std::size_t>(child.value())].buddy =
                indexes.value(label->buddy(), -1);
        }
    }
    return recipe;
}

/// Also takes the keys of the texts from the recipe of the same dialog without a language.
inline void takeKeys(Recipe& recipe, const Recipe& untranslated)
{
    for (std::size_t i = 0; i < recipe.size(); ++i) {
        recipe[i].key = untranslated[i].text;
    }
}

/// What a bare QTranslator says for a key; `otherwise` where that is none, as of a number.
inline QString translated(const QTranslator& texts, const QString& key, const QString& otherwise)
{
    const QString text =
        key.isEmpty() ? QString()
                      : texts.translate("SystemSettingsDialog", key.toUtf8().constData(), "Widget");
    return text.isEmpty() ? otherwise : text;
}

struct RawDialog
{
    std::unique_ptr<QDialog> dialog = std::make_unique<QDialog>();
    std::vector<QWidget*> parts; // by the recipe's; some are null
};

/// Looks every text up and sets it. The parts of a recipe in that language say what is no text.
inline void setRawTexts(const RawDialog& raw, const Recipe& recipe, const QTranslator& texts)
{
    for (std::size_t i = 0; i < raw.parts.size(); ++i) {
        QWidget* part = raw.parts[i];
        const RawPart& wanted = recipe[i];
        if (auto* combo = qobject_cast<QComboBox*>(part)) {
            const auto items = wanted.text.splitRef('|');
            const auto keys = wanted.key.splitRef('|');
            for (int item = 0; item < items.size(); ++item) {
                combo->setItemText(
                    item, translated(texts, keys.value(item).toString(), items[item].toString()));
            }
            continue;
        }
        if (wanted.text.isEmpty()) {
            continue;
        }
        const QString text = translated(texts, wanted.key, wanted.text);
        if (auto* label = qobject_cast<QLabel*>(part)) {
            label->setText(text);
        } else if (auto* button = qobject_cast<QAbstractButton*>(part)) {
            button->setText(text);
        } else if (auto* box = qobject_cast<QGroupBox*>(part)) {
            box->setTitle(text);
        }
    }
}

/// Has what a person does in a control noticed.
inline void follow(QWidget* control, QDialog* dialog)
{
    const auto changed = [dialog] { dialog->setWindowModified(true); };
    if (auto* edit = qobject_cast<QAbstractSpinBox*>(control)) {
        QObject::connect(edit, &QAbstractSpinBox::editingFinished, dialog, changed);
    } else if (auto* combo = qobject_cast<QComboBox*>(control)) {
        QObject::connect(combo, qOverload<int>(&QComboBox::currentIndexChanged), dialog, changed);
    } else if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        QObject::connect(button, &QAbstractButton::clicked, dialog, changed);
    } else if (auto* line = qobject_cast<QLineEdit*>(control)) {
        QObject::connect(line, &QLineEdit::editingFinished, dialog, changed);
    }
}

inline void setUp(QWidget* control, const RawPart& part)
{
    if (!part.objectName.isEmpty()) {
        control->setObjectName(part.objectName);
    }
    if (!part.style.isEmpty()) {
        control->setProperty("style", part.style);
    }
    if (!part.accessibleName.isEmpty()) {
        control->setAccessibleName(part.accessibleName);
    }
    if (!part.accessibleDescription.isEmpty()) {
        control->setAccessibleDescription(part.accessibleDescription);
    }
    if (!part.toolTip.isEmpty()) {
        control->setToolTip(part.toolTip);
    }
    if (part.width != -1) {
        control->setFixedWidth(part.width);
    }
    if (part.height != -1) {
        control->setFixedHeight(part.height);
    }
    if (!part.isEnabled) {
        control->setEnabled(false);
    }
    if (part.isHidden) {
        control->hide();
    }
    if (auto* spin = qobject_cast<QDoubleSpinBox*>(control)) {
        spin->setDecimals(part.decimals);
        spin->setRange(part.minimum, part.maximum);
        if (!part.suffix.isEmpty()) {
            spin->setSuffix(part.suffix);
        }
    } else if (auto* time = qobject_cast<QTimeEdit*>(control)) {
        time->setDisplayFormat(part.format);
    } else if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        button->setCheckable(part.isCheckable);
    } else if (auto* line = qobject_cast<QLineEdit*>(control); line && part.isReadOnly) {
        line->setReadOnly(true);
    } else if (auto* label = qobject_cast<QLabel*>(control); label && part.isWrapping) {
        label->setWordWrap(true);
    }
    if (!part.sheet.isEmpty()) {
        control->setStyleSheet(part.sheet);
    }
    if (part.value.isValid()) {
        showRawValue(control, part.value);
    }
}

inline RawDialog makeRaw(const Recipe& recipe, const QTranslator& texts)
{
    RawDialog raw;
    QDialog* dialog = raw.dialog.get();
    dialog->setFixedSize(1080, 800);
    auto* row = new QHBoxLayout(dialog);
    auto* navigation = new QVBoxLayout;
    auto* stack = new QStackedWidget;
    row->addLayout(navigation);
    row->addWidget(stack);
    QVBoxLayout* section = nullptr;
    QVBoxLayout* page = nullptr;
    QHBoxLayout* controls = nullptr;
    QWidget* parent = nullptr;
    int shownRow = -1;
    for (const RawPart& part : recipe) {
        if (part.kind == QLatin1String("section")) {
            auto* button = new QPushButton(QStringLiteral("Section"));
            navigation->addWidget(button);
            QObject::connect(button, &QPushButton::clicked, stack,
                             [stack, index = stack->count()] { stack->setCurrentIndex(index); });
            auto* widget = new QWidget;
            section = new QVBoxLayout(widget);
            section->setContentsMargins(20, 20, 20, 20);
            auto* area = new QScrollArea;
            area->setWidgetResizable(true);
            area->setWidget(widget);
            stack->addWidget(area);
            raw.parts.push_back(nullptr);
        } else if (part.kind == QLatin1String("page")) {
            auto* box = new QGroupBox(translated(texts, part.key, part.text));
            box->setObjectName(part.objectName);
            page = new QVBoxLayout(box);
            page->setContentsMargins(part.margins);
            page->setSpacing(part.spacing);
            section->addWidget(box);
            parent = box;
            shownRow = -1;
            raw.parts.push_back(box);
        } else {
            // The items of a combo box are not looked up: the floor would have to split the keys.
            const bool isCombo = part.kind == QLatin1String("QComboBox");
            const QString text = isCombo ? part.text : translated(texts, part.key, part.text);
            QWidget* control = makeRawControl(part.kind, text, parent);
            raw.parts.push_back(control);
            if (control == nullptr) {
                continue;
            }
            if (part.row == -1) {
                page->addWidget(control);
            } else {
                if (part.row != shownRow) {
                    controls = new QHBoxLayout;
                    controls->addStretch();
                    page->addLayout(controls);
                    shownRow = part.row;
                }
                controls->insertWidget(controls->count() - 1, control, part.isWrapping ? 1 : 0);
            }
            setUp(control, part);
            follow(control, dialog);
        }
    }
    for (std::size_t i = 0; i < recipe.size(); ++i) {
        if (recipe[i].buddy != -1) {
            auto* label = qobject_cast<QLabel*>(raw.parts[i]);
            label->setBuddy(raw.parts[static_cast<std::size_t>(recipe[i].buddy)]);
        }
    }
    return raw;
}

/// @{
/// A recipe as a line of text, for another process.
inline QByteArray toLine(const Recipe& recipe)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    for (const RawPart& p : recipe) {
        stream << p.kind << p.text << p.key << p.row << p.buddy << p.sheet << p.objectName
               << p.style << p.accessibleName << p.accessibleDescription << p.toolTip << p.width
               << p.height << p.isEnabled << p.isHidden << p.isCheckable << p.isReadOnly
               << p.isWrapping << p.decimals << p.minimum << p.maximum << p.suffix << p.format
               << p.value << p.margins.left() << p.margins.top() << p.margins.right()
               << p.margins.bottom() << p.spacing;
    }
    return bytes.toBase64();
}

inline Recipe fromLine(const QByteArray& line)
{
    Recipe recipe;
    const QByteArray bytes = QByteArray::fromBase64(line);
    QDataStream stream(bytes);
    while (!stream.atEnd()) {
        RawPart& p = recipe.emplace_back();
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        stream >> p.kind >> p.text >> p.key >> p.row >> p.buddy >> p.sheet >> p.objectName
            >> p.style >> p.accessibleName >> p.accessibleDescription >> p.toolTip >> p.width
            >> p.height >> p.isEnabled >> p.isHidden >> p.isCheckable >> p.isReadOnly
            >> p.isWrapping >> p.decimals >> p.minimum >> p.maximum >> p.suffix >> p.format
            >> p.value >> left >> top >> right >> bottom >> p.spacing;
        p.margins = QMargins(left, top, right, bottom);
    }
    return recipe;
}
/// @}

} // namespace opening
