#include "surface/putback.h"

#include "base/hosttext.h"
#include "mivohostkit/runtimethread.h"

#include <mivoqutils/post.h>
#include <mivosettingswidgets/controls.h>
#include <mivosettingswidgets/isettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/tipdialog.h>

#include <QtGui/QContextMenuEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>

#include <algorithm>
#include <utility>

namespace mivohost {

using mivo::settings::ISettingBox;
using mivo::widgets::TipDialog;

namespace {

constexpr int buttonHeight = 24;
constexpr int pageMargin = 20; // of the section's column

} // namespace

QScrollArea* areaOf(QWidget* page)
{
    QWidget* ancestor = page;
    while (ancestor != nullptr && qobject_cast<QScrollArea*>(ancestor) == nullptr) {
        ancestor = ancestor->parentWidget();
    }
    return qobject_cast<QScrollArea*>(ancestor);
}

/// A dot at the corner of each control that differs, over all of a section.
class DifferenceMarks : public QWidget
{
public:
    explicit DifferenceMarks(QWidget* content) : QWidget(content)
    {
        setObjectName(QStringLiteral("differenceMarks"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        content->installEventFilter(this);
    }

    void mark(std::vector<QPointer<QWidget>> controls)
    {
        m_controls = std::move(controls);
        follow();
    }

    bool eventFilter(QObject* /*object*/, QEvent* event) override
    {
        if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest) {
            follow();
        }
        return false;
    }

    void follow()
    {
        setGeometry(parentWidget()->rect());
        setVisible(!m_controls.empty());
        raise();
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::Highlight));
        for (const auto& control : m_controls) {
            if (control && control->isVisible()) {
                const QSize size = control->sizeHint().boundedTo(control->size());
                const QRect shown = qobject_cast<QAbstractButton*>(control)
                                        ? QStyle::alignedRect(control->layoutDirection(),
                                                              Qt::AlignLeft | Qt::AlignVCenter,
                                                              size, control->rect())
                                        : control->rect();
                const bool mirrored = control->layoutDirection() == Qt::RightToLeft;
                painter.drawEllipse(
                    QPointF(control->mapTo(parentWidget(),
                                           mirrored ? shown.topLeft() : shown.topRight())),
                    4, 4);
            }
        }
    }

private:
    std::vector<QPointer<QWidget>> m_controls;
};

PutBack::PutBack(mivo::settings::SettingsDialog& dialog, const std::vector<Page>& pages,
                 RuntimeThread& runtime, SettingsStore& store)
    : m_dialog(dialog), m_runtime(runtime), m_store(store),
      m_rehearsal([this](std::vector<Difference> differences) { show(std::move(differences)); })
{
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(50); // several settings change at once
    connect(&m_refresh, &QTimer::timeout, this, &PutBack::refresh);

    const auto* stack = dialog.findChild<QStackedWidget*>();
    const auto* buttons = dialog.findChild<QButtonGroup*>();
    for (int id = 0; id < stack->count(); ++id) {
        Section section;
        section.area = qobject_cast<QScrollArea*>(stack->widget(id));
        section.navigation = buttons->button(id);
        for (const Page& page : pages) {
            if (areaOf(page.page) == section.area) {
                section.settings.insert(page.section);
            }
        }
        addButton(section);
        m_sections.push_back(section);
    }
    for (const Page& page : pages) {
        m_rehearsal.addPage(page.page, page.maker);
    }
    dialog.installEventFilter(this);
    m_connection = m_runtime.call([this] {
        return m_store.anySettingChanged.connect(
            [this] { mivo::qutils::post(&m_refresh, [this] { m_refresh.start(); }); });
    });
    translateLanguage();
}

PutBack::~PutBack()
{
    m_runtime.call([this] { m_connection.disconnect(); });
}

void PutBack::addButton(Section& section)
{
    QWidget* content = section.area->widget();
    section.marks = new DifferenceMarks(content);
    section.button = new mivo::widgets::PushButton(content);
    section.button->setObjectName(QStringLiteral("putBackSection"));
    section.button->setProperty("style", QStringLiteral("assist"));
    section.button->hide(); // while there is nothing to put back
    // Beside the layout, in which a page's place is counted.
    QMargins margins = content->layout()->contentsMargins();
    margins.setBottom(pageMargin + buttonHeight + pageMargin / 2);
    content->layout()->setContentsMargins(margins);
    const auto stops = mivo::settings::tabStops(content, content);
    if (stops.size() > 1) {
        QWidget::setTabOrder(*std::prev(stops.end(), 2), section.button);
    }
    connect(section.button, &QPushButton::clicked, this,
            [this, index = m_sections.size()] { askForSection(index); });
    content->installEventFilter(this);
    section.navigation->installEventFilter(this);
}

void PutBack::translateLanguage()
{
    for (const Section& section : m_sections) {
        section.button->setText(hostText("PutBackSection"));
        placeButton(section);
    }
    m_rehearsal.translateLanguage();
    m_refresh.start();
}

void PutBack::placeButton(const Section& section) const
{
    const QRect content = section.area->widget()->rect();
    const QSize size(section.button->sizeHint().width(), buttonHeight);
    section.button->setGeometry(
        QStyle::alignedRect(section.button->layoutDirection(), Qt::AlignRight | Qt::AlignBottom,
                            size, content.adjusted(pageMargin, 0, -pageMargin, -pageMargin / 2)));
}

bool PutBack::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Show && object == &m_dialog) {
        m_refresh.start();
    }
    if (event->type() != QEvent::ContextMenu && event->type() != QEvent::Resize) {
        return false;
    }
    for (std::size_t index = 0; index < m_sections.size(); ++index) {
        const Section& section = m_sections[index];
        if (event->type() == QEvent::Resize && object == section.area->widget()) {
            placeButton(section);
        } else if (event->type() == QEvent::ContextMenu && object == section.navigation) {
            auto* menu = new QMenu(&m_dialog);
            QAction* action = menu->addAction(hostText("PutBackSection"));
            action->setEnabled(!differingIn(section).empty());
            connect(action, &QAction::triggered, this, [this, index] { askForSection(index); });
            open(menu, static_cast<QContextMenuEvent*>(event)->globalPos());
            return true;
        }
    }
    const auto difference =
        std::find_if(m_differences.begin(), m_differences.end(),
                     [object](const Difference& one) { return one.control == object; });
    if (event->type() == QEvent::Resize || difference == m_differences.end()) {
        return false;
    }
    showMenu(*difference, static_cast<QContextMenuEvent*>(event)->globalPos());
    return true;
}

void PutBack::open(QMenu* menu, const QPoint& place)
{
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(place);
}

/// The control's own menu, where it is one for editing text, and what puts it back.
void PutBack::showMenu(const Difference& difference, const QPoint& place)
{
    auto* line = qobject_cast<QLineEdit*>(difference.control);
    if (line == nullptr && qobject_cast<QAbstractSpinBox*>(difference.control)) {
        line = difference.control->findChild<QLineEdit*>();
    }
    QMenu* menu = line != nullptr ? line->createStandardContextMenu() : new QMenu(&m_dialog);
    if (line != nullptr) {
        menu->addSeparator();
    }
    QString text = difference.defaultText;
    QAction* action =
        menu->addAction(text.isEmpty() ? hostText("PutBackToDefault")
                                       : hostText("PutBackTo").arg(text.replace('&', "&&")));
    connect(action, &QAction::triggered, this, [this, names = difference.settings] {
        Values defaults;
        for (const auto& setting : m_settings) {
            if (names.contains(setting.name)) {
                defaults.emplace_back(setting.name, setting.fallback);
            }
        }
        set(defaults);
    });
    open(menu, place);
}

void PutBack::refresh()
{
    if (m_dialog.isVisible()) {
        m_settings = m_runtime.call([this] { return m_store.all(); });
        m_rehearsal.start(m_settings);
    }
}

void PutBack::show(std::vector<Difference> differences)
{
    for (const Difference& old : m_differences) {
        if (old.control) {
            old.control->removeEventFilter(this);
        }
    }
    m_differences = std::move(differences);
    for (const Section& section : m_sections) {
        std::vector<QPointer<QWidget>> controls;
        for (const Difference& difference : m_differences) {
            if (section.area->isAncestorOf(difference.control)) {
                controls.push_back(difference.control);
                difference.control->installEventFilter(this);
            }
        }
        section.marks->mark(std::move(controls));
        section.button->setVisible(!differingIn(section).empty());
    }
}

Rehearsal::Settings PutBack::differingIn(const Section& section) const
{
    Rehearsal::Settings differing;
    for (const auto& setting : m_settings) {
        if (setting.isFollowed && section.settings.count(setting.section) != 0
            && setting.value != setting.fallback) {
            differing.push_back(setting);
        }
    }
    return differing;
}

QString PutBack::nameOf(std::size_t index) const
{
    return qobject_cast<QAbstractButton*>(m_sections[index].navigation)->text();
}

void PutBack::askForSection(std::size_t index)
{
    m_settings = m_runtime.call([this] { return m_store.all(); });
    const QPointer<PutBack> self(this); // a prompt runs an event loop of its own
    const QString question =
        hostText("PutBackQuestion").arg(nameOf(index)).arg(differingIn(m_sections[index]).size());
    if (TipDialog::ask(&m_dialog, TipDialog::question, question, hostText("Cancel"),
                       hostText("PutBack"))
            != TipDialog::accepted
        || !self) {
        return;
    }
    if (!m_keep) {
        putSectionBack(index, {});
        return;
    }
    m_keep([self, index](const QString& file, const QString& error) {
        if (self && error.isEmpty()) {
            self->putSectionBack(index, file);
        } else if (self) {
            TipDialog::ask(&self->m_dialog, TipDialog::warning,
                           hostText("PutBackNotKept").arg(error), {}, hostText("PutBackClose"));
        }
    });
}

void PutBack::putSectionBack(std::size_t index, const QString& keptIn)
{
    m_settings = m_runtime.call([this] { return m_store.all(); });
    Values before;
    Values defaults;
    for (const auto& setting : differingIn(m_sections[index])) {
        before.emplace_back(setting.name, setting.value);
        defaults.emplace_back(setting.name, setting.fallback);
    }
    set(defaults);
    m_settings = m_runtime.call([this] { return m_store.all(); });
    const auto left = differingIn(m_sections[index]).size(); // what could not be saved
    const QPointer<PutBack> self(this);
    const int answer = TipDialog::ask(
        &m_dialog, left == 0 ? TipDialog::information : TipDialog::warning,
        left == 0 ? hostText("PutBackDone").arg(nameOf(index))
                  : hostText("PutBackPartly").arg(nameOf(index)).arg(left).arg(defaults.size()),
        hostText("PutBackClose"), hostText("PutBackUndo"),
        keptIn.isEmpty() ? QString() : hostText("PutBackKeptIn").arg(keptIn));
    if (answer == TipDialog::accepted && self) {
        set(before);
    }
}

void PutBack::set(const Values& values)
{
    m_runtime.call([this, &values] {
        for (const auto& [name, value] : values) {
            m_store.set(name, value);
        }
    });
}

} // namespace mivohost
