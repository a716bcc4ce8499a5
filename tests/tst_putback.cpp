#include "surface/putback.h"

#include "support/test.h"
#include "surface/settingsview.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivosettingswidgets/undosettingbox.h>

namespace putbacktest {

using mivo::widgets::TipDialog;

struct PutBackTest : ::testing::Test
{
    /// The dialog on settings of which these differ from their defaults.
    void open(const QVariantHash& rows)
    {
        store = std::make_unique<TestStore>(rows);
        view = std::make_unique<mivohost::SettingsView>(runtime, *store, nullptr);
        view->offerPutBack(runtime, *store, [this](const mivohost::PutBack::Kept& kept) {
            ++asked;
            kept(keeps ? "a file" : "", keeps ? "" : "disk full");
        });
        view->dialog().show();
    }

    /// Every marked control by its class and name, with what its default is said to be.
    std::map<std::string, std::string> marked() const
    {
        std::map<std::string, std::string> all;
        for (const auto& difference : view->putBack()->differences()) {
            const QWidget* control = difference.control;
            const QString name = control->property("text").toString();
            all[QStringLiteral("%1 %2")
                    .arg(QString(control->metaObject()->className()).section("::", -1),
                         control->accessibleName().isEmpty() ? name : control->accessibleName())
                    .toStdString()] = difference.defaultText.toStdString();
        }
        return all;
    }

    /// What a click with the right button opens.
    static QMenu* menuOf(QWidget* control)
    {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {});
        QApplication::sendEvent(control, &event);
        return qobject_cast<QMenu*>(QApplication::activePopupWidget());
    }

    bool marks(std::size_t count) const
    {
        return QTest::qWaitFor([=] { return view->putBack()->differences().size() == count; });
    }

    QVariant held(const char* name)
    {
        return runtime.call([&] { return store->held(name); });
    }

    InEnglish english;
    TestRuntime runtime;
    std::unique_ptr<TestStore> store;
    std::unique_ptr<mivohost::SettingsView> view;
    bool keeps = true;
    int asked = 0;
};

TEST_F(PutBackTest, EveryControlThatDiffersIsKnownWithItsDefaultInWords)
{
    open({{"undoStep", 20},
          {"blackScreenMute", 1},
          {"fadeInTime", 2.5},
          {"imageHierarchy", 0},
          {"playLogStorageTimeType", 2},
          {"pptAutoplayInterval", 7000},
          {"autoSavePath", "/x"},
          {"timedShutdown", "1|3|01:02:03"},
          {"canvasColor", "#123456"},
          {"tcpPort", "0|8100"},
          {"displayTechnologyStandard", "DCI-P3"},
          {"pptResolutionWidth", 1234}});
    const std::map<std::string, std::string> expected{
        {"CheckBox Shut down", "Off"}, // three of one setting
        {"ComboBox Shut down", "Daily"},
        {"TimeEditBox Shut down", "00:00:00"},
        {"ComboBox Display technology standard", "BT.709"},
        {"ComboBox Keep the play log", "Forever"},
        {"ComboBox Preset", "1920*1080 (default)"}, // by the width
        {"SpinEditBox W", "1920"},
        {"EditBox Custom", "#000000"}, // all of the canvas
        {"PushButton #000000", "#000000"},
        {"SpinEditBox R", "0"},
        {"SpinEditBox G", "0"},
        {"SpinEditBox B", "0"},
        {"EditBox Folder of automatic saves", ""},
        {"QRadioButton Program manager first", "Timeline first"},
        {"QRadioButton Timeline first", "Timeline first"},
        {"SpinEditBox Fade in", "0.5 second"},
        {"SpinEditBox TCP port", "8000"},
        {"SpinEditBox Undo steps", "50"},
        {"StoredCheckBox Mute while the screen is black", "Off"},
        {"TimeEditBox Interval", "00:00:03"}};
    EXPECT_TRUE(marks(expected.size()));
    EXPECT_EQ(marked(), expected);
}

TEST_F(PutBackTest, TheMenuOfAControlPutsItBack)
{
    open({{"undoStep", 20}, {"fadeInTime", 2.5}});
    ASSERT_TRUE(marks(2));
    auto* steps = view->dialog()
                      .findChild<mivo::settings::UndoSettingBox*>()
                      ->findChild<mivo::widgets::SpinEditBox*>();
    auto* menu = menuOf(steps);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->actions().last()->text(), "Put back to 50");
    menu->actions().last()->trigger();
    menu->close();
    EXPECT_TRUE(marks(1));
    EXPECT_EQ(steps->value(), 50);
    EXPECT_EQ(held("undoStep"), 50);
    EXPECT_EQ(held("fadeInTime"), 2.5);
    EXPECT_EQ(runtime.call([this] {
        return store->setAll({{mivohost::SettingsStore::Key::undoStep, 21}});
    }),
              "");
    EXPECT_TRUE(marks(2)) << "it follows what is set, as by an import";
    view->switchLanguage("zh_cn");
    EXPECT_TRUE(QTest::qWaitFor([this] {
        const auto texts = marked();
        return std::any_of(texts.begin(), texts.end(),
                           [](const auto& text) { return text.second == "0.5秒"; });
    }));
}

TEST_F(PutBackTest, ASectionIsPutBackOnceItsSettingsAreKeptAndCanBeHadAgain)
{
    open({{"undoStep", 20}, {"openRecentFiles", 1}, {"fadeInTime", 2.5}, {"midiBindings", "[7]"}});
    ASSERT_TRUE(marks(3));
    auto* stack = view->dialog().findChild<QStackedWidget*>();
    auto* button = stack->widget(0)->findChild<QPushButton*>("putBackSection");
    EXPECT_TRUE(stack->widget(0)->findChild<QWidget*>("differenceMarks")->isVisible());
    const auto all = view->dialog().findChildren<QPushButton*>("putBackSection");
    const auto hidden = std::count_if(all.begin(), all.end(), std::mem_fn(&QWidget::isHidden));
    EXPECT_EQ(all.size() - hidden, 2) << "no page shows the bindings";
    auto* menu = menuOf(view->dialog().findChild<QButtonGroup*>()->button(0));
    ASSERT_NE(menu, nullptr);
    QString text;
    const auto putBack = [&](int answer, int undo) {
        whenModal<TipDialog>([=, &text](TipDialog& question) {
            if (answer == TipDialog::accepted) {
                whenModal<TipDialog>([=, &text](TipDialog& told) {
                    text = told.tipText();
                    told.done(undo);
                });
            }
            question.done(answer);
        });
        answer == TipDialog::dismissed ? menu->actions()[0]->trigger() : button->click();
        return std::pair(held("undoStep").toInt(), held("openRecentFiles").toBool());
    };
    using Values = std::pair<int, bool>;
    EXPECT_EQ(putBack(TipDialog::dismissed, 0), Values(20, true));
    EXPECT_EQ(asked, 0);
    keeps = false;
    EXPECT_EQ(putBack(TipDialog::accepted, TipDialog::accepted), Values(20, true));
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(text.contains("disk full"));
    keeps = true;
    store->kept.fails = true;
    EXPECT_EQ(putBack(TipDialog::accepted, TipDialog::cancelled), Values(20, true));
    EXPECT_TRUE(text.contains("2 of 2 settings could not be saved"));
    store->kept.fails = false;
    EXPECT_EQ(putBack(TipDialog::accepted, TipDialog::accepted), Values(20, true)) << "undone";
    EXPECT_EQ(putBack(TipDialog::accepted, TipDialog::cancelled), Values(50, false));
    EXPECT_EQ(held("fadeInTime"), 2.5) << "of another section";
    EXPECT_TRUE(marks(1));
    EXPECT_TRUE(button->isHidden());
}

TEST_F(PutBackTest, AnotherLanguageEndsARun)
{
    store = std::make_unique<TestStore>(QVariantHash{{"undoStep", 20}});
    const auto settings = runtime.call([this] { return store->all(); });
    int runs = 0;
    mivohost::Rehearsal rehearsal([&](const auto& /*differences*/) { ++runs; });
    rehearsal.start(settings);
    EXPECT_TRUE(QTest::qWaitFor([&] { return runs == 1; }));
    rehearsal.start(settings);
    rehearsal.translateLanguage();
    QApplication::processEvents();
    EXPECT_EQ(runs, 1);
}

} // namespace putbacktest
