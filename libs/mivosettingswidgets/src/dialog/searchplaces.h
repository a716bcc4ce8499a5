#pragma once

#include <QtCore/QPersistentModelIndex>
#include <QtCore/QPointer>
#include <QtCore/QRect>
#include <QtCore/QStringList>
#include <QtWidgets/QWidget>

#include <utility>
#include <vector>

namespace mivo::settings {

/// Where in the dialog texts stand: at a control, or in an item of a list or table. GUI thread.
struct SearchPlace
{
    QPointer<QWidget> widget;
    QPersistentModelIndex item; ///< of the view `widget`; invalid where it is the widget itself
    int section = 0;
    QStringList shown; ///< its texts
    QString searched;  ///< the same and the other languages', as searchable() has them, one a line

    bool isAt(const SearchPlace& other) const
    {
        return widget == other.widget && item == other.item;
    }

    /// Whether it is the same place with the same texts.
    bool operator==(const SearchPlace& other) const
    {
        return isAt(other) && section == other.section && shown == other.shown;
    }

    /// What it covers of `root`, an ancestor of the widget, without what is scrolled out of sight;
    /// empty where nothing of it is seen.
    QRect rectIn(const QWidget* root) const;
};

/// The text as it is compared: without regard to case, accents, width, mnemonics and the kind of
/// its blanks.
QString searchable(const QString& text);

/// The texts of each root, with its section, and of what is in it, in the order in which it is laid
/// out. What a page has hidden is left out, and so is what a person typed. Of lists and texts that
/// are too long for a person, the first part counts.
std::vector<SearchPlace> findPlaces(const std::vector<std::pair<QWidget*, int>>& roots);

/// Fills in what is searched, which takes longer than all else.
void makeSearchable(std::vector<SearchPlace>& places);

} // namespace mivo::settings
