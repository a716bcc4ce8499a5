#include "mivowidgets/accessible_p.h"

#include "mivowidgets/alertlabel.h"

#include <QtCore/QRegularExpression>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace mivo::widgets {

namespace {

class NameLabel : public QLabel
{
    Q_OBJECT

public:
    explicit NameLabel(QWidget* widget) : QLabel(widget->parentWidget())
    {
        useAccessibleInterfaces();
        setBuddy(widget);
        hide();
    }
};

/// A label that has another role than others, or another name than its text.
class LabelInterface : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QString text(QAccessible::Text kind) const override
    {
        if (kind != QAccessible::Name) {
            return QAccessibleWidget::text(kind);
        }
        const auto* label = static_cast<const QLabel*>(widget());
        const QWidget* named = label->buddy();
        return named == nullptr ? label->text() : named->accessibleName();
    }
};

/// A button that is clicked where Qt would only toggle it, which those do not notice who wait for
/// clicks; one of which only one can be checked is a radio button.
class ButtonInterface : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QAccessible::Role role() const override
    {
        const QButtonGroup* group = button()->group();
        const bool isOneOf = group != nullptr ? group->exclusive() : button()->autoExclusive();
        return !button()->isCheckable() ? QAccessible::Button
               : isOneOf                ? QAccessible::RadioButton
                                        : QAccessible::CheckBox;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button()->isCheckable();
        state.checked = button()->isChecked();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind != QAccessible::Name || !button()->accessibleName().isEmpty()) {
            return QAccessibleWidget::text(kind);
        }
        static const QRegularExpression mnemonic(QStringLiteral("\\(&\\w\\)|&(?!&)"));
        return button()->text().remove(mnemonic);
    }

    QStringList actionNames() const override
    {
        return button()->isEnabled() ? QStringList(pressAction()) + QAccessibleWidget::actionNames()
                                     : QStringList();
    }

    void doAction(const QString& name) override
    {
        const bool toggles = name == toggleAction() && button()->isCheckable(); // as on Windows
        if (name == pressAction() || toggles) {
            // Not within this call: a prompt may open.
            QMetaObject::invokeMethod(button(), &QAbstractButton::click, Qt::QueuedConnection);
        } else {
            QAccessibleWidget::doAction(name);
        }
    }

private:
    QAbstractButton* button() const { return static_cast<QAbstractButton*>(widget()); }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    auto* widget = qobject_cast<QWidget*>(object);
    if (className == QLatin1String("mivo::widgets::AlertLabel")) {
        return new LabelInterface(widget, QAccessible::Notification);
    }
    if (qobject_cast<NameLabel*>(widget) != nullptr) {
        return new LabelInterface(widget, QAccessible::StaticText);
    }
    if (className == QLatin1String("mivo::widgets::ShortCutCover")) {
        return new QAccessibleWidget(widget, QAccessible::Button);
    }
    if (className == QLatin1String("mivo::widgets::CheckBox")
        || className == QLatin1String("QRadioButton")
        || (className == QLatin1String("mivo::widgets::PushButton")
            && static_cast<QPushButton*>(widget)->menu() == nullptr)) {
        return new ButtonInterface(widget, QAccessible::Button);
    }
    return nullptr;
}

} // namespace

void useAccessibleInterfaces()
{
    QAccessible::installFactory(makeInterface); // of several times, the first counts
}

QWidget* makeNameLabel(QWidget* widget)
{
    const auto labels =
        widget->parentWidget()->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    const bool isLabelled =
        std::any_of(labels.begin(), labels.end(),
                    [widget](const QLabel* label) { return label->buddy() == widget; });
    return isLabelled ? nullptr : new NameLabel(widget);
}

} // namespace mivo::widgets

#include "accessible.moc"
