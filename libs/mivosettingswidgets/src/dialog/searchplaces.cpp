#include "dialog/searchplaces.h"

#include "mivosettingswidgets/settingwdigettranslatemanager.h"

#include <QtCore/QHash>
#include <QtCore/QMetaProperty>
#include <QtCore/QSet>
#include <QtGui/QTextDocument>
#include <QtGui/QTextDocumentFragment>
#include <QtWidgets/QAbstractSpinBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStyleOptionGroupBox>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace mivo::settings {

namespace {

constexpr int mostItems = 1000;
constexpr int longestText = 2000;

class Collector
{
public:
    void collect(QWidget* root, int section)
    {
        m_section = section;
        visit(root);
    }

    std::vector<SearchPlace> places;

private:
    void visit(QWidget* widget)
    {
        if (m_visited.contains(widget) || widget->isWindow() || isHiddenByItsPage(widget)) {
            return;
        }
        m_visited.insert(widget);
        const Kind& kind = kindOf(widget->metaObject());
        addTextsOf(widget, kind);
        if (kind.isCombo || kind.isSpinBox) {
            return; // its parts are no controls of their own
        }
        if (QLayout* layout = widget->layout()) {
            visit(layout);
        }
        for (QObject* child : widget->children()) {
            if (child->isWidgetType()) {
                visit(static_cast<QWidget*>(child));
            }
        }
    }

    /// What there is to know of a class of widgets.
    struct Kind
    {
        /// The properties that are texts of the page, whoever wrote the class. What a person types
        /// is none: it is the property that Qt calls the user's.
        std::vector<QMetaProperty> texts;
        bool isCombo = false;
        bool isSpinBox = false;
        bool isTabBar = false;
        bool isButton = false;
        bool isView = false;
    };

    void visit(const QLayout* layout)
    {
        for (int i = 0; i < layout->count(); ++i) {
            QLayoutItem* item = layout->itemAt(i);
            if (item->widget() != nullptr) {
                visit(item->widget());
            } else if (item->layout() != nullptr) {
                visit(item->layout());
            }
        }
    }

    static bool isHiddenByItsPage(const QWidget* widget)
    {
        // In a section that was never shown, everything is hidden, but not explicitly.
        return widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide)
               && qobject_cast<QTabWidget*>(widget->parentWidget()->parentWidget()) == nullptr;
    }

    void addTextsOf(QWidget* widget, const Kind& kind)
    {
        for (const QMetaProperty& property : kind.texts) {
            add(property.read(widget).toString());
        }
        if (kind.isCombo) {
            const auto* combo = static_cast<QComboBox*>(widget);
            for (int i = 0; i < qMin(combo->count(), mostItems); ++i) {
                add(combo->itemText(i));
            }
        } else if (kind.isTabBar) {
            const auto* tabs = static_cast<QTabBar*>(widget);
            for (int i = 0; i < qMin(tabs->count(), mostItems); ++i) {
                add(tabs->tabText(i));
            }
        } else if (kind.isButton) {
            if (const auto* button = qobject_cast<QPushButton*>(widget)) {
                addMenu(button->menu());
            } else if (const auto* tool = qobject_cast<QToolButton*>(widget)) {
                addMenu(tool->menu());
            }
            if (m_texts.isEmpty()) {
                add(widget->accessibleName()); // that of a button with an icon alone
            }
        }
        add(widget->toolTip());
        add(widget->whatsThis());
        addPlace(widget);

        if (const auto* header = qobject_cast<QHeaderView*>(kind.isView ? widget : nullptr)) {
            for (int i = 0; i < qMin(header->count(), mostItems) && header->model(); ++i) {
                add(header->model()->headerData(i, header->orientation()).toString());
            }
            addPlace(widget);
        } else if (kind.isView) {
            auto* view = static_cast<QAbstractItemView*>(widget);
            int left = mostItems;
            if (view->model() != nullptr) {
                addItems(view, view->rootIndex(), left);
            }
        }
    }

    void addItems(QAbstractItemView* view, const QModelIndex& parent, int& left)
    {
        const QAbstractItemModel& model = *view->model();
        const int columns = model.columnCount(parent);
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < columns; ++column) {
                if (--left < 0) {
                    return;
                }
                const QModelIndex item = model.index(row, column, parent);
                add(item.data().toString());
                add(item.data(Qt::ToolTipRole).toString());
                addPlace(view, item);
                if (model.hasChildren(item)) {
                    addItems(view, item, left);
                }
            }
        }
    }

    void addMenu(const QMenu* menu)
    {
        if (menu != nullptr) {
            for (const QAction* action : menu->actions()) {
                add(action->text());
            }
        }
    }

    void add(const QString& text)
    {
        if (!text.isEmpty() && !m_texts.contains(text)) {
            m_texts.append(text.left(longestText));
        }
    }

    void addPlace(QWidget* widget, const QModelIndex& item = {})
    {
        if (!m_texts.isEmpty()) {
            places.push_back({widget, item, m_section, m_texts, {}});
            m_texts.clear();
        }
    }

    const Kind& kindOf(const QMetaObject* type)
    {
        const auto known = m_kinds.constFind(type);
        if (known != m_kinds.constEnd()) {
            return **known;
        }
        auto kind = std::make_shared<Kind>();
        for (const char* name : {"text", "title", "description", "prefix", "suffix",
                                 "specialValueText", "placeholderText"}) {
            const QMetaProperty property = type->property(type->indexOfProperty(name));
            if (property.isWritable() && !property.isUser()) {
                kind->texts.push_back(property);
            }
        }
        kind->isCombo = type->inherits(&QComboBox::staticMetaObject);
        kind->isSpinBox = type->inherits(&QAbstractSpinBox::staticMetaObject);
        kind->isTabBar = type->inherits(&QTabBar::staticMetaObject);
        kind->isButton = type->inherits(&QAbstractButton::staticMetaObject);
        kind->isView = type->inherits(&QAbstractItemView::staticMetaObject);
        m_kinds.insert(type, kind);
        return *kind;
    }

    int m_section = 0;
    QStringList m_texts; // of the place that is read
    QSet<QWidget*> m_visited;
    QHash<const QMetaObject*, std::shared_ptr<Kind>> m_kinds;
};

/// The part of a widget that its text covers: a label or a box is often wider.
QRect textRect(QWidget* widget)
{
    if (auto* box = qobject_cast<QGroupBox*>(widget)) {
        QStyleOptionGroupBox option;
        option.initFrom(box);
        option.text = box->title();
        option.textAlignment = box->alignment();
        option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
        return box->style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel,
                                            box);
    }
    if (const auto* label = qobject_cast<QLabel*>(widget)) {
        return QStyle::alignedRect(label->layoutDirection(), label->alignment(),
                                   label->sizeHint().boundedTo(label->size()), label->rect());
    }
    return widget->rect();
}

QString plain(const QString& text)
{
    return text.contains('<') && Qt::mightBeRichText(text)
               ? QTextDocumentFragment::fromHtml(text).toPlainText()
               : text;
}

/// What stands between numbers, brackets and colons.
QStringList wordsOf(const QString& text)
{
    QStringList words;
    QString word;
    const auto end = [&] {
        word = word.trimmed();
        if (!word.isEmpty() && word.size() < text.size()) {
            words.append(word);
        }
        word.clear();
    };
    for (const QChar character : text) {
        if (character.isDigit() || character == '(' || character == ')' || character == ':') {
            end();
        } else {
            word.append(character);
        }
    }
    end();
    return words;
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

} // namespace

QRect SearchPlace::rectIn(const QWidget* root) const
{
    if (!widget || !widget->isVisible()) {
        return {};
    }
    QWidget* part = widget;
    QRect rect;
    if (const auto* view = qobject_cast<QAbstractItemView*>(part); view && item.isValid()) {
        part = view->viewport();
        rect = view->visualRect(item);
    } else {
        rect = textRect(part);
    }
    while (part != nullptr && part != root) {
        rect = (rect & part->rect()).translated(part->pos());
        part = part->parentWidget();
    }
    return part != nullptr ? rect : QRect();
}

QString searchable(const QString& text)
{
    // Only the upper case of a sharp s is written out.
    const QString decomposed =
        isAscii(text) ? text.toLower()
                      : text.normalized(QString::NormalizationForm_KD).toUpper().toCaseFolded();
    const auto counts = [](QChar character) {
        return character != '&' && character.category() != QChar::Mark_NonSpacing;
    };
    QString kept;
    kept.reserve(decomposed.size());
    std::copy_if(decomposed.cbegin(), decomposed.cend(), std::back_inserter(kept), counts);
    return kept.simplified();
}

std::vector<SearchPlace> findPlaces(const std::vector<std::pair<QWidget*, int>>& roots)
{
    Collector collector;
    for (const auto& [root, section] : roots) {
        collector.collect(root, section);
    }
    return std::move(collector.places);
}

void makeSearchable(std::vector<SearchPlace>& places)
{
    const QHash<QString, QStringList> others =
        SettingWdigetTranslateManager::instance().translator().otherTexts();
    for (SearchPlace& place : places) {
        place.searched.clear();
        for (const QString& text : std::as_const(place.shown)) {
            place.searched += searchable(plain(text)) + '\n';
            QStringList known = others.value(text);
            if (known.isEmpty() && !others.isEmpty()) {
                // A number and its word are put together by the page.
                for (const QString& word : wordsOf(text)) {
                    known += others.value(word);
                }
            }
            for (const QString& other : std::as_const(known)) {
                place.searched += searchable(plain(other)) + '\n';
            }
        }
    }
}

} // namespace mivo::settings
