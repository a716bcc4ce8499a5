#include <mivosettingswidgets/settingsdialog.h>

#include "support/logcapture.h"
#include "support/pagecases.h"
#include "support/plainpage.h"
#include "support/testruntime.h"
#include "support/teststore.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivosettingswidgets/settingwidget.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivowidgets/spineditbox.h>

#include <gtest/gtest.h>

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStackedWidget>

#include <regex>
#include <set>

namespace settingsdialogtest {

using namespace mivo::settings;

namespace {

class Dialog : public ::testing::Test
{
protected:
    Dialog() { translator().switchLanguage(QString()); }

    static velorn::trans::Translator& translator()
    {
        return SettingWdigetTranslateManager::instance().translator();
    }

    PlainPage* insert(const QString& title, int priorityIndex = -1)
    {
        auto* page = new PlainPage(title, priorityIndex);
        dialog.insertSettingBox(page);
        return page;
    }

    QButtonGroup* group() { return dialog.findChild<QButtonGroup*>(); }
    QStackedWidget* stack() { return dialog.findChild<QStackedWidget*>(); }
    QPushButton* button(int id) { return qobject_cast<QPushButton*>(group()->button(id)); }

    SettingsDialog dialog;
    LogCapture log;
};

bool isWarning(const std::string& line, const std::string& message, const std::string& function)
{
    const std::string start = "warning|" + message + " \n //settingsdialog.cpp:" + function + "()#";
    return line.compare(0, start.size(), start) == 0 && line.back() == '.';
}

} // namespace

TEST_F(Dialog, StartsWithTheGeneralSectionAlone)
{
    EXPECT_EQ(dialog.size(), QSize(1080, 800));
    EXPECT_EQ(dialog.minimumSize(), dialog.maximumSize());
    ASSERT_EQ(group()->buttons().size(), 1);
    EXPECT_TRUE(group()->exclusive());
    EXPECT_EQ(button(0)->objectName(), "GeneralSettings");
    EXPECT_EQ(button(0)->property("style"), "settingBtn");
    EXPECT_EQ(button(0)->size(), QSize(128, 32));
    EXPECT_TRUE(button(0)->isChecked());
    EXPECT_EQ(stack()->count(), 1);
    EXPECT_NE(qobject_cast<SettingWidget*>(stack()->widget(0)), nullptr);
}

TEST_F(Dialog, GroupsPagesByTheirTitleWithoutWhitespace)
{
    QWidget* general = insert("GeneralSettings");
    QWidget* spaced = insert(" General\tSettings ");
    QWidget* display = insert("Display Settings");
    QWidget* sameDisplay = insert("DisplaySettings");
    QWidget* audio = insert("AudioSettings");
    ASSERT_EQ(stack()->count(), 3);
    ASSERT_EQ(group()->buttons().size(), 3);
    const std::vector<std::pair<QWidget*, int>> places{
        {general, 0}, {spaced, 0}, {display, 1}, {sameDisplay, 1}, {audio, 2}};
    for (const auto& [page, id] : places) {
        EXPECT_TRUE(stack()->widget(id)->isAncestorOf(page)) << id;
    }
    EXPECT_EQ(button(1)->objectName(), "DisplaySettings");
    EXPECT_EQ(button(1)->text(), "Display Settings");
    EXPECT_EQ(button(1)->size(), QSize(128, 32));

    // Id in the group, place in the column and index in the stack are one and the same.
    dialog.show();
    for (int id = 1; id < 3; ++id) {
        EXPECT_GT(button(id)->y(), button(id - 1)->y());
        QTest::mouseClick(button(id), Qt::LeftButton);
        EXPECT_EQ(stack()->currentIndex(), id);
        EXPECT_TRUE(button(id)->isChecked());
        EXPECT_FALSE(button(id - 1)->isChecked());
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Dialog, OrdersASectionByPriority)
{
    PlainPage* later = insert("A", 30);
    PlainPage* first = insert("A", 10);
    PlainPage* middle = insert("A", 20);
    dialog.show();
    button(1)->click();
    QApplication::processEvents();
    EXPECT_LT(first->y(), middle->y());
    EXPECT_LT(middle->y(), later->y());
}

TEST_F(Dialog, AnAddedSectionsButtonFollowsItsPagesButTheFirstOneTheDialog)
{
    PlainPage* general = insert("GeneralSettings");
    PlainPage* audio = insert("AudioSettings");
    emit audio->sigTitleTextChanged("Audio");
    EXPECT_EQ(button(1)->text(), "Audio");
    emit general->sigTitleTextChanged("Anything");
    EXPECT_EQ(button(0)->text(), "GeneralSettings");

    dialog.loadLanguageFiles({});
    dialog.loadLanguageFiles(mivohost::languageFiles());
    dialog.switchLanguage("zh_cn");
    EXPECT_EQ(button(0)->text(), "常规");
    EXPECT_EQ(dialog.title(), "系统设置");
    EXPECT_EQ(button(1)->text(), "Audio") << "pages are translated each by itself";
    translator().switchLanguage("en");
    dialog.translateLanguage();
    EXPECT_EQ(button(0)->text(), "General");
    EXPECT_EQ(dialog.title(), "System settings");
}

TEST_F(Dialog, LogsWhatItCannotDo)
{
    insert("AudioSettings");
    button(1)->click();
    emit group()->idClicked(2);
    emit group()->idClicked(-1);
    ASSERT_EQ(log.lines().size(), 2U);
    EXPECT_TRUE(isWarning(log.lines()[0], "id(2) < 0 || id(2) >= stackedWidget count(2)!",
                          "buttonGroupClickedSlot"));
    EXPECT_TRUE(isWarning(log.lines()[1], "id(-1) < 0 || id(-1) >= stackedWidget count(2)!",
                          "buttonGroupClickedSlot"));
    EXPECT_EQ(stack()->currentIndex(), 1);

    // A section that is in the stack, but past the buttons of the column.
    log.clear();
    auto* section = qobject_cast<SettingWidget*>(stack()->widget(1));
    stack()->insertWidget(1, new QWidget);
    emit section->sigTitleTextChanged("x");
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(isWarning(log.lines()[0], "settingsBtn is nullptr!,count:3, find index :2",
                          "updateSettingsButtonTextSlot"));

    // And a widget in the stack that is no section: the page is dropped.
    log.clear();
    const std::unique_ptr<PlainPage> dropped(insert("AudioSettings"));
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_TRUE(isWarning(log.lines()[0], "The 1nd widget in the stackedWidget is nullputr!",
                          "addSettingsBox"));
    EXPECT_EQ(dropped->parentWidget(), nullptr);
}

TEST_F(Dialog, HiddenSectionsAreNeitherPolishedNorPainted)
{
    PlainPage* shown = insert("GeneralSettings");
    PlainPage* hidden = insert("AudioSettings");
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QApplication::processEvents();
    const auto polished = [](QWidget* page) {
        return page->findChild<QLineEdit*>()->testAttribute(Qt::WA_WState_Polished);
    };
    EXPECT_TRUE(polished(shown));
    EXPECT_FALSE(polished(hidden));
    button(1)->click();
    QApplication::processEvents();
    EXPECT_TRUE(polished(hidden));
    EXPECT_EQ(hidden->width(), shown->width());
}

TEST_F(Dialog, KeepsItsSizesUnderTheHostsStyleSheet)
{
    dialog.setSettingsstyleSheet(mivohost::hostStyleSheet());
    insert("Display");
    dialog.show();
    QApplication::processEvents();
    EXPECT_EQ(dialog.size(), QSize(1080, 800));
    EXPECT_EQ(button(0)->size(), QSize(128, 32));
    EXPECT_EQ(button(1)->geometry().top() - button(0)->geometry().bottom(), 5);
    EXPECT_EQ(stack()->geometry().left(), 129) << "buttons, and a line of one pixel";
    EXPECT_EQ(dialog.grab().toImage().pixelColor(128, 400), QColor("#3a434d"));
}

TEST_F(Dialog, IsWholeByKeyboard)
{
    for (const char* title : {"GeneralSettings", "A", "B"}) {
        insert(title);
    }
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));

    const auto tabbed = [this] {
        QSet<QWidget*> reached;
        for (int i = 0; i < 20; ++i) {
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &dialog,
                            Qt::Key_Tab);
            reached.insert(QApplication::focusWidget());
        }
        return reached;
    };
    for (const int id : {2, 1}) {
        const auto reached = tabbed();
        for (int other = 0; other < 3; ++other) {
            EXPECT_TRUE(reached.contains(button(other))) << id << ' ' << other;
        }
        button(id)->setFocus();
        QTest::keyClick(button(id), id == 2 ? Qt::Key_Space : Qt::Key_Return);
        EXPECT_EQ(stack()->currentIndex(), id);
        EXPECT_TRUE(button(id)->isChecked());
    }
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(Dialog, TabGoesFromTopToBottomWhateverTheOrderOfInsertion)
{
    insert("B", 2);
    std::vector<PlainPage*> pages{insert("A", 30), insert("A", 10), insert("A", 20)};
    std::swap(pages[0], pages[2]);
    std::swap(pages[0], pages[1]); // by priority
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    button(2)->click();
    button(0)->setFocus();
    std::vector<QWidget*> expected{button(1), button(2)};
    for (PlainPage* page : pages) {
        expected.push_back(page->findChild<QLineEdit*>());
    }
    expected.push_back(button(0));
    for (QWidget* next : expected) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        while (qobject_cast<QScrollArea*>(QApplication::focusWidget()) != nullptr) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        EXPECT_EQ(QApplication::focusWidget(), next);
    }
}

namespace {

std::string describe(QWidget* control)
{
    const QString name = control->accessibleName() + control->property("text").toString();
    return control->metaObject()->className() + (" " + name.toStdString());
}

/// The first of the stops that stands above the one before it, or left of it in the same row; the
/// stops within a group go before those behind the group. Empty where all are in order.
std::string firstOutOfOrder(const std::vector<QWidget*>& stops)
{
    for (std::size_t i = 1; i < stops.size(); ++i) {
        QWidget* before = stops[i - 1];
        QWidget* after = stops[i];
        while (!before->parentWidget()->isAncestorOf(after)) {
            before = before->parentWidget();
        }
        while (after->parentWidget() != before->parentWidget()) {
            after = after->parentWidget();
        }
        const QRect above = before->geometry();
        const QRect below = after->geometry();
        const bool sameRow = below.top() <= above.center().y() && above.top() <= below.center().y();
        if (sameRow ? below.left() < above.right() : below.top() < above.top()) {
            return describe(stops[i]) + " after " + describe(stops[i - 1]);
        }
    }
    return {};
}

/// The host's own dialog over a fake store.
class BoundDialog : public ::testing::Test
{
protected:
    BoundDialog()
    {
        store.change("UndoStep", 20);
        view = std::make_unique<mivohost::SettingsView>(runtime, store, nullptr);
        view->dialog().show();
        view->dialog().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view->dialog()));
        edit =
            view->dialog().findChild<UndoSettingBox*>()->findChild<mivo::widgets::SpinEditBox*>();
        edit->setFocus();
        QTest::keySequence(edit, QKeySequence::SelectAll);
        QTest::keyClicks(edit, "80");
        EXPECT_TRUE(store.kept.writes.empty()) << "written before the edit was finished";
    }

    TestRuntime runtime;
    TestStore store;
    std::unique_ptr<mivohost::SettingsView> view;
    mivo::widgets::SpinEditBox* edit = nullptr;
};

} // namespace

TEST_F(BoundDialog, IsWalkedThroughByKeyboardAlone)
{
    SettingsDialog& dialog = view->dialog();
    const auto* sections = dialog.findChild<QStackedWidget*>();
    const auto press = [&dialog](Qt::Key key) {
        QWidget* focused = QApplication::focusWidget();
        QTest::keyClick(focused != nullptr ? focused : &dialog, key);
    };
    const auto navigation = dialog.findChild<QButtonGroup*>()->buttons();
    ASSERT_EQ(navigation.size(), sections->count());
    QSet<QWidget*> pagesSeen;
    for (int id = 0; id < navigation.size(); ++id) {
        while (QApplication::focusWidget() != navigation[id]) {
            press(Qt::Key_Tab);
        }
        press(Qt::Key_Return);
        ASSERT_EQ(sections->currentIndex(), id);
        QWidget* section = sections->currentWidget();

        std::vector<QWidget*> stops;
        do {
            press(Qt::Key_Tab);
            QWidget* stop = QApplication::focusWidget();
            const bool isNew = stops.empty() || stops.back() != stop; // a time has several parts
            if (isNew && section->isAncestorOf(stop) && stop != section) {
                EXPECT_FALSE(stop->visibleRegion().isEmpty()) << "not scrolled to";
                stops.push_back(stop);
            }
        } while (QApplication::focusWidget() != navigation[id]);
        EXPECT_EQ(firstOutOfOrder(stops), "");

        const QSet<QWidget*> reached(stops.begin(), stops.end());
        for (ISettingBox* page : view->pages()) {
            if (!section->isAncestorOf(page)) {
                continue;
            }
            pagesSeen.insert(page);
            for (QWidget* control : controlsIn(page)) {
                EXPECT_TRUE(isReached(control, reached) || !control->isVisible()
                            || !control->isEnabled())
                    << describe(control);
            }
        }
    }
    EXPECT_EQ(static_cast<std::size_t>(pagesSeen.size()), view->pages().size());

    for (QAbstractButton* button : navigation) {
        dialog.show();
        dialog.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        button->setFocus();
        press(Qt::Key_Space);
        do { // to the section's last control
            press(Qt::Key_Backtab);
        } while (navigation.contains(qobject_cast<QAbstractButton*>(QApplication::focusWidget())));
        press(Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    }
}

TEST_F(BoundDialog, EachSectionHasOnePlaceForEachPage)
{
    std::set<std::pair<QWidget*, int>> places;
    for (ISettingBox* page : view->pages()) {
        EXPECT_TRUE(places.emplace(page->parentWidget(), page->priorityIndex()).second)
            << page->metaObject()->className();
        EXPECT_GE(page->priorityIndex(), 0);
    }
}

TEST_F(BoundDialog, ReturnFinishesAnEditAndPressesNoButton)
{
    QTest::keyClick(edit, Qt::Key_Return);
    ASSERT_EQ(store.kept.writes.size(), 1U);
    EXPECT_EQ(store.kept.writes[0].value, 80);
    EXPECT_TRUE(view->dialog().isVisible());
}

TEST_F(BoundDialog, ClosingFinishesAnEdit)
{
    view->dialog().close();
    ASSERT_FALSE(store.kept.writes.empty());
    EXPECT_EQ(store.kept.writes.back().value, 80);
}

TEST_F(BoundDialog, EscapeFinishesAnEdit)
{
    QTest::keyClick(edit, Qt::Key_Escape);
    EXPECT_FALSE(view->dialog().isVisible());
    ASSERT_FALSE(store.kept.writes.empty());
    EXPECT_EQ(store.kept.writes.back().value, 80);
}

TEST_F(BoundDialog, DestroyingItFinishesAnEdit)
{
    view.reset();
    ASSERT_FALSE(store.kept.writes.empty());
    EXPECT_EQ(store.kept.writes.back().value, 80);
    EXPECT_EQ(store.connections(), 0U);
}

} // namespace settingsdialogtest
