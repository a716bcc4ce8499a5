#include "kit/usualsize.h"

#include "mivosettingswidgets/controls.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleOption>

#include <algorithm>
#include <cmath>
#include <vector>

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

/// How large texts are, by font: the same ones are measured at each fit, and that takes longer than
/// all else of it.
class TextSizes : public QObject
{
public:
    static TextSizes& instance()
    {
        static QPointer<TextSizes> sizes; // goes with the application
        if (sizes == nullptr) {
            sizes = new TextSizes;
        }
        return *sizes;
    }

    int widthOf(const QString& line, const QWidget* widget)
    {
        return find(&OfFont::widths, line, widget, [&line](const QFontMetrics& metrics) {
            return static_cast<int>(std::ceil(QFontMetricsF(metrics).horizontalAdvance(line)));
        });
    }

    /// That of its letters: another script than the font's own may be higher.
    int heightOf(const QString& text, const QWidget* widget)
    {
        return find(&OfFont::heights, text, widget, [&text](const QFontMetrics& metrics) {
            return metrics.size(0, text).height();
        });
    }

private:
    using Sizes = QHash<QString, int>;

    struct OfFont
    {
        QFont font;
        int dotsPerInch = 0;
        Sizes widths{};
        Sizes heights{};
    };

    static constexpr std::size_t mostFonts = 8;
    static constexpr int mostTexts = 1000;

    TextSizes() : QObject(qApp)
    {
        connect(qApp, &QGuiApplication::fontDatabaseChanged, this, [this] { m_fonts.clear(); });
    }

    OfFont& of(const QFont& font, int dotsPerInch)
    {
        for (OfFont& sizes : m_fonts) {
            if (sizes.dotsPerInch == dotsPerInch && sizes.font == font) {
                return sizes;
            }
        }
        if (m_fonts.size() == mostFonts) {
            m_fonts.clear();
        }
        m_fonts.push_back({font, dotsPerInch});
        return m_fonts.back();
    }

    template <typename Measure>
    int find(Sizes OfFont::*kind, const QString& text, const QWidget* widget, Measure measure)
    {
        Sizes& sizes = of(widget->font(), widget->logicalDpiX()).*kind;
        const auto held = sizes.constFind(text);
        if (held != sizes.constEnd()) {
            return *held;
        }
        if (sizes.size() == mostTexts) {
            sizes.clear();
        }
        return *sizes.insert(text, measure(widget->fontMetrics()));
    }

    std::vector<OfFont> m_fonts;
};

/// The size hint of now: a combo box keeps that of when it was first shown, whatever its items
/// become.
QSize hintOf(const QWidget* widget)
{
    QSize hint = widget->sizeHint();
    if (qobject_cast<const QComboBox*>(widget) != nullptr) {
        int widest = 0;
        for (const QString& item : textsOf(widget)) {
            widest = std::max(widest, TextSizes::instance().widthOf(item, widget));
        }
        QStyleOptionComboBox option;
        option.initFrom(widget);
        const QSize content(widest, widget->fontMetrics().height());
        hint.setWidth(widget->style()
                          ->sizeFromContents(QStyle::CT_ComboBox, &option, content, widget)
                          .width());
    }
    return hint;
}

/// What a widget needs so that its text is not cut; at most its size hint. `usual` says which of
/// width and height are asked for; texts are measured no further than that needs, as it takes time.
QSize neededBy(const QWidget* widget, const QSize& usual)
{
    const QSize hint = hintOf(widget);
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
        return text.isEmpty() ? hint
                              : QSize(hint.width(), TextSizes::instance().heightOf(text, widget));
    }
    const QRect roomy(0, 0, 1000, 100);
    QSize around = roomy.size() - textArea(widget, roomy).size();
    // A button's text may reach into the padding above and below it.
    around = isEdit ? around + QSize(textMargins, 0) : QSize(around.width(), 0);
    QSize needed = around + QSize(0, metrics.height());
    const auto measured = [&](const QString& line) {
        auto& sizes = TextSizes::instance();
        return QSize(sizes.widthOf(line, widget),
                     usual.height() != noSize ? sizes.heightOf(line, widget) : 0);
    };
    const auto texts = textsOf(widget);
    for (auto line = texts.begin(); line != texts.end() && !suffices(needed); ++line) {
        needed = needed.expandedTo(around + measured(*line));
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
    if (page->layout() != nullptr && page->layout()->isEnabled()) {
        // The sizes that were set have asked for what is done now; what that asks for stays.
        QCoreApplication::removePostedEvents(page, QEvent::LayoutRequest);
        page->layout()->activate(); // before it is painted, or walked through
    }
}

} // namespace mivo::settings
