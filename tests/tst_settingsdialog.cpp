#include <mivosettingswidgets/settingsdialog.h>

#include "support/pagecases.h"
#include "support/plainpage.h"
#include "support/test.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/settingwidget.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivostyle/style.h>

#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QStackedWidget>

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

} // namespace

TEST_F(Dialog, GroupsPagesByTheirTitleWithoutWhitespace)
{
    ASSERT_EQ(stack()->count(), 1);
    EXPECT_TRUE(button(0)->isChecked());
    QWidget* general = insert("GeneralSettings", 30);
    QWidget* spaced = insert(QString::fromUtf8(" General\t\u00a0Settings\u3000"), 10);
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
    EXPECT_EQ(button(0)->objectName(), "GeneralSettings");
    EXPECT_EQ(button(1)->objectName(), "DisplaySettings");
    EXPECT_EQ(button(1)->text(), "Display Settings");

    // Id in the group, place in the column and index in the stack are one and the same.
    dialog.show();
    QApplication::processEvents();
    EXPECT_LT(spaced->y(), general->y()) << "by priority";
    for (int id = 1; id < 3; ++id) {
        EXPECT_GT(button(id)->y(), button(id - 1)->y());
        QTest::mouseClick(button(id), Qt::LeftButton);
        EXPECT_EQ(stack()->currentIndex(), id);
        EXPECT_TRUE(button(id)->isChecked());
        EXPECT_FALSE(button(id - 1)->isChecked());
    }
    EXPECT_TRUE(log.lines().empty());
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
    dialog.loadLanguageFiles(mivo::style::languageFiles());
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
    const auto expectWarning = [this](const std::string& message, const std::string& function) {
        EXPECT_TRUE(
            log.hasOnly("warning|" + message + " \n //settingsdialog.cpp:" + function + "()#"));
        log.clear();
    };
    for (const int id : {2, -1}) {
        emit group()->idClicked(id);
        const std::string given = "id(" + std::to_string(id) + ')';
        expectWarning(given + " < 0 || " + given + " >= stackedWidget count(2)!",
                      "buttonGroupClickedSlot");
    }
    EXPECT_EQ(stack()->currentIndex(), 1);

    // A section that is in the stack, but past the buttons of the column.
    auto* section = qobject_cast<SettingWidget*>(stack()->widget(1));
    stack()->insertWidget(1, new QWidget);
    emit section->sigTitleTextChanged("x");
    expectWarning("settingsBtn is nullptr!,count:3, find index :2", "updateSettingsButtonTextSlot");

    // And a widget in the stack that is no section: the page is dropped.
    const std::unique_ptr<PlainPage> dropped(insert("AudioSettings"));
    expectWarning("The 1nd widget in the stackedWidget is nullputr!", "addSettingsBox");
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
    dialog.setSettingsstyleSheet(mivo::style::styleSheet());
    insert("Display");
    dialog.show();
    QApplication::processEvents();
    EXPECT_EQ(dialog.size(), QSize(1080, 800));
    EXPECT_EQ(dialog.minimumSize(), dialog.maximumSize());
    for (int id = 0; id < 2; ++id) {
        EXPECT_EQ(button(id)->size(), QSize(128, 32));
        EXPECT_EQ(button(id)->property("style"), "settingBtn");
    }
    EXPECT_EQ(button(1)->geometry().top() - button(0)->geometry().bottom(), 5);
    EXPECT_EQ(stack()->geometry().left(), 129) << "buttons, and a line of one pixel";
    EXPECT_EQ(dialog.grab().toImage().pixelColor(128, 400), QColor("#3a434d"));
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

/// The host's own dialog over a fake store, with an edit that is not finished.
class BoundDialog : public ::testing::Test
{
protected:
    BoundDialog() { open(); }

    void open()
    {
        view.reset();
        store.change("undoStep", 20);
        view = std::make_unique<mivohost::SettingsView>(runtime, store, nullptr);
        view->dialog().show();
        view->dialog().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view->dialog()));
        edit =
            view->dialog().findChild<UndoSettingBox*>()->findChild<mivo::widgets::SpinEditBox*>();
        edit->setFocus();
        QTest::keySequence(edit, QKeySequence::SelectAll);
        store.kept.writes.clear();
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
    std::set<std::pair<int, int>> places;
    for (int id = 0; id < navigation.size(); ++id) {
        while (QApplication::focusWidget() != navigation[id]) {
            press(Qt::Key_Tab);
        }
        press(Qt::Key_Return);
        ASSERT_EQ(sections->currentIndex(), id);
        EXPECT_TRUE(navigation[id]->isChecked());
        QWidget* section = sections->currentWidget();

        std::vector<QWidget*> stops;
        int button = id;
        do {
            press(Qt::Key_Tab);
            QWidget* stop = QApplication::focusWidget();
            const bool isNew = stops.empty() || stops.back() != stop; // a time has several parts
            if (navigation.contains(qobject_cast<QAbstractButton*>(stop))) {
                button = (button + 1) % navigation.size();
                EXPECT_EQ(stop, navigation[button]) << "from top to bottom, whichever is chosen";
            } else if (isNew && section->isAncestorOf(stop) && stop != section) {
                EXPECT_EQ(button, navigation.size() - 1) << "behind the buttons";
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
            EXPECT_GE(page->priorityIndex(), 0);
            places.emplace(id, page->priorityIndex());
            for (QWidget* control : controlsIn(page)) {
                EXPECT_TRUE(isReached(control, reached) || !control->isVisible()
                            || !control->isEnabled())
                    << describe(control);
            }
        }
    }
    EXPECT_EQ(places.size(), view->pages().size()) << "each page has a place of its own";

    for (QAbstractButton* button : navigation) {
        dialog.show();
        QApplication::setActiveWindow(&dialog); // the platform has not noticed that it was closed
        button->setFocus();
        press(Qt::Key_Space);
        EXPECT_EQ(sections->currentIndex(), navigation.indexOf(button));
        do { // to the section's last control
            press(Qt::Key_Backtab);
        } while (navigation.contains(qobject_cast<QAbstractButton*>(QApplication::focusWidget())));
        press(Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    }
}

TEST_F(BoundDialog, AnEditIsFinishedByReturnAndByEveryWayOut)
{
    int pressed = 0;
    const auto buttons = view->dialog().findChildren<QAbstractButton*>();
    for (const QAbstractButton* button : buttons) {
        QObject::connect(button, &QAbstractButton::clicked, [&pressed] { ++pressed; });
    }
    QTest::keyClick(edit, Qt::Key_Return);
    ASSERT_EQ(store.kept.writes.size(), 1U);
    EXPECT_EQ(store.kept.writes[0].value, 80);
    EXPECT_TRUE(view->dialog().isVisible());
    EXPECT_EQ(pressed, 0);

    const std::pair<const char*, std::function<void()>> ways[]{
        {"closed", [this] { view->dialog().close(); }},
        {"left by Escape", [this] { QTest::keyClick(edit, Qt::Key_Escape); }},
        {"destroyed", [this] { view.reset(); }},
    };
    for (const auto& [way, leave] : ways) {
        open();
        leave();
        EXPECT_TRUE(view == nullptr || !view->dialog().isVisible()) << way;
        ASSERT_FALSE(store.kept.writes.empty()) << way;
        EXPECT_EQ(store.kept.writes.back().value, 80) << way;
    }
    EXPECT_EQ(store.connections(), 0U);
}

} // namespace settingsdialogtest
