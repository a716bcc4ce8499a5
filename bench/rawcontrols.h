#pragma once

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QTimeEdit>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QTreeWidget>

/// Raw Qt controls of the same kinds as those of a program.
namespace opening {

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

inline QWidget* makeRawControl(const QString& kind, const QString& text, QWidget* parent = nullptr)
{
    if (kind == "QLabel") {
        return new QLabel(text, parent);
    }
    if (kind == "QCheckBox") {
        return new QCheckBox(text, parent);
    }
    if (kind == "QRadioButton") {
        return new QRadioButton(text, parent);
    }
    if (kind == "QPushButton") {
        return new QPushButton(text, parent);
    }
    if (kind == "QDoubleSpinBox") {
        return new QDoubleSpinBox(parent);
    }
    if (kind == "QListWidget") {
        return new QListWidget(parent);
    }
    if (kind == "QTimeEdit") {
        return new QTimeEdit(parent);
    }
    if (kind == "QLineEdit") {
        return new QLineEdit(parent);
    }
    if (kind == "QPlainTextEdit") {
        return new QPlainTextEdit(parent);
    }
    if (kind == "QTableView") {
        return new QTableView(parent);
    }
    if (kind == "QTableWidget") {
        return new QTableWidget(0, 3, parent);
    }
    if (kind == "QToolButton") {
        auto* button = new QToolButton(parent);
        button->setText(text);
        return button;
    }
    if (kind == "QTreeWidget") {
        return new QTreeWidget(parent);
    }
    if (kind == "QComboBox") {
        auto* combo = new QComboBox(parent);
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

/// A line for makeRawControl(): "kind<TAB>text<TAB>style sheet".
inline QString entryOf(const QWidget* control)
{
    return rawKind(control) + '\t' + textOf(control) + '\t' + control->styleSheet();
}

} // namespace opening
