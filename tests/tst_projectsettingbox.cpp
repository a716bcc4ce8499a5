#include <mivosettingswidgets/projectsettingbox.h>

#include "project/programdispatch.h"
#include "support/pagetest.h"

namespace projectsettingboxtest {

using namespace mivo::mediadispatch;
using mivo::settings::ProjectSettingBox;
using mivo::widgets::SpinEditBox;

mivohost::Project show(const QString& finale, const STDefaultPlayProgramInfo& defaultPlay)
{
    return {{{"Evening", {{11, "Opening"}, {12, "Rock & Roll"}}},
             {"Nobody", {}},
             {"晚会", {{21, finale}}}},
            defaultPlay};
}

/// The programs of a project; touched on the runtime thread, or while that waits.
struct Dispatch : mivohost::ProgramDispatch
{
    Dispatch() { replace(show("Finale", {}), {}); }
    std::vector<std::weak_ptr<IProgramGroup>> programGroups() const override
    {
        threads.insert(std::this_thread::get_id());
        return ProgramDispatch::programGroups();
    }
    std::size_t followers() const
    {
        return programListChanged.slot_count() + defaultPlayProgramChanged.slot_count();
    }

    mutable std::set<std::thread::id> threads;
};

/// A host's widget of the project's file.
class FileWidget : public QWidget
{
    Q_OBJECT

signals:
    void timeChanged(int /*minutes*/);
    void checkRemainSpace();
};

/// The entries of a menu, "*" at what is marked.
QString entriesOf(const QMenu& menu)
{
    QStringList texts;
    for (QAction* action : menu.actions()) {
        texts.append((action->icon().isNull() ? "" : "*") + action->text());
        if (action->menu() != nullptr) {
            texts.last() += '(' + entriesOf(*action->menu()) + ')';
        }
    }
    return texts.join(' ');
}

struct Project : PageTest<ProjectSettingBox>
{
    Project()
    {
        useHostLanguage({});
        page->setCheckIconPath(":/mivo/style/icons/check.svg");
    }

    void bindAndShow(std::weak_ptr<IProgramDispatch> programs)
    {
        page->setProgramDispatch(std::move(programs));
        bind();
        activateWindow(page);
        const auto* space = page->findChild<QLabel*>("remainSpace");
        const bool onDrive = store.held("autoSavePath").toString().contains(':');
        EXPECT_TRUE(QTest::qWaitFor([=] { return space->text().isEmpty() != onDrive; }));
    }

    QPushButton* button() { return page->findChild<QPushButton*>("openProjectFileDefaultPlayBtn"); }
    QMenu* menu() { return page->findChild<QMenu*>("groupMenu"); }

    /// What a person sees who opens the menu, and leaves it.
    QString opened()
    {
        QTest::mousePress(button(), Qt::LeftButton);
        EXPECT_TRUE(menu()->isVisible());
        menu()->hide();
        return entriesOf(*menu());
    }

    void choose(const QString& text)
    {
        QAction* entry = nullptr;
        for (QAction* action : menu()->findChildren<QAction*>()) {
            entry = action->text() == text ? action : entry;
        }
        ASSERT_NE(entry, nullptr) << text;
        entry->trigger();
        settleEvents();
    }

    std::shared_ptr<Dispatch> dispatch = std::make_shared<Dispatch>();
};

TEST_F(Project, OffersTheProgramsByGroupAndHandsOverTheChosenOne)
{
    bindAndShow(dispatch);
    EXPECT_EQ(button()->text(), "LastTime");
    EXPECT_EQ(opened(),
              "*LastTime  ProgramList Evening(Opening Rock && Roll) Nobody() 晚会(Finale)");
    EXPECT_FALSE(menu()->actions()[2]->isEnabled()) << "a heading";
    choose("Rock && Roll");
    EXPECT_EQ(dispatch->state().project.defaultPlay,
              (STDefaultPlayProgramInfo{false, 12, "Rock & Roll"}));
    EXPECT_EQ(button()->text(), "Rock && Roll");
    EXPECT_EQ(opened(),
              "LastTime  ProgramList Evening(Opening *Rock && Roll) Nobody() 晚会(Finale)");
    choose("LastTime");
    EXPECT_TRUE(dispatch->state().project.defaultPlay.lastTime);
    EXPECT_EQ(dispatch->threads, std::set{runtime.thread()});
    EXPECT_EQ(warned(log), "");

    // What has been removed vanishes at the next opening.
    dispatch->replace({{{"Nobody", {}}, {"晚会", {}}}, {}}, {});
    choose("Finale");
    EXPECT_EQ(warned(log), "sharedProgram is nullptr!|checkedProgramAction");
    EXPECT_TRUE(dispatch->state().project.defaultPlay.lastTime);
    EXPECT_EQ(opened(), "*LastTime  ProgramList Nobody() 晚会()");
    dispatch->replace({{{"Nobody in the whole of the house", {}}}, {}}, {});
    opened();
    QHelpEvent hover(QEvent::ToolTip, menu()->actionGeometry(menu()->actions()[3]).center(), {});
    QApplication::sendEvent(menu(), &hover);
    EXPECT_EQ(QToolTip::text(), "Nobody in the whole of the house");

    QTest::keyPress(button(), Qt::Key_Space);
    EXPECT_TRUE(menu()->isVisible());
    delete page;
    settleEvents();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr) << "the page went with its menu open";
    EXPECT_EQ(dispatch->followers(), 0U);
}

TEST_F(Project, FollowsAChoiceMadeElsewhereANewNameAndTheEndOfItsDispatcher)
{
    bindAndShow(dispatch);
    const STDefaultPlayProgramInfo finale{false, 21, "old name"};
    const auto becomes = [this](const std::function<void()>& change, const QString& text) {
        runtime.call(change);
        EXPECT_NE(button()->text(), text) << "not off its thread";
        settleEvents();
        EXPECT_EQ(button()->text(), text);
    };
    becomes([&] { dispatch->setDefaultPlayProgram(finale); }, "Finale");
    page->unsetSettings();
    EXPECT_EQ(dispatch->followers(), 0U);
    bind();
    dispatch->defaultPlayProgramChanged.disconnect_all(); // the list alone has to be enough
    becomes([&] { dispatch->replace(show("End", finale), {}); }, "End");
    becomes([&] { dispatch->replace({{}, finale}, {}); }, "old name");
    opened();
    dispatch.reset();
    choose("LastTime");
    EXPECT_EQ(warned(log), "programDispatch is nullptr!|checkedProgramGroupMenu");
}

TEST_F(Project, LooksUpTheFreeSpaceWhenItIsActivatedOrTheHostsWidgetAsks)
{
    store.change("autoSavePath", "Q:/projectbackups"); // a drive that there is not
    bindAndShow(dispatch);
    EXPECT_EQ(page->findChild<QLabel*>("remainSpace")->text(), "RemainSpace0.0 G");
    QSignalSpy notified(page, &ProjectSettingBox::notifySpaceUseup);
    QWidget other;
    activateWindow(&other);
    EXPECT_TRUE(notified.isEmpty());
    activateWindow(page);
    ASSERT_TRUE(QTest::qWaitFor([&] { return notified.size() == 1; }));
    EXPECT_EQ(notified[0][0], true);
    FileWidget first;
    FileWidget second;
    page->setProjectFileWidget(&first);
    emit first.checkRemainSpace();
    EXPECT_TRUE(QTest::qWaitFor([&] { return notified.size() == 2; }));
    emit first.timeChanged(17);
    EXPECT_EQ(control<SpinEditBox>()->value(), 17);
    EXPECT_EQ(written(), "") << "shown only";
    EXPECT_FALSE(control<SpinEditBox>()->isEnabled()) << "but while saving is automatic";
    page->setProjectFileWidget(&second);
    emit first.timeChanged(3);
    EXPECT_EQ(control<SpinEditBox>()->value(), 17) << "no longer linked";
}

TEST_F(Project, SaysThatAFolderCannotBeOpened)
{
    const auto* path = page->findChild<QLineEdit*>("autoSavePathEdit");
    auto* open = path->nextInFocusChain()->nextInFocusChain();
    EXPECT_FALSE(open->isEnabled());
    store.change("autoSavePath", "/nowhere/projectbackups");
    bindAndShow(dispatch);
    TipWatch watch;
    watch.onTip = [this] { delete page; };
    QTest::mouseClick(open, Qt::LeftButton);
    EXPECT_EQ(watch.tips, QStringList("OpenFolderFailed|"
                                      + QDir::toNativeSeparators("/nowhere/projectbackups|2")));
    EXPECT_TRUE(page.isNull());
}

} // namespace projectsettingboxtest

#include "tst_projectsettingbox.moc"
