#include <mivosettingswidgets/projectsettingbox.h>

#include "project/programdispatch.h"
#include "support/hostlanguage.h"
#include "support/test.h"

#include <QtWidgets/QMenu>

#include <regex>
#include <set>

namespace projectsettingboxtest {

using namespace mivo::mediadispatch;
using mivo::settings::ProjectSettingBox;
using mivo::widgets::CheckBox;
using mivo::widgets::SpinEditBox;

namespace {

using Lines = std::vector<std::string>;

mivohost::Project show(const QString& finale = "Finale",
                       const STDefaultPlayProgramInfo& defaultPlay = {})
{
    return {{{"Evening", {{11, "Opening"}, {12, "Rock & Roll"}}},
             {"Nobody", {}},
             {"晚会", {{21, finale}}}},
            defaultPlay};
}

/// The programs of a project; touched on the runtime thread, or while that waits.
struct Dispatch : mivohost::ProgramDispatch
{
    Dispatch() { replace(show(), {}); }

    std::vector<std::weak_ptr<IProgramGroup>> programGroups() const override
    {
        threads.insert(std::this_thread::get_id());
        return ProgramDispatch::programGroups();
    }
    void setDefaultPlayProgram(const DefaultPlay& info) override
    {
        threads.insert(std::this_thread::get_id());
        ProgramDispatch::setDefaultPlayProgram(info);
    }

    std::shared_ptr<IProgram> first(std::size_t group) const
    {
        return programGroups().at(group).lock()->programs().at(0).lock();
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

/// Delivers all events, also those that events cause.
void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents();
}

void activate(QWidget* window)
{
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
}

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

class Project : public ::testing::Test
{
protected:
    Project()
    {
        SettingWdigetTranslateManager::instance().translator().switchLanguage(QString());
        page->setZRRuntime(&runtime);
        page->setCheckIconPath(":/mivo/style/icons/check.svg");
    }

    ~Project() override { delete page; }

    void bindAndShow(std::weak_ptr<IProgramDispatch> programs)
    {
        page->setProgramDispatch(std::move(programs));
        page->setSettings(&store);
        activate(page);
        const auto* space = page->findChild<QLabel*>("remainSpace");
        const bool onDrive = store.held("autoSavePath").toString().contains(':');
        EXPECT_TRUE(QTest::qWaitFor([=] { return space->text().isEmpty() != onDrive; }));
    }

    QPushButton* button() { return page->findChild<QPushButton*>("openProjectFileDefaultPlayBtn"); }
    QMenu* menu() { return page->findChild<QMenu*>("groupMenu"); }
    QString shown() { return entriesOf(*menu()); }

    /// As a person opens it, and leaves it.
    void openMenu()
    {
        QTest::mousePress(button(), Qt::LeftButton);
        EXPECT_TRUE(menu()->isVisible());
        menu()->hide();
    }

    QAction* entry(const QString& text)
    {
        const auto actions = menu()->findChildren<QAction*>();
        const auto found = std::find_if(actions.begin(), actions.end(), [&text](QAction* action) {
            return action->text() == text;
        });
        return found == actions.end() ? nullptr : *found;
    }

    /// The warnings since the last call of this, as "function: text".
    Lines warned()
    {
        static const std::regex line(
            R"(warning\|(.*) \n //projectsettingbox\.cpp:(\w+)\(\)#\d+\.)");
        Lines lines = log.lines();
        for (std::string& text : lines) {
            text = std::regex_replace(text, line, "$2: $1");
        }
        log.clear();
        return lines;
    }

    TestRuntime runtime;
    TestStore store;
    LogCapture log;
    std::shared_ptr<Dispatch> dispatch = std::make_shared<Dispatch>();
    QPointer<ProjectSettingBox> page = new ProjectSettingBox;
    TipWatch watch;
};

} // namespace

TEST_F(Project, OffersTheProgramsByGroupAndHandsOverTheChosenOne)
{
    bindAndShow(dispatch);
    EXPECT_EQ(button()->text(), "LastTime");
    openMenu();
    EXPECT_EQ(shown(),
              "*LastTime  ProgramList Evening(Opening Rock && Roll) Nobody() 晚会(Finale)");
    EXPECT_FALSE(menu()->actions()[2]->isEnabled()) << "a heading";

    entry("Rock && Roll")->trigger();
    EXPECT_EQ(dispatch->getDefaultPlayProgram(),
              (STDefaultPlayProgramInfo{false, 12, "Rock & Roll"}));
    QApplication::processEvents();
    EXPECT_EQ(button()->text(), "Rock && Roll");
    openMenu();
    EXPECT_EQ(shown(),
              "LastTime  ProgramList Evening(Opening *Rock && Roll) Nobody() 晚会(Finale)");

    entry("LastTime")->trigger();
    EXPECT_TRUE(dispatch->getDefaultPlayProgram().lastTime);
    QApplication::processEvents();
    EXPECT_EQ(button()->text(), "LastTime");
    EXPECT_EQ(dispatch->threads, std::set{runtime.thread()});
    EXPECT_EQ(warned(), Lines());
}

TEST_F(Project, OpensTheMenuByKeysAndGoesWithItOpen)
{
    bindAndShow(dispatch);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Down}) {
        QTest::keyPress(button(), key);
        EXPECT_TRUE(menu()->isVisible()) << key;
        menu()->hide();
    }
    QTest::mousePress(button(), Qt::RightButton);
    QTest::keyPress(button(), Qt::Key_A);
    EXPECT_FALSE(menu()->isVisible());

    QTest::mousePress(button(), Qt::LeftButton);
    delete page;
    QApplication::processEvents();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(dispatch->followers(), 0U);
}

TEST_F(Project, ProgramsThatAreRemovedVanishAtTheNextOpening)
{
    bindAndShow(dispatch);
    openMenu();
    const std::weak_ptr<IProgram> removed = dispatch->first(2);
    dispatch->replace({{{"Nobody", {}}, {"晚会", {}}}, {}}, {});
    EXPECT_TRUE(removed.expired()) << "the menu holds no program";
    entry("Finale")->trigger();
    EXPECT_EQ(warned(), Lines{"checkedProgramAction: sharedProgram is nullptr!"});
    EXPECT_TRUE(dispatch->getDefaultPlayProgram().lastTime);

    openMenu();
    EXPECT_EQ(shown(), "*LastTime  ProgramList Nobody() 晚会()");
    dispatch->replace({}, {});
    openMenu();
    EXPECT_EQ(shown(), "*LastTime");
}

TEST_F(Project, FollowsAChoiceMadeElsewhereAndANewName)
{
    bindAndShow(dispatch);
    const STDefaultPlayProgramInfo finale{false, 21, "old name"};
    const auto becomes = [this](const std::function<void()>& change, const char* text) {
        runtime.call(change);
        EXPECT_NE(button()->text(), text) << "not off its thread";
        settle();
        EXPECT_EQ(button()->text(), text);
    };
    becomes([&] { dispatch->setDefaultPlayProgram(finale); }, "Finale");
    runtime.call([this] { dispatch->setDefaultPlayProgram({false, 5, QString(60, 'W')}); });
    settle();
    EXPECT_LE(button()->fontMetrics().horizontalAdvance(button()->text()), 110);
    EXPECT_EQ(button()->toolTip(), QString(60, 'W'));

    page->unsetSettings();
    EXPECT_EQ(dispatch->followers(), 0U);
    page->setSettings(&store);
    settle();
    dispatch->defaultPlayProgramChanged.disconnect_all(); // the list alone has to be enough
    becomes([&] { dispatch->replace(show("End", finale), {}); }, "End");
    becomes([&] { dispatch->replace({{}, finale}, {}); }, "old name");
}

TEST_F(Project, WithoutADispatcherItWarnsAndShowsWhatItKnows)
{
    bindAndShow({});
    EXPECT_EQ(warned(), Lines{"showEvent: programDispatch is nullptr!"});
    openMenu();
    EXPECT_EQ(warned(), Lines{"onUpdateProgramList: programDispatch is nullptr!"});
    EXPECT_EQ(shown(), "LastTime");
    entry("LastTime")->trigger();
    EXPECT_EQ(warned(), Lines{"checkedProgramGroupMenu: programDispatch is nullptr!"});
    emit menu()->triggered(nullptr);
    EXPECT_EQ(warned(), Lines{"checkedProgramGroupMenu: action is nullptr!"});
    EXPECT_EQ(button()->text(), "LastTime");
    EXPECT_EQ(runtime.takePosted().size(), 2U) << "the store's only";

    page->setProgramDispatch(dispatch);
    openMenu();
    const QString before = shown();
    const auto program = dispatch->first(0);
    dispatch.reset();
    openMenu();
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(warned(), Lines{"onUpdateProgramList: programDispatch is nullptr!"});
    entry("Opening")->trigger();
    EXPECT_EQ(warned(), Lines{"checkedProgramAction: programDispatch is nullptr!"});
    EXPECT_EQ(button()->text(), "LastTime");

    runtime.refuses = true; // which is said nowhere
    const auto other = std::make_shared<Dispatch>();
    page->setProgramDispatch(other);
    openMenu();
    entry("Opening")->trigger();
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(warned(), Lines());
    EXPECT_TRUE(other->getDefaultPlayProgram().lastTime);
}

TEST_F(Project, SaysWhatPlaysInTheNewLanguage)
{
    const InEnglish english;
    bindAndShow(dispatch);
    page->switchLanguage("zh_cn");
    const QString lastTime = button()->text();
    ASSERT_NE(entry(lastTime), nullptr);
    entry("Opening")->trigger();
    QApplication::processEvents();
    page->switchLanguage("en");
    EXPECT_EQ(button()->text(), "Opening");
    EXPECT_EQ(entry(lastTime), nullptr);
}

TEST_F(Project, IntervalAndNumberCanBeEditedWhileSavingIsAutomatic)
{
    const auto edits = page->findChildren<SpinEditBox*>();
    EXPECT_FALSE(edits[0]->isEnabled() || edits[1]->isEnabled());
    bindAndShow(dispatch);
    page->findChildren<CheckBox*>()[2]->click();
    EXPECT_TRUE(edits[0]->isEnabled() && edits[1]->isEnabled());
    runtime.call([&] { store.change("autoSaveProjectFiles", false); });
    QApplication::processEvents();
    EXPECT_FALSE(edits[0]->isEnabled() || edits[1]->isEnabled());
}

TEST_F(Project, IsLinkedWithTheHostsWidgetOfTheProjectFile)
{
    store.change("autoSavePath", "Q:/projectbackups"); // a drive that there is not
    bindAndShow(dispatch);
    QSignalSpy notified(page, &ProjectSettingBox::notifySpaceUseup);
    const auto* interval = page->findChildren<SpinEditBox*>()[0];
    auto first = std::make_unique<FileWidget>();
    FileWidget second;
    page->setProjectFileWidget(first.get());
    emit first->timeChanged(17);
    EXPECT_EQ(interval->value(), 17);
    EXPECT_TRUE(store.kept.writes.empty()) << "shown, not written";
    emit first->checkRemainSpace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return notified.size() == 1; }));
    EXPECT_TRUE(notified[0][0].toBool());

    page->setProjectFileWidget(&second);
    emit first->timeChanged(3);
    EXPECT_EQ(interval->value(), 17) << "no longer linked";
    emit second.timeChanged(4);
    EXPECT_EQ(interval->value(), 4);

    QWidget plain; // with none of the two
    page->setProjectFileWidget(&plain);
    page->setProjectFileWidget(first.get());
    first.reset();
    page->setProjectFileWidget(nullptr);
    page->setProjectFileWidget(&second);
    delete page;
    emit second.timeChanged(5);
}

TEST_F(Project, LooksUpTheFreeSpaceWhenItsWindowBecomesActive)
{
    store.change("autoSavePath", "Q:/projectbackups"); // a drive that there is not
    bindAndShow(dispatch);
    EXPECT_EQ(page->findChild<QLabel*>("remainSpace")->text(), "RemainSpace0.0 G");
    QSignalSpy notified(page, &ProjectSettingBox::notifySpaceUseup);
    QWidget other;
    activate(&other);
    EXPECT_TRUE(notified.isEmpty());
    activate(page);
    ASSERT_TRUE(QTest::qWaitFor([&] { return notified.size() == 1; }));
    EXPECT_TRUE(notified[0][0].toBool());
    QTest::mouseClick(page->findChild<QPushButton*>("shareSpaceTips"), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return notified.size() == 2; })) << "it looks again";
}

TEST_F(Project, SaysThatAFolderCannotBeOpened)
{
    auto* open =
        page->findChild<QLineEdit*>("autoSavePathEdit")->nextInFocusChain()->nextInFocusChain();
    EXPECT_FALSE(open->isEnabled());
    store.change("autoSavePath", "/nowhere/projectbackups");
    bindAndShow(dispatch);
    QTest::mouseClick(open, Qt::LeftButton);
    ASSERT_EQ(watch.tips.size(), 1U);
    EXPECT_EQ(watch.tips[0].text, "OpenFolderFailed");

    watch.onTip = [this] { delete page; };
    QTest::mouseClick(open, Qt::LeftButton);
    EXPECT_TRUE(page.isNull());
}

} // namespace projectsettingboxtest

#include "tst_projectsettingbox.moc"
