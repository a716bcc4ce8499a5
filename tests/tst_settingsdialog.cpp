#include <mivosettingswidgets/settingsdialog.h>

#include "support/pagecases.h"
#include "support/pagetest.h"
#include "support/plainpage.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/settingwidget.h>
#include <mivosettingswidgets/undosettingbox.h>
#include <mivostyle/style.h>

namespace settingsdialogtest {

using namespace mivo::settings;

struct Dialog : ::testing::Test
{
    Dialog() { dialog.switchLanguage(QString()); }

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

TEST_F(Dialog, GroupsPagesByTheirTitleWithoutWhitespace)
{
    const std::pair<QWidget*, int> places[]{{insert("GeneralSettings", 30), 0},
                                            {insert(" General\t\u00a0Settings\u3000", 10), 0},
                                            {insert("Display Settings"), 1},
                                            {insert("DisplaySettings"), 1},
                                            {insert("AudioSettings"), 2}};
    ASSERT_EQ(std::pair(stack()->count(), group()->buttons().size()), std::pair(3, 3));
    for (const auto& [page, id] : places) {
        EXPECT_TRUE(stack()->widget(id)->isAncestorOf(page)) << id;
    }
    EXPECT_EQ(button(1)->objectName(), "DisplaySettings");
    EXPECT_EQ(button(1)->text(), "Display Settings");

    dialog.show();
    QApplication::processEvents();
    EXPECT_LT(places[1].first->y(), places[0].first->y()) << "by priority";
    EXPECT_EQ(dialog.size(), QSize(1080, 800));
    QTest::mouseClick(button(2), Qt::LeftButton);
    EXPECT_EQ(stack()->currentIndex(), 2);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Dialog, AnAddedSectionsButtonFollowsItsPagesButTheFirstOneTheDialog)
{
    emit insert("AudioSettings")->sigTitleTextChanged("Audio");
    emit insert("GeneralSettings")->sigTitleTextChanged("Anything");
    EXPECT_EQ(button(0)->text(), "GeneralSettings");
    dialog.loadLanguageFiles(mivo::style::languageFiles());
    dialog.switchLanguage("zh_cn");
    EXPECT_EQ(button(0)->text(), "常规");
    EXPECT_EQ(dialog.title(), "系统设置");
    EXPECT_EQ(button(1)->text(), "Audio") << "pages are translated each by itself";
}

TEST_F(Dialog, LogsWhatItCannotDo)
{
    insert("AudioSettings");
    button(1)->click();
    emit group()->idClicked(2);
    emit group()->idClicked(-1);
    EXPECT_EQ(stack()->currentIndex(), 1);
    // A section that is in the stack, but past the buttons of the column.
    auto* section = qobject_cast<SettingWidget*>(stack()->widget(1));
    stack()->insertWidget(1, new QWidget);
    emit section->sigTitleTextChanged("x");
    // And a widget in the stack that is no section: the page is dropped.
    const std::unique_ptr<PlainPage> dropped(insert("AudioSettings"));
    EXPECT_EQ(dropped->parentWidget(), nullptr);
    EXPECT_EQ(warned(log),
              "id(2) < 0 || id(2) >= stackedWidget count(2)!|buttonGroupClickedSlot\n"
              "id(-1) < 0 || id(-1) >= stackedWidget count(2)!|buttonGroupClickedSlot\n"
              "settingsBtn is nullptr!,count:3, find index :2|updateSettingsButtonTextSlot\n"
              "The 1nd widget in the stackedWidget is nullputr!|addSettingsBox");
}

/// Whether Tab, which stopped at `stops`, leads to the control: of the radio buttons of a group to
/// one, from which the arrow keys lead to the others.
bool isReached(QWidget* control, const std::vector<QWidget*>& stops)
{
    const auto* radio = qobject_cast<QRadioButton*>(control);
    const QButtonGroup* group = radio != nullptr ? radio->group() : nullptr;
    return std::any_of(stops.begin(), stops.end(), [&](QWidget* stop) {
        auto* button = qobject_cast<QAbstractButton*>(stop);
        return stop == control
               || (group != nullptr && button != nullptr && button->group() == group);
    });
}

/// The host's own dialog over a fake store, with an edit that is not finished.
struct BoundDialog : ::testing::Test
{
    BoundDialog() { open(); }

    void open()
    {
        view.reset();
        store.change("undoStep", 20);
        view = std::make_unique<mivohost::SettingsView>(runtime, store, nullptr);
        activateWindow(&view->dialog());
        const auto* page = view->dialog().findChild<UndoSettingBox*>();
        edit = page->findChild<mivo::widgets::SpinEditBox*>();
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

TEST_F(BoundDialog, IsWalkedThroughByKeyboardAlone)
{
    auto& mappings = store.soundCards();
    mappings.setDeviceSoundCards("", "", {{"a", "Alpha", 6}});
    mappings.setDeviceSoundCards("d", "Hall", {{"x", "X", 2}});
    store.addSoundCardMappingRequested(velorn::mediadispatch::STSoundCardMappingInfo());
    store.addSoundCardMappingRequested(velorn::mediadispatch::STSoundCardMappingInfo());
    store.changeSoundCardMappingRequested(
        mivo::STSoundCardChangeInfo{1, mivo::SoundCardChangeLocalCard, {}, {"", "a", {}, 6, 1}});
    QApplication::processEvents();

    const auto navigation = view->dialog().findChild<QButtonGroup*>()->buttons();
    for (int id = 0; id < navigation.size(); ++id) {
        while (press(Qt::Key_Tab) != navigation[id]) {
        }
        press(Qt::Key_Return);
        EXPECT_TRUE(navigation[id]->isChecked());
        const auto* section = qobject_cast<SettingWidget*>(
            view->dialog().findChild<QStackedWidget*>()->currentWidget());
        std::vector<QWidget*> stops;
        QPoint last;
        int button = id;
        while (QWidget* stop = press(Qt::Key_Tab)) {
            if (navigation.contains(qobject_cast<QAbstractButton*>(stop))) {
                button = (button + 1) % navigation.size();
                EXPECT_EQ(stop, navigation[button]) << "from top to bottom, whichever is chosen";
                if (button == id) {
                    break;
                }
            } else if (stop != section && section->isAncestorOf(stop)
                       && (stops.empty() || stops.back() != stop)) {
                EXPECT_EQ(button, navigation.size() - 1) << "behind the buttons";
                EXPECT_FALSE(stop->visibleRegion().isEmpty()) << "not scrolled to";
                const QString name = stop->accessibleName() + stop->property("text").toString();
                EXPECT_NE(name, "");
                const QPoint place(stop->mapTo(section->widget(), stop->rect().center()));
                EXPECT_TRUE(place.y() > last.y() + 12 || place.x() > last.x()) << name;
                last = place;
                stops.push_back(stop); // once: a time has several parts
            }
        }
        for (ISettingBox* page : view->pages()) {
            if (section->isAncestorOf(page)) {
                for (QWidget* control : controlsIn(page)) {
                    EXPECT_TRUE(isReached(control, stops) || !control->isVisible()
                                || !control->isEnabled())
                        << control->accessibleName();
                }
            }
        }
    }
}

TEST_F(BoundDialog, AnEditIsFinishedByReturnAndByEveryWayOut)
{
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(store.kept.writes.size(), 1U);
    EXPECT_TRUE(view->dialog().isVisible());
    for (const bool isDestroyed : {false, true}) {
        open();
        isDestroyed ? view.reset() : QTest::keyClick(edit, Qt::Key_Escape);
        EXPECT_TRUE(view == nullptr || !view->dialog().isVisible());
        ASSERT_FALSE(store.kept.writes.empty()) << isDestroyed;
        EXPECT_EQ(store.kept.writes.back().value, 80) << isDestroyed;
    }
    EXPECT_EQ(store.connections(), 0U);
}

} // namespace settingsdialogtest
