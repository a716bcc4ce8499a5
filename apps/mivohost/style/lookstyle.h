#pragma once

#include "looknames.h"
#include "mivostyle/style.h"
#include "sheetrules.h"

#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QStyleOption>

class QLabel;
class QPushButton;

namespace mivo::style {

/// In a look, what is "rrggbb" in the dark one.
QColor colorOf(Look look, const char* dark);

/// Draws surfaces, controls and what has a name (looknames.h), and gives widgets the rules of the
/// style sheet that are about them: menus when they open, what is hidden when it is shown, what has
/// a fixed size before it is first painted. The sheets of a page and of a widget go before these
/// rules where they are as specific, and colors of theirs or of a palette before those that are
/// drawn here. GUI thread.
class LookStyle : public QProxyStyle
{
public:
    LookStyle(Look look, const QString& sheet);

    static QFont font();
    /// The application's palette in a look.
    static QPalette palette(Look look);

    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
    void unpolish(QWidget* widget) override;
    using QProxyStyle::unpolish;
    bool eventFilter(QObject* object, QEvent* event) override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* more) const override;

private:
    void polishLabel(QLabel& label) const;
    void polishButton(QPushButton& button) const;

    void drawButton(const QStyleOptionButton& button, QPainter& painter,
                    const QWidget* widget) const;
    void drawAction(const QStyleOptionButton& button, QPainter& painter, const QColor& ground,
                    const QColor& border, const QWidget* widget) const;
    void drawSection(const QStyleOptionButton& button, QPainter& painter) const;
    void drawButtonText(QStyleOptionButton& button, QPainter& painter, const QWidget* widget) const;
    void drawLabelIcon(const QLabel& label, const QRect& rect, QPainter& painter) const;
    void drawIndicator(const QStyleOption& option, QPainter& painter, bool isRadio) const;
    void drawOption(const QStyleOptionButton& button, QPainter& painter, const QWidget* widget,
                    bool isRadio) const;
    void drawField(const QStyleOption& option, QPainter& painter, bool isReadOnly = false) const;
    void drawSpinButton(const QStyleOptionSpinBox& spin, SubControl part, QPainter& painter,
                        const QWidget* widget) const;
    void drawGroup(const QStyleOptionGroupBox& group, QPainter& painter,
                   const QWidget* widget) const;
    QColor color(const char* dark) const { return colorOf(m_look, dark); }

    void giveRules(QWidget& widget) const;
    bool drawSurface(const QStyleOption& option, QPainter& painter, const QWidget* widget) const;

    Look m_look;
    SheetRules m_rules;
};

} // namespace mivo::style
