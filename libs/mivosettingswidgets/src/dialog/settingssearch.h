#pragma once

#include "dialog/searchplaces.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <vector>

class QButtonGroup;
class QLabel;
class QStackedWidget;
class QVBoxLayout;

namespace mivo::widgets {
class EditBox;
}

namespace mivo::settings {

class SearchMarks;

/// The search line of the settings dialog: dims the buttons of sections without what is looked
/// for, and marks it in the section that is shown. Pages know nothing of it. GUI thread.
class SettingsSearch : public QObject
{
public:
    /// `navigation` is the layout of the buttons' panel, which gets room for the line above them; a
    /// button's id is the index of its section.
    SettingsSearch(QWidget* dialog, QVBoxLayout* navigation, QButtonGroup* buttons,
                   QStackedWidget* sections);
    ~SettingsSearch() override;

    void translateLanguage();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void changed();
    void followTexts();
    bool readTexts();
    void search();
    int currentHit() const;
    void showHits();
    void go(int step);
    void scrollToCurrent();
    void enterCurrent();

    QWidget* m_dialog;
    QButtonGroup* m_buttons;
    QStackedWidget* m_sections;
    mivo::widgets::EditBox* m_line;
    QLabel* m_status;
    QPointer<SearchMarks> m_marks; // a child of the section that is shown
    QTimer m_watch;
    QString m_wanted; // as searchable(); empty, there is no search
    std::vector<SearchPlace> m_places;
    std::vector<const SearchPlace*> m_hits;
    SearchPlace m_current; // the one that Return led to
};

} // namespace mivo::settings
