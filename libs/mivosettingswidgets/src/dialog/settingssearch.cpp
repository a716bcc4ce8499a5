#include "dialog/settingssearch.h"

#include "dialog/searchmarks.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/editbox.h>
#include <mivowidgets/findkeys.h>

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTabWidget>

#include <algorithm>

namespace mivo::settings {

namespace {

constexpr int lineHeight = 26;
constexpr int statusHeight = 20;
constexpr int margin = 8;

/// What the pages of a section stand in.
QWidget* rootOf(QWidget* section)
{
    const auto* area = qobject_cast<QScrollArea*>(section);
    return area != nullptr && area->widget() != nullptr ? area->widget() : section;
}

/// Not by an effect: Qt goes through all controls of the dialog for each that it draws.
void dim(QWidget* button, bool dims)
{
    if (dims != button->property("dimmed").toBool()) {
        button->setProperty("dimmed", dims);
        QPalette palette;
        if (dims) { // for a host without a style sheet
            palette.setColor(QPalette::ButtonText,
                             palette.color(QPalette::Disabled, QPalette::ButtonText));
        }
        button->setPalette(palette);
        button->style()->unpolish(button); // the style sheet knows the property
        button->style()->polish(button);
    }
}

} // namespace

SettingsSearch::SettingsSearch(QWidget* dialog, QVBoxLayout* navigation, QButtonGroup* buttons,
                               QStackedWidget* sections)
    : m_dialog(dialog), m_buttons(buttons), m_sections(sections),
      m_line(new mivo::widgets::EditBox(navigation->parentWidget())),
      m_status(new QLabel(navigation->parentWidget()))
{
    QWidget* panel = navigation->parentWidget();
    m_line->setObjectName(QStringLiteral("settingsSearch"));
    m_line->setMaxLength(200);
    m_line->setGeometry(margin, margin, panel->maximumWidth() - 2 * margin, lineHeight);
    m_status->setObjectName(QStringLiteral("settingsSearchStatus"));
    m_status->setGeometry(margin, margin + lineHeight + 2, m_line->width(), statusHeight);
    // Beside the layout, where a button has the index of its section.
    QMargins margins = navigation->contentsMargins();
    margins.setTop(m_status->geometry().bottom() + margin);
    navigation->setContentsMargins(margins);

    panel->setFocusPolicy(Qt::TabFocus); // else it is no place in the tab order
    QWidget::setTabOrder(panel, m_line);
    panel->setFocusPolicy(Qt::NoFocus);
    m_buttons->button(0)->setFocus(); // the dialog opens as it does without a search

    mivo::widgets::goToByFindKeys(*m_line, *m_dialog);
    connect(m_line, &QLineEdit::textChanged, this, &SettingsSearch::changed);
    connect(m_sections, &QStackedWidget::currentChanged, this, &SettingsSearch::showHits);
    // Qt does not tell of a new text in a section that is not shown, and pages need not either.
    m_watch.setInterval(200);
    connect(&m_watch, &QTimer::timeout, this, &SettingsSearch::followTexts);
    m_line->installEventFilter(this);
    m_dialog->installEventFilter(this);
    translateLanguage();
}

SettingsSearch::~SettingsSearch() = default;

void SettingsSearch::translateLanguage()
{
    m_line->setPlaceholderText(text(QStringLiteral("SettingsSearch")));
    m_line->setAccessibleName(m_line->placeholderText());
    m_line->setToolTip(text(QStringLiteral("SettingsSearchTip")));
    showHits();
}

bool SettingsSearch::eventFilter(QObject* object, QEvent* event)
{
    if (object == m_dialog && event->type() == QEvent::Hide && !event->spontaneous()) {
        m_line->clear();
        m_places.clear();
    } else if (object == m_line && event->type() == QEvent::FocusIn) {
        followTexts(); // now, so that the first key does not wait for it
    }
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    const auto* press = static_cast<QKeyEvent*>(event);
    switch (press->key()) {
    case Qt::Key_Escape: // from whatever control did not take it
        if (object != m_dialog || m_line->text().isEmpty()) {
            return false;
        }
        m_line->clear();
        m_line->setFocus();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (object == m_line) {
            go((press->modifiers() & Qt::ShiftModifier) != 0 ? -1 : 1);
        }
        return object == m_line;
    case Qt::Key_Down:
        if (object == m_line) {
            enterCurrent();
        }
        return object == m_line;
    default:
        return false;
    }
}

void SettingsSearch::changed()
{
    if (!m_line->text().isEmpty()) {
        m_line->setClearButtonEnabled(true); // not before, as loading its icon takes long
    }
    const bool searchedBefore = !m_wanted.isEmpty();
    m_wanted = searchable(m_line->text());
    m_current = {};
    if (m_wanted.isEmpty()) {
        m_watch.stop();
    } else if (!searchedBefore) {
        if (m_places.empty()) {
            readTexts(); // else as they were at the focus, until they are followed
        }
        m_watch.start();
    }
    search();
}

void SettingsSearch::followTexts()
{
    if (readTexts()) {
        search();
    } else {
        showHits(); // what is marked may stand elsewhere now
    }
}

/// Whether they are others than before.
bool SettingsSearch::readTexts()
{
    std::vector<std::pair<QWidget*, int>> roots;
    for (int section = 0; section < m_sections->count(); ++section) {
        if (QWidget* button = m_buttons->button(section)) {
            roots.emplace_back(button, section);
        }
        roots.emplace_back(rootOf(m_sections->widget(section)), section);
    }
    std::vector<SearchPlace> places = findPlaces(roots);
    if (places == m_places) {
        return false;
    }
    makeSearchable(places);
    m_places = std::move(places);
    return true;
}

void SettingsSearch::search()
{
    m_hits.clear();
    for (const SearchPlace& place : m_places) {
        if (!m_wanted.isEmpty() && place.searched.contains(m_wanted)) {
            m_hits.push_back(&place);
        }
    }
    showHits();
}

/// Which of the hits Return has led to, or -1.
int SettingsSearch::currentHit() const
{
    const auto isCurrent = [this](const SearchPlace* hit) {
        return m_current.widget && hit->isAt(m_current);
    };
    const auto found = std::find_if(m_hits.begin(), m_hits.end(), isCurrent);
    return found != m_hits.end() ? static_cast<int>(found - m_hits.begin()) : -1;
}

void SettingsSearch::showHits()
{
    const int current = currentHit();
    const int shownSection = m_sections->currentIndex();
    QWidget* root = rootOf(m_sections->currentWidget());
    std::vector<int> counts(static_cast<std::size_t>(m_sections->count()));
    std::vector<QRect> rects;
    int currentRect = -1;
    for (const SearchPlace* hit : m_hits) {
        ++counts[static_cast<std::size_t>(hit->section)];
        const QRect rect = hit->section == shownSection ? hit->rectIn(root) : QRect();
        if (!rect.isEmpty()) {
            if (m_current.widget && hit->isAt(m_current)) {
                currentRect = static_cast<int>(rects.size());
            }
            rects.push_back(rect);
        }
    }
    if (!m_marks && !rects.empty()) {
        m_marks = new SearchMarks(root);
    }
    if (m_marks) {
        m_marks->mark(root, rects, currentRect);
    }

    const auto countText = [](int count) {
        return count == 0 ? text(QStringLiteral("SettingsSearchNone"))
                          : text(QStringLiteral("SettingsSearchCount")).arg(count);
    };
    for (int section = 0; section < m_sections->count(); ++section) {
        const int count = counts[static_cast<std::size_t>(section)];
        if (QWidget* button = m_buttons->button(section)) {
            dim(button, !m_wanted.isEmpty() && count == 0);
            button->setAccessibleDescription(m_wanted.isEmpty() ? QString() : countText(count));
        }
    }
    const int all = static_cast<int>(m_hits.size());
    m_status->setText(m_wanted.isEmpty() ? QString()
                      : current == -1
                          ? countText(all)
                          : text(QStringLiteral("SettingsSearchPlace")).arg(current + 1).arg(all));
    m_line->setAccessibleDescription(m_status->text());
}

/// To the next hit (1) or the one before (-1), first to one in the section that is shown or behind
/// it, and from the last one to the first.
void SettingsSearch::go(int step)
{
    followTexts();
    if (m_hits.empty()) {
        return;
    }
    int next = currentHit() + step;
    if (currentHit() == -1) {
        const auto isAhead = [this](const SearchPlace* hit) {
            return hit->section >= m_sections->currentIndex();
        };
        next =
            static_cast<int>(std::find_if(m_hits.begin(), m_hits.end(), isAhead) - m_hits.begin())
            + qMin(step, 0);
    }
    const int count = static_cast<int>(m_hits.size());
    m_current = *m_hits[static_cast<std::size_t>((next + count) % count)];
    if (m_sections->currentIndex() != m_current.section) {
        m_buttons->button(m_current.section)->click();
    }
    scrollToCurrent();
    showHits();
}

void SettingsSearch::scrollToCurrent()
{
    if (!m_sections->isAncestorOf(m_current.widget)) {
        return; // the name of a section
    }
    for (QWidget* part = m_current.widget; part != m_sections; part = part->parentWidget()) {
        if (auto* tabs = qobject_cast<QTabWidget*>(part->parentWidget()->parentWidget())) {
            tabs->setCurrentWidget(part);
        }
    }
    if (auto* view = qobject_cast<QAbstractItemView*>(m_current.widget);
        view != nullptr && m_current.item.isValid()) {
        view->scrollTo(m_current.item);
    }
    for (QWidget* part = m_current.widget; part != m_sections; part = part->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(part)) {
            const QRect rect = m_current.rectIn(area->widget());
            const QPoint centre = rect.center();
            area->ensureVisible(centre.x(), centre.y(), rect.width() / 2 + 20,
                                rect.height() / 2 + 20);
        }
    }
}

/// Gives the focus to the control that was found, or whose label or box was.
void SettingsSearch::enterCurrent()
{
    if (currentHit() == -1) {
        go(1);
    }
    QWidget* control = m_current.widget;
    if (const auto* label = qobject_cast<QLabel*>(control); label != nullptr && label->buddy()) {
        control = label->buddy();
    }
    if (control != nullptr && (control->focusPolicy() & Qt::TabFocus) == 0) {
        const auto stops = tabStops(control, control);
        control = stops.empty() ? nullptr : stops.front();
    }
    if (control != nullptr) {
        control->setFocus(Qt::TabFocusReason);
    }
}

} // namespace mivo::settings
