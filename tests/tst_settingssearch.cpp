#include <mivosettingswidgets/settingsdialog.h>

#include "support/plainpage.h"
#include "support/test.h"
#include "surface/settingsview.h"

namespace settingssearchtest {

using namespace mivo::settings;

struct Search : ::testing::Test
{
    Search()
    {
        dialog.enableSearch();
        line = dialog.findChild<QLineEdit*>("settingsSearch");
        status = dialog.findChild<QLabel*>("settingsSearchStatus");
    }

    PlainPage* insert(const QString& section, QWidget* control)
    {
        auto* page = new PlainPage(section);
        page->layout()->addWidget(control);
        dialog.insertSettingBox(page);
        return page;
    }

    /// What the dialog says of the hits of `wanted`.
    QString found(const QString& wanted)
    {
        line->setText(wanted);
        EXPECT_EQ(line->accessibleDescription(), status->text());
        return status->text();
    }

    bool isDimmed(int section) const
    {
        return dialog.findChild<QButtonGroup*>()->button(section)->property("dimmed").toBool();
    }

    QWidget* marks() const { return dialog.findChild<QWidget*>("searchMarks"); }

    /// Whether a mark is drawn where the text of a widget begins.
    bool isMarked(const QWidget* widget) const
    {
        QImage image(marks()->size(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        marks()->render(&image, {}, {}, {});
        const QPoint place = widget->mapTo(marks()->parentWidget(), {5, widget->height() / 2});
        return marks()->isVisible() && image.pixelColor(place).alpha() != 0;
    }

    InEnglish english;
    SettingsDialog dialog;
    QLineEdit* line = nullptr;
    QLabel* status = nullptr;
};

TEST_F(Search, FindsEveryKindOfTextHoweverItIsWritten)
{
    auto* combo = new QComboBox;
    combo->addItems({"Permanent", "Zw\u00f6lf Monate"});
    auto* list = new QListWidget;
    list->addItems({"Alpha", "\uff21\uff22\uff23 Studio"}); // of full width
    auto* spin = new QDoubleSpinBox;
    spin->setPrefix("about ");
    spin->setSuffix(" frames");
    auto* edit = new QLineEdit("typed by somebody");
    edit->setPlaceholderText("Stra\u00dfe");
    auto* menu = new QPushButton("&Play now");
    menu->setMenu(new QMenu(menu));
    menu->menu()->addAction("Last programme");
    auto* icon = new QPushButton;
    icon->setAccessibleName("Pick from the screen");
    auto* tip = new QLabel("<b>Needs</b> a restart");
    tip->setToolTip("Cl\u00e9 USB");
    auto* tabs = new QTabWidget;
    tabs->addTab(new QLabel("first"), "Inputs");
    tabs->addTab(new QLabel("on the second tab"), "Outputs");
    auto* hidden = new QLabel("not for this machine");
    auto* page = insert("Display Settings", hidden);
    page->setTitle("Picture");
    for (QWidget* control :
         std::initializer_list<QWidget*>{combo, list, spin, edit, menu, icon, tip, tabs}) {
        page->layout()->addWidget(control);
    }
    hidden->hide();
    for (const char* wanted :
         {"PERMA", "zwolf", "ZWO\u0308LF", "abc studio", "about", "Frames", "strasse", "play NOW",
          "last pro", "from the screen", "needs a", "cle usb", "outputs", "second tab",
          "  picture ", "\u00a0display settings"}) {
        EXPECT_EQ(found(wanted), "Found: 1") << wanted;
        EXPECT_TRUE(isDimmed(0) && !isDimmed(1)) << wanted;
    }
    for (const char* wanted : {"somebody", "not for this", "<b>", "strass e"}) {
        EXPECT_EQ(found(wanted), "Nothing found") << wanted;
        EXPECT_TRUE(isDimmed(0) && isDimmed(1)) << wanted;
    }
    found("second tab");
    activateWindow(&dialog);
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(tabs->currentIndex(), 1);
    EXPECT_EQ(found("  "), "");
    EXPECT_FALSE(isDimmed(0) || isDimmed(1));
}

TEST_F(Search, LeadsFromHitToHitAcrossSectionsAndIntoTheControl)
{
    auto* high = new QLabel("fade in");
    high->setFixedHeight(1500);
    auto* low = new QLabel("fade out");
    auto* number = new QLineEdit;
    low->setBuddy(number);
    auto* other = new QCheckBox("fades");
    insert("GeneralSettings", new QCheckBox("Fader"));
    insert("Display", high);
    insert("Display", low)->layout()->addWidget(number);
    insert("Audio", other);
    auto* stack = dialog.findChild<QStackedWidget*>();
    activateWindow(&dialog);
    EXPECT_EQ(QApplication::focusWidget(), dialog.findChild<QButtonGroup*>()->button(0));
    dialog.findChild<QButtonGroup*>()->button(1)->click(); // begins there
    QTest::keySequence(&dialog, QKeySequence::Find);
    ASSERT_EQ(QApplication::focusWidget(), line);
    QTest::keyClicks(line, "fade");
    EXPECT_EQ(status->text(), "Found: 4");
    EXPECT_TRUE(stack->currentIndex() == 1 && !isDimmed(2));
    const auto press = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(line, key, modifiers);
        return std::pair(stack->currentIndex(), status->text().toStdString());
    };
    using Place = std::pair<int, std::string>;
    EXPECT_EQ(press(Qt::Key_Return), Place(1, "2 of 4"));
    EXPECT_TRUE(isMarked(high));
    EXPECT_TRUE(low->visibleRegion().isEmpty());
    EXPECT_EQ(press(Qt::Key_Enter), Place(1, "3 of 4"));
    EXPECT_FALSE(low->visibleRegion().isEmpty()) << "scrolled to";
    EXPECT_TRUE(isMarked(low) && !isMarked(number));
    for (const Place& before : {Place(1, "2 of 4"), {0, "1 of 4"}, {2, "4 of 4"}}) {
        EXPECT_EQ(press(Qt::Key_Return, Qt::ShiftModifier), before);
    }
    EXPECT_EQ(press(Qt::Key_Return), Place(0, "1 of 4"));
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    press(Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), number);
    QTest::keyClick(number, Qt::Key_Escape);
    EXPECT_TRUE(line->text().isEmpty() && line->hasFocus() && !isDimmed(0));
    EXPECT_FALSE(isMarked(low));
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(line, Qt::Key_Escape);
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(Search, FollowsWhatChangesWhileItIsShown)
{
    auto* combo = new QComboBox;
    combo->addItem("Permanent");
    auto* page = insert("Display", combo);
    activateWindow(&dialog);
    EXPECT_EQ(found("month"), "Nothing found");
    combo->addItem("One month");
    EXPECT_TRUE(QTest::qWaitFor([&] { return status->text() == "Found: 1"; }));
    EXPECT_FALSE(isDimmed(1));
    insert("Audio", new QLabel("Monthly"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return status->text() == "Found: 2"; }));
    QTest::keyClick(line, Qt::Key_Return);
    delete page;
    EXPECT_TRUE(QTest::qWaitFor([&] { return status->text() == "Found: 1"; }));
    EXPECT_TRUE(isDimmed(1));
    dialog.close();
    dialog.show();
    EXPECT_EQ(line->text(), "") << "the next time it begins anew";
}

TEST(SearchOfTheHostsPages, KnowsTheOtherLanguages)
{
    const InEnglish english;
    TestRuntime runtime;
    TestStore store;
    mivohost::SettingsView view(runtime, store, nullptr);
    auto& dialog = view.dialog();
    dialog.show();
    auto* line = dialog.findChild<QLineEdit*>("settingsSearch");
    auto* status = dialog.findChild<QLabel*>("settingsSearchStatus");
    for (const char* language : {"en", "zh_cn"}) {
        view.switchLanguage(language);
        // A label, an item of a list with a number, and a text that both languages share.
        for (const char* wanted : {"undo steps", "撤销步数", "12 months", "MFPS"}) {
            line->setText(wanted);
            QTest::keyClick(line, Qt::Key_Return);
            EXPECT_TRUE(status->text().contains("1")) << language << wanted;
        }
    }
    line->setText("Undo steps");
    view.switchLanguage("en");
    EXPECT_TRUE(QTest::qWaitFor([&] { return status->text() == "Found: 1"; }));
    EXPECT_EQ(line->accessibleName(), "Search");
}

} // namespace settingssearchtest
