#include "mivosettingswidgets/settingwidget.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/isettingbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QVariant>
#include <QtWidgets/QAccessibleWidget>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <map>

namespace mivo::settings {

namespace {

/// Qt posts each new widget an event that polishes it, even when it is hidden. Without that event
/// it is polished when it is first shown, which makes the start of the program faster.
void polishWhenShown(QWidget* widget)
{
    QCoreApplication::removePostedEvents(widget, QEvent::PolishRequest);
    const auto children = widget->findChildren<QWidget*>();
    for (QWidget* child : children) {
        QCoreApplication::removePostedEvents(child, QEvent::PolishRequest);
    }
}

/// For screen readers the section is an area with a name, as it takes the focus to be scrolled.
QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    return className == QLatin1String("mivo::settings::SettingWidget")
               ? new QAccessibleWidget(qobject_cast<QWidget*>(object), QAccessible::Pane)
               : nullptr;
}

} // namespace

class SettingWidget::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(SettingWidget* section) : owner(section), content(new QWidget(section))
    {
        content->setProperty("style", QStringLiteral("BG3"));
        column = new QVBoxLayout(content);
        column->setContentsMargins(20, 20, 20, 20);
        column->setSpacing(8);
        column->addStretch(1);
    }

    /// Sets the tab order of the pages from top to bottom, after a page was inserted at `position`.
    void orderTabStops(int position) const
    {
        QWidget* previous = nullptr;
        for (int i = std::max(0, position - 1); i < column->count() - 1; ++i) {
            for (QWidget* stop : tabStops(column->itemAt(i)->widget(), content)) {
                if (previous != nullptr && i >= position) {
                    QWidget::setTabOrder(previous, stop);
                }
                previous = stop;
            }
        }
    }

    SettingWidget* owner;
    QString title;
    QVBoxLayout* column = nullptr;
    QWidget* content;
    std::map<int, ISettingBox*> order;
};

SettingWidget::SettingWidget(QWidget* parent) : QScrollArea(parent)
{
    QAccessible::installFactory(makeInterface); // of several times, the first counts
    verticalScrollBar()->setContextMenuPolicy(Qt::NoContextMenu);
    horizontalScrollBar()->setContextMenuPolicy(Qt::NoContextMenu);
    setWidgetResizable(true);
    m_impl = std::make_unique<Impl>(this);
    setWidget(m_impl->content);
}

SettingWidget::~SettingWidget() = default;

void SettingWidget::insertSettingsBox(ISettingBox* box, int index) const
{
    if (index == -1) {
        index = m_impl->column->count() - 1;
    }
    ensurePolished(); // now, while it is cheap: polishing a parent polishes all of its children
    polishWhenShown(box);
    // Kept on purpose: a second page with a key is placed, but not recorded.
    const auto place = m_impl->order.emplace(index, box).first;
    const auto position = static_cast<int>(std::distance(m_impl->order.begin(), place));
    m_impl->column->insertWidget(position, box);
    m_impl->orderTabStops(position);
    connect(box, &ISettingBox::sigTitleTextChanged, this, &SettingWidget::sigTitleTextChanged);
    connect(box, &QObject::destroyed, m_impl.get(), [this, index, box] {
        const auto held = m_impl->order.find(index);
        if (held != m_impl->order.end() && held->second == box) {
            m_impl->order.erase(held);
        }
    });
}

void SettingWidget::setTitle(const QString& title) const
{
    m_impl->title = title;
}

QString SettingWidget::title() const
{
    return m_impl->title;
}

} // namespace mivo::settings

#include "settingwidget.moc"
