#include <mivosettingswidgets/settingsdialog.h>

#include "support/logcapture.h"
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
