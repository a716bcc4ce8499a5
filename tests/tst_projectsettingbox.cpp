#include <mivosettingswidgets/projectsettingbox.h>

#include "support/dialogs.h"
#include "support/hostlanguage.h"
#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include <mivohostapi/iprogramdispatch.h>
#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivowidgets/checkbox.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/spineditbox.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QMenu>

#include <set>

namespace projectsettingboxtest {

using namespace mivo::mediadispatch;
using mivo::settings::ProjectSettingBox;
using mivo::widgets::CheckBox;
using mivo::widgets::SpinEditBox;

namespace {

struct Program : IProgram
{
    Program(qint64 number, QString text) : programId(number), text(std::move(text)) {}

    qint64 id() const override { return programId; }
    QString name() const override { return text; }

    qint64 programId;
    QString text;
};

struct Group : IProgramGroup
{
    Group(QString text, std::vector<std::shared_ptr<Program>> list)
        : text(std::move(text)), list(std::move(list))
    {}

    QString name() const override { return text; }
    std::vector<std::weak_ptr<IProgram>> programs() const override
    {
        return {list.begin(), list.end()};
    }

    QString text;
    std::vector<std::shared_ptr<Program>> list;
};

/// The programs of a project; touched on the runtime thread, or while that waits.
struct Dispatch : IProgramDispatch
{
    bool isUsable() const override { return true; }
    void saveProjectFile(int /*flags*/) override {}
    std::vector<std::weak_ptr<IProgramGroup>> programGroups() const override
    {
        threads.insert(std::this_thread::get_id());
        return {groups.begin(), groups.end()};
    }
    STDefaultPlayProgramInfo getDefaultPlayProgram() const override
    {
        threads.insert(std::this_thread::get_id());
        return chosen;
    }
    void setDefaultPlayProgram(const STDefaultPlayProgramInfo& info) override
    {
        threads.insert(std::this_thread::get_id());
        chosen = info;
        defaultPlayProgramChanged();
    }

    std::vector<std::shared_ptr<Group>> groups{
        std::make_shared<Group>("Evening",
                                std::vector{std::make_shared<Program>(11, "Opening"),
                                            std::make_shared<Program>(12, "Rock & Roll")}),
        std::make_shared<Group>("Nobody", std::vector<std::shared_ptr<Program>>()),
        std::make_shared<Group>("晚会", std::vector{std::make_shared<Program>(21, "Finale")})};
    STDefaultPlayProgramInfo chosen;
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

class Project : public ::testing::Test
{
protected:
    Project()
    {
        SettingWdigetTranslateManager::instance().translator().switchLanguage(QString());
        page->setZRRuntime(&runtime);
        page->setCheckIconPath(":/style/icons/check.svg");
    }

    ~Project() override { delete page; }

    void bindAndShow(std::weak_ptr<IProgramDispatch> programs)
    {
        page->setProgramDispatch(std::move(programs));
        page->setSettings(&store);
        page->show();
        page->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(page));
        QApplication::processEvents();
    }

    QPushButton* button() { return page->findChild<QPushButton*>("openProjectFileDefaultPlayBtn"); }
    QMenu* menu() { return page->findChild<QMenu*>("groupMenu"); }

    /// As a person opens it, and leaves it.
    void openMenu()
    {
        QTest::mousePress(button(), Qt::LeftButton);
        EXPECT_TRUE(menu()->isVisible());
        menu()->hide();
    }

    QAction* entry(const QString& group, const QString& program)
    {
        for (QAction* action : menu()->actions()) {
            if (action->menu() != nullptr && action->text() == group) {
                for (QAction* inner : action->menu()->actions()) {
                    if (inner->text() == program) {
                        return inner;
                    }
                }
            }
        }
        return nullptr;
    }

    /// The menu in a line, "*" at what is marked.
    QString shown()
    {
        QStringList texts;
        for (QAction* action : menu()->actions()) {
            const QString mark = action->icon().isNull() ? "" : "*";
            if (action->menu() == nullptr) {
                texts.append(mark + action->text());
                continue;
            }
            QStringList programs;
            for (QAction* inner : action->menu()->actions()) {
                programs.append((inner->icon().isNull() ? "" : "*") + inner->text());
            }
            texts.append(mark + action->text() + '(' + programs.join(',') + ')');
        }
        return texts.join(' ');
    }

    bool logged(const std::vector<std::pair<std::string, std::string>>& expected)
    {
        const auto lines = log.lines();
        bool same = lines.size() == expected.size();
        for (std::size_t i = 0; same && i < lines.size(); ++i) {
            const std::string start = "warning|" + expected[i].first
                                      + " \n //projectsettingbox.cpp:" + expected[i].second + "()#";
            same = lines[i].compare(0, start.size(), start) == 0;
        }
        for (const std::string& line : lines) {
            if (!same) {
                ADD_FAILURE() << line;
            }
        }
        log.clear();
        return same;
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
              "*LastTime  ProgramList Evening(Opening,Rock && Roll) Nobody() 晚会(Finale)");
    EXPECT_FALSE(menu()->actions()[2]->isEnabled()) << "a heading";
    EXPECT_EQ(menu()->width(), 140);

    entry("Evening", "Rock && Roll")->trigger();
    EXPECT_EQ(dispatch->chosen, (STDefaultPlayProgramInfo{false, 12, "Rock & Roll"}));
    QApplication::processEvents();
    EXPECT_EQ(button()->text(), "Rock && Roll");
    openMenu();
    EXPECT_EQ(shown(),
              "LastTime  ProgramList Evening(Opening,*Rock && Roll) Nobody() 晚会(Finale)");

    menu()->actions().first()->trigger();
    EXPECT_TRUE(dispatch->chosen.lastTime);
    QApplication::processEvents();
    EXPECT_EQ(button()->text(), "LastTime");
    EXPECT_EQ(dispatch->threads, std::set{runtime.thread()});
    EXPECT_TRUE(logged({}));
}

TEST_F(Project, OpensTheMenuByMouseAndKeyboard)
{
    bindAndShow(dispatch);
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down}) {
        QTest::keyPress(button(), key);
        EXPECT_TRUE(menu()->isVisible()) << key;
        menu()->hide();
    }
    QTest::mousePress(button(), Qt::RightButton);
    EXPECT_FALSE(menu()->isVisible());
    QTest::keyPress(button(), Qt::Key_A);
    EXPECT_FALSE(menu()->isVisible());

    // The page goes with its menu open.
    QTest::mousePress(button(), Qt::LeftButton);
    delete page;
    QApplication::processEvents();
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(dispatch->programListChanged.slot_count(), 0U);
    EXPECT_EQ(dispatch->defaultPlayProgramChanged.slot_count(), 0U);
}

TEST_F(Project, ProgramsThatAreRemovedVanishAtTheNextOpening)
{
    bindAndShow(dispatch);
    openMenu();
    const std::weak_ptr<Program> removed = dispatch->groups[2]->list[0];
    dispatch->groups[2]->list.clear();
    EXPECT_TRUE(removed.expired()) << "the menu holds no program";
    entry("晚会", "Finale")->trigger();
    EXPECT_TRUE(logged({{"sharedProgram is nullptr!", "checkedProgramAction"}}));
    EXPECT_TRUE(dispatch->chosen.lastTime);

    dispatch->groups.erase(dispatch->groups.begin());
    openMenu();
    EXPECT_EQ(shown(), "*LastTime  ProgramList Nobody() 晚会()");
    dispatch->groups.clear();
    openMenu();
    EXPECT_EQ(shown(), "*LastTime");
}

TEST_F(Project, FollowsAChoiceMadeElsewhereAndANewName)
{
    bindAndShow(dispatch);
    const auto becomes = [this](const char* text) {
        settle();
        EXPECT_EQ(button()->text(), text);
    };
    runtime.call([this] { dispatch->setDefaultPlayProgram({false, 21, "old name"}); });
    EXPECT_EQ(button()->text(), "LastTime") << "not off its thread";
    becomes("Finale");
    runtime.call([this] {
        dispatch->groups[2]->list[0]->text = "End";
        dispatch->programListChanged();
    });
    becomes("End");
    runtime.call([this] {
        dispatch->groups.clear();
        dispatch->programListChanged();
    });
    becomes("old name");
    runtime.call([this] { dispatch->setDefaultPlayProgram({false, 5, QString(60, 'W')}); });
    settle();
    EXPECT_LE(button()->fontMetrics().horizontalAdvance(button()->text()), 110);
    EXPECT_EQ(button()->toolTip(), QString(60, 'W'));

    page->unsetSettings();
    runtime.call([this] { dispatch->setDefaultPlayProgram({}); });
    settle();
    EXPECT_NE(button()->text(), "LastTime");
}

TEST_F(Project, WithoutADispatcherItWarnsAndShowsWhatItKnows)
{
    bindAndShow({});
    EXPECT_TRUE(logged({{"programDispatch is nullptr!", "showEvent"}}));
    openMenu();
    EXPECT_TRUE(logged({{"programDispatch is nullptr!", "onUpdateProgramList"}}));
    EXPECT_EQ(shown(), "LastTime");
    menu()->actions().first()->trigger();
    EXPECT_TRUE(logged({{"programDispatch is nullptr!", "checkedProgramGroupMenu"}}));
    emit menu()->triggered(nullptr);
    EXPECT_TRUE(logged({{"action is nullptr!", "checkedProgramGroupMenu"}}));
    EXPECT_EQ(button()->text(), "LastTime");
    EXPECT_TRUE(runtime.takePosted().size() == 2) << "the store's only";

    page->setProgramDispatch(dispatch);
    openMenu();
    const QString before = shown();
    const auto program = dispatch->groups[0]->list[0];
    dispatch.reset();
    openMenu();
    EXPECT_EQ(shown(), before);
    EXPECT_TRUE(logged({{"programDispatch is nullptr!", "onUpdateProgramList"}}));
    entry("Evening", "Opening")->trigger();
    EXPECT_TRUE(logged({{"programDispatch is nullptr!", "checkedProgramAction"}}));
    EXPECT_EQ(button()->text(), "LastTime");
}

TEST_F(Project, ARuntimeThatRefusesLeavesTheMenuWithoutAWord)
{
    bindAndShow(dispatch);
    const QString before = shown();
    dispatch->groups.pop_back();
    runtime.refuses = true;
    openMenu();
    entry("Evening", "Opening")->trigger();
    EXPECT_EQ(shown(), before);
    EXPECT_TRUE(logged({}));
    EXPECT_TRUE(dispatch->chosen.lastTime);
}

TEST_F(Project, SaysWhatPlaysInTheNewLanguage)
{
    const InEnglish english;
    bindAndShow(dispatch);
    page->switchLanguage("zh_cn");
    const QString lastTime = button()->text();
    EXPECT_NE(lastTime, "LastTime");
    openMenu();
    EXPECT_EQ(menu()->actions().first()->text(), lastTime);
    EXPECT_EQ(button()->accessibleDescription(), page->findChildren<CheckBox*>()[1]->text());
    entry("Evening", "Opening")->trigger();
    QApplication::processEvents();
    page->switchLanguage("en");
    EXPECT_EQ(button()->text(), "Opening");
    EXPECT_NE(menu()->actions().first()->text(), lastTime);
}

TEST_F(Project, IntervalAndNumberCanBeEditedWhileSavingIsAutomatic)
{
    const auto edits = page->findChildren<SpinEditBox*>();
    const auto areEnabled = [&edits](bool enabled) {
        return edits[0]->isEnabled() == enabled && edits[1]->isEnabled() == enabled;
    };
    EXPECT_TRUE(areEnabled(false));
    bindAndShow(dispatch);
    CheckBox* autoSave = page->findChildren<CheckBox*>()[2];
    autoSave->click();
    EXPECT_TRUE(areEnabled(true));
    edits[0]->setValue(31);
    edits[1]->setValue(0);
    EXPECT_EQ(store.held("autoSaveProjectFilesInterval"), 30);
    EXPECT_EQ(store.held("autoSaveProjectFilesMaxNum"), 1);
    for (const bool on : {false, true, false}) {
        runtime.call([&] { store.change("autoSaveProjectFiles", on); });
        QApplication::processEvents();
        EXPECT_TRUE(areEnabled(on));
    }
    EXPECT_EQ(edits[0]->value(), 30);
    EXPECT_EQ(edits[1]->value(), 1);
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
    ASSERT_EQ(notified.size(), 1);
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
    // Off Windows a drive's name is a folder's, and its volume that of the folder.
    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    QDir().mkdir("D:");
    store.change("autoSavePath", "D:/projectbackups");
    bindAndShow(dispatch);
    auto* space = page->findChild<QLabel*>("remainSpace");
    auto* tip = page->findChild<QPushButton*>("shareSpaceTips");
    EXPECT_TRUE(QRegularExpression("^RemainSpace[0-9]+\\.0 G$").match(space->text()).hasMatch())
        << space->text().toStdString();

    QSignalSpy notified(page, &ProjectSettingBox::notifySpaceUseup);
    QDir().rmdir("D:");
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_TRUE(notified.isEmpty());
    page->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(page));
    ASSERT_EQ(notified.size(), 1);
    EXPECT_TRUE(notified[0][0].toBool());
    EXPECT_EQ(space->text(), "RemainSpace0.0 G");
    EXPECT_TRUE(tip->isVisible());

    QDir().mkdir("D:");
    QTest::mouseClick(tip, Qt::LeftButton); // look again
    EXPECT_EQ(notified.size(), 2);
    EXPECT_NE(space->text(), QString());
    QDir::setCurrent(before);
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

TEST_F(Project, TabGoesThroughTheControlsAsTheyAreRead)
{
    store.change("autoSaveProjectFiles", true);
    store.change("autoSavePath", "Q:/projectbackups");
    bindAndShow(dispatch);
    page->findChildren<CheckBox*>().first()->setFocus();
    std::vector<QPoint> places;
    for (int i = 0; i < 13; ++i) {
        const QPoint place = QApplication::focusWidget()->mapTo(page, QPoint());
        if (!places.empty()) {
            EXPECT_TRUE(place.y() > places.back().y() + 10 || place.x() > places.back().x()) << i;
        }
        places.push_back(place);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(QApplication::focusWidget(), page->findChildren<CheckBox*>().first());
}

} // namespace projectsettingboxtest

#include "tst_projectsettingbox.moc"
