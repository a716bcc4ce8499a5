#include "mivosettingswidgets/settingwidget.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/isettingbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QPointer>
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
/// it is polished when it is first shown, which makes the start of the program faster. Takes these
/// events from pages as they come, since the removal of one searches all that is posted.
class PolishRequestFilter : public QObject
{
public:
    /// Until all that is posted now has come.
    static void filterPosted()
    {
        static QPointer<PolishRequestFilter> filter;
        if (filter == nullptr || !filter->m_filters) {
            filter = new PolishRequestFilter;
            QCoreApplication::postEvent(filter, new QEvent(QEvent::User), Qt::LowEventPriority);
        }
    }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        return m_filters && event->type() == QEvent::PolishRequest && isInPage(object);
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::User) {
            m_filters = false;
            deleteLater();
            return true;
        }
        return QObject::event(event);
    }

private:
    PolishRequestFilter() : QObject(QCoreApplication::instance())
    {
        parent()->installEventFilter(this);
    }

    static bool isInPage(const QObject* object)
    {
        while (object != nullptr && qobject_cast<const ISettingBox*>(object) == nullptr) {
            object = object->parent();
        }
        return object != nullptr;
    }

    bool m_filters = true;
};

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

    /// Sets the tab order of the pages from top to bottom, after a page with these stops was
    /// inserted at `position`.
    void orderTabStops(int position, const std::vector<QWidget*>& stops) const
    {
        QWidget* previous =
            position > 0 ? lastTabStop(column->itemAt(position - 1)->widget()) : nullptr;
        const bool areOthersBehind = previous != nullptr;
        const auto append = [&previous](const std::vector<QWidget*>& next) {
            for (QWidget* stop : next) {
                if (previous != nullptr) {
                    QWidget::setTabOrder(previous, stop);
                }
                previous = stop;
            }
        };
        append(stops);
        for (int i = position + 1; !areOthersBehind && i < column->count() - 1; ++i) {
            append(tabStops(column->itemAt(i)->widget(), content));
        }
    }

    /// The last of tabStops(page, content), or null; it stands near the end as a rule.
    QWidget* lastTabStop(const QWidget* page) const
    {
        QWidget* stop = content->previousInFocusChain();
        while (stop != content
               && ((stop->focusPolicy() & Qt::TabFocus) == 0 || stop->focusProxy() != nullptr
                   || !page->isAncestorOf(stop))) {
            stop = stop->previousInFocusChain();
        }
        return stop != content ? stop : nullptr;
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
    PolishRequestFilter::filterPosted();
    // Kept on purpose: a second page with a key is placed, but not recorded.
    const auto place = m_impl->order.emplace(index, box).first;
    const auto position = static_cast<int>(std::distance(m_impl->order.begin(), place));
    const auto stops = tabStops(box, box); // now, while the chain is its own as a rule
    m_impl->column->insertWidget(position, box);
    m_impl->orderTabStops(position, stops);
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
