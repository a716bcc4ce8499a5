#include "kit/usualsize.h"

#include "mivosettingswidgets/controls.h"

#include <QtWidgets/QLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleOption>

#include <algorithm>

namespace mivo::settings {

namespace {

constexpr int noSize = -1;
constexpr int textMargins = 5; // what an edit keeps free beside its text, and the cursor

/// Where the style draws the text of a control of the size `within`; it may leave more than that.
QRect textArea(const QWidget* control, const QRect& within)
{
    const auto part = [&](QStyleOptionComplex& option, QStyle::ComplexControl kind,
                          QStyle::SubControl field) {
        option.initFrom(control);
        option.rect = within;
        option.subControls = QStyle::SC_All;
        return control->style()->subControlRect(kind, &option, field, control);
    };
    if (const auto* spin = qobject_cast<const QAbstractSpinBox*>(control)) {
        QStyleOptionSpinBox option;
        option.frame = spin->hasFrame();
        option.buttonSymbols = spin->buttonSymbols();
        return part(option, QStyle::CC_SpinBox, QStyle::SC_SpinBoxEditField);
    }
    if (qobject_cast<const QComboBox*>(control) != nullptr) {
        QStyleOptionComboBox option;
        return part(option, QStyle::CC_ComboBox, QStyle::SC_ComboBoxEditField);
    }
    if (qobject_cast<const QPushButton*>(control) != nullptr) {
        QStyleOptionButton option;
        option.initFrom(control);
        option.rect = within;
        return control->style()->subElementRect(QStyle::SE_PushButtonContents, &option, control);
    }
    QStyleOptionFrame option;
    option.initFrom(control);
    option.rect = within;
    option.lineWidth =
        control->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, control);
    return control->style()->subElementRect(QStyle::SE_LineEditContents, &option, control);
}

QStringList textsOf(const QWidget* control)
{
    if (const auto* box = qobject_cast<const QDoubleSpinBox*>(control)) {
        return {box->prefix() + box->textFromValue(box->maximum()) + box->suffix(),
                box->prefix() + box->textFromValue(box->minimum()) + box->suffix()};
    }
    if (const auto* combo = qobject_cast<const QComboBox*>(control)) {
        QStringList texts;
        for (int item = 0; item < combo->count(); ++item) {
            texts.append(combo->itemText(item));
        }
        return texts;
    }
    return {control->property("text").toString()}; // as edits and buttons have
}

/// What a widget needs so that its text is not cut; at most its size hint. `usual` says which of
/// width and height are asked for; texts are measured no further than that needs, as it takes time.
QSize neededBy(const QWidget* widget, const QSize& usual)
{
    const QSize hint = widget->sizeHint();
    const auto suffices = [&](const QSize& size) {
        return (usual.width() == noSize || size.width() >= hint.width())
               && (usual.height() == noSize || size.height() >= hint.height());
    };
    if (suffices(usual)) {
        return usual;
    }
    const QFontMetrics metrics = widget->fontMetrics();
    const bool isEdit = qobject_cast<const QAbstractSpinBox*>(widget) != nullptr
                        || qobject_cast<const QComboBox*>(widget) != nullptr
                        || qobject_cast<const QLineEdit*>(widget) != nullptr;
    if (!isEdit && qobject_cast<const QPushButton*>(widget) == nullptr) {
        const QString text =
            usual.height() == noSize ? QString() : widget->property("text").toString();
        return text.isEmpty() ? hint : QSize(hint.width(), metrics.size(0, text).height());
    }
    const QRect roomy(0, 0, 1000, 100);
    QSize around = roomy.size() - textArea(widget, roomy).size();
    // A button's text may reach into the padding above and below it.
    around = isEdit ? around + QSize(textMargins, 0) : QSize(around.width(), 0);
    QSize needed = around + QSize(0, metrics.height());
    const auto texts = textsOf(widget);
    for (auto line = texts.begin(); line != texts.end() && !suffices(needed); ++line) {
        needed = needed.expandedTo(around + metrics.size(Qt::TextSingleLine, *line));
    }
    if (qobject_cast<const QLineEdit*>(widget) != nullptr) {
        needed.setHeight(around.height() + metrics.height()); // as Qt draws every text
    }
    return needed.boundedTo(hint);
}

} // namespace

void fitUsualSizes(QWidget* page)
{
    auto widgets = page->findChildren<QWidget*>();
    widgets.append(page); // last: its size depends on theirs
    for (QWidget* widget : qAsConst(widgets)) {
        const auto names = widget->dynamicPropertyNames(); // few; property() is slow
        const auto usual = [&](const char* name) {
            const bool has = std::find(names.begin(), names.end(), name) != names.end();
            return has ? widget->property(name).toInt() : noSize;
        };
        const QSize size(usual(usualWidth), usual(usualHeight));
        if (size == QSize(noSize, noSize)) {
            continue;
        }
        const QSize needed = size.expandedTo(neededBy(widget, size));
        if (size.width() != noSize) {
            widget->setFixedWidth(needed.width());
        }
        if (size.height() != noSize) {
            widget->setFixedHeight(needed.height());
        }
    }
    if (page->layout() != nullptr) {
        page->layout()->activate(); // before it is painted, or walked through
    }
}

} // namespace mivo::settings
