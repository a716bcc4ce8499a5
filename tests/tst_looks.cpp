#include "system/looks.h"

#include "peripherals/peripherals.h"
#include "project/projectfile.h"
#include "surface/actionpanel.h"
#include "surface/actiontools.h"
#include "surface/bindingsheet.h"
#include "surface/importdialog.h"
#include "surface/inputmonitor.h"
#include "surface/mainwindow.h"
#include "surface/screenfit.h"
#include "surface/settingsview.h"

#include "support/test.h"
#include "support/uselook.h"

#include <mivosettingswidgets/settingsdialog.h>
#include <mivowidgets/alertlabel.h>
#include <mivowidgets/colordialog.h>

#include <QtGui/QScreen>

#include <cmath>
#include <deque>
#include <iostream>
#include <map>

namespace lookstest {

using mivo::style::Look;
using namespace mivohost;

double luminance(QRgb color)
{
    const auto part = [](int value) {
        const double share = value / 255.0;
        return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(qRed(color)) + 0.7152 * part(qGreen(color)) + 0.0722 * part(qBlue(color));
}

double contrast(QRgb one, QRgb other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

/// The palette with its colours of texts transparent: all, or those that it was given.
QPalette withoutTexts(QPalette palette, bool all)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::PlaceholderText, QPalette::HighlightedText}) {
        if (all || palette.resolve() & (1U << role)) {
            palette.setColor(role, Qt::transparent);
        }
    }
    return palette;
}

/// Takes the look away again.
struct LooksTest : ::testing::Test
{
    ~LooksTest() override { useLook(std::nullopt); }
};

struct Contrast : LooksTest, ::testing::WithParamInterface<Look>
{
    Contrast() { QApplication::setCursorFlashTime(0); }

    /// Shows all that has texts, one after the other, and hands each to look().
    void showAll()
    {
        RuntimeThread runtime;
        TestStore store;
        ProjectFile project(runtime, store);
        Peripherals peripherals(runtime, store);
        MainWindow window(runtime, store, project, peripherals);
        project.start();
        window.switchLanguage("en");
        window.show();
        window.showNotice("KeysNotWritten", "/a");
        look(window);
        window.actions().setEditing(true);
        look(window);
        window.actions().setLocked(true);
        look(window);

        window.actions().setLocked(false);
        auto& tools = window.actions().tools();
        tools.sheet().openWindow();
        look(tools.sheet());
        tools.monitor().openWindow();
        peripherals.tap().put(PeripheralOsc, "desk", {"/cue\0\0\0\0,i\0\0\0\0\0\1", 16});
        tools.monitor().read();
        look(tools.monitor());
        window.transfer().offer(SettingsFile::read(
            R"({"schema":"mivo-settings","version":1,"settings":{"undoStep":80,"later":1}})"));
        look(*window.findChild<ImportDialog*>());
        delete window.findChild<ImportDialog*>();

        auto& dialog = window.settings().dialog();
        dialog.show();
        dialog.findChild<QPushButton*>("addMapping")->click();
        const auto buttons = dialog.findChildren<QPushButton*>("putBackSection");
        EXPECT_TRUE(QTest::qWaitFor([&buttons] {
            return !std::all_of(buttons.begin(), buttons.end(), std::mem_fn(&QWidget::isHidden));
        })) << "the controls that differ are marked";
        QTest::qWait(500); // free space comes late where there are drives, and moves what is below
        for (auto* label : dialog.findChildren<mivo::widgets::AlertLabel*>()) {
            label->setText("A failure");
            label->show();
        }
        auto* sections = dialog.findChild<QStackedWidget*>();
        for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
            if (button->property("style") == "settingBtn") {
                button->click();
                look(dialog);
                look(*qobject_cast<QScrollArea*>(sections->currentWidget())->widget());
            }
        }
        dialog.findChild<QLineEdit*>("settingsSearch")->setText("fade");
        look(dialog);
        mivo::widgets::TipDialog prompt;
        prompt.setTipText("A prompt");
        prompt.setAssistText("with more below");
        prompt.setButtonTexts("Cancel", "Restart now");
        prompt.setCancelButtonVisible(true);
        prompt.show();
        look(prompt);
        mivo::widgets::ColorDialog colors;
        colors.show();
        look(colors);
    }

    /// At first the texts are seen, then what lies behind them.
    void look(QWidget& window)
    {
        if (isBehind) {
            for (QWidget* widget : window.findChildren<QWidget*>()) {
                widget->setPalette(withoutTexts(widget->palette(), false));
            }
        }
        QImage picture;
        QImage before;
        for (int i = 0; i < 20 && (i < 2 || picture != before); ++i) {
            QTest::qWait(30);
            before = std::exchange(picture, window.grab().toImage());
        }
        if (isBehind) {
            compare(window, pictures.front(), picture);
            pictures.pop_front();
        } else {
            pictures.push_back(picture);
        }
    }

    void compare(QWidget& window, const QImage& texts, const QImage& grounds)
    {
        ASSERT_EQ(texts.size(), grounds.size());
        // The edges of letters are blended with the ground: what differs most is their colour.
        std::map<QWidget*, double> strongest;
        for (int y = 0; y < texts.height(); ++y) {
            for (int x = 0; x < texts.width(); ++x) {
                if (texts.pixel(x, y) != grounds.pixel(x, y)) {
                    double& most = strongest[window.childAt(x, y)];
                    most = std::max(most, contrast(texts.pixel(x, y), grounds.pixel(x, y)));
                }
            }
        }
        for (const auto& [widget, found] : strongest) {
            if (widget->inherits("QColorLuminancePicker") || widget->inherits("QScrollBar")) {
                continue; // an arrow beside colours, and a handle that a line of the log moves
            }
            ++(widget->isEnabled() ? measured : measuredDisabled);
            double& least = widget->isEnabled() ? faintest : faintestDisabled;
            least = std::min(least, found);
            EXPECT_TRUE(found >= 4.5 || !widget->isEnabled())
                << found << ' ' << widget->property("text").toString() << ' '
                << widget->objectName() << ' ' << widget->metaObject()->className();
        }
    }

    const InEnglish english;
    std::deque<QImage> pictures;
    bool isBehind = false;
    int measured = 0;
    int measuredDisabled = 0;
    double faintest = 21;
    double faintestDisabled = 21;
};

TEST_P(Contrast, LetsEveryTextBeRead)
{
    useLook(GetParam());
    showAll();
    isBehind = true;
    QString sheet = mivo::style::styleSheet(GetParam());
    sheet.replace(QRegularExpression("(?<![-a-z])(color|selection-color): #[0-9a-f]+"),
                  "\\1: transparent");
    mivo::style::apply(GetParam(), sheet);
    std::vector<std::pair<const char*, QPalette>> palettes{{nullptr, QApplication::palette()}};
    for (const char* type : {"QDialog", "QMainWindow", "QScrollArea"}) {
        palettes.emplace_back(type, QApplication::palette(type));
    }
    for (const auto& [type, palette] : palettes) {
        QApplication::setPalette(withoutTexts(palette, true), type);
    }
    showAll();
    EXPECT_GT(measured, 250);
    std::cout << measured << " texts, the faintest at " << faintest << "; " << measuredDisabled
              << " disabled, the faintest at " << faintestDisabled << '\n';
}

INSTANTIATE_TEST_SUITE_P(Looks, Contrast, ::testing::Values(Look::dark, Look::light));

QColor pixelOf(QWidget& widget, int x, int y)
{
    return widget.grab().toImage().pixelColor(x, y);
}

TEST_F(LooksTest, LeaveWhatTheHostSays)
{
    useLook(Look::light);
    const QColor wanted("#804020");
    QLabel label;
    QPalette palette;
    palette.setColor(QPalette::WindowText, wanted);
    label.setPalette(palette);
    QWidget surface;
    surface.setProperty("style", "BG4");
    QTreeWidget tree; // whose header has rules, which the other sheet does not have
    for (QWidget* widget : std::initializer_list<QWidget*>{&label, &surface, &tree}) {
        widget->resize(120, 80);
        widget->show();
    }
    mivo::style::apply(Look::dark, "QWidget[style=\"BG4\"] { background: #804020; }");
    EXPECT_EQ(pixelOf(surface, 5, 5), wanted);
    EXPECT_EQ(label.palette().color(QPalette::WindowText), wanted);
}

TEST_F(LooksTest, FollowThePaletteAndTheDirectionUnlessOneIsChosen)
{
    useLook(std::nullopt);
    QPushButton button("Section");
    button.setProperty("style", "settingBtn");
    button.setCheckable(true);
    button.setChecked(true);
    button.resize(120, 30);
    QCheckBox box;
    box.resize(120, 30);
    QLabel failure("A failure");
    failure.setObjectName("portFailure");
    QMenu menu;
    const auto expectLight = [&](bool isLight) {
        EXPECT_EQ(QApplication::palette().color(QPalette::Text).name(),
                  isLight ? "#1b2229" : "#d9e0e8");
        EXPECT_EQ(pixelOf(button, 60, 2).name(), isLight ? "#2c5f91" : "#24405b");
        for (const bool isChecked : {true, false}) {
            box.setChecked(isChecked);
            EXPECT_EQ(pixelOf(box, 3, 15).name(), isChecked ? "#2c5f91"
                                                  : isLight ? "#ffffff"
                                                            : "#15181c");
        }
        failure.ensurePolished();
        EXPECT_EQ(failure.palette().color(QPalette::WindowText).name(),
                  isLight ? "#8a4f00" : "#f0b35a");
        menu.ensurePolished();
        emit menu.aboutToShow(); // as it does when it is opened
        EXPECT_EQ(menu.styleSheet().contains("#e4e8ed"), isLight);
    };
    {
        const Looks chosen("light");
        QApplication::setPalette(QPalette(Qt::black));
        failure.ensurePolished();
        EXPECT_EQ(failure.palette().color(QPalette::WindowText).name(), "#8a4f00");
        const Looks desktops("system");
        expectLight(false);
        QApplication::setPalette(QPalette(Qt::lightGray));
        expectLight(true);
    }
    const Looks dark("dark");
    expectLight(false);
    const QString bar = "#6db1f2";
    EXPECT_EQ(pixelOf(button, 2, 15).name(), bar);
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    EXPECT_NE(pixelOf(button, 2, 15).name(), bar);
    EXPECT_EQ(pixelOf(button, 117, 15).name(), bar);
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    QApplication::setPalette(QPalette(Qt::lightGray)); // as another desktop's colours
    EXPECT_EQ(QApplication::palette("QDialog").color(QPalette::Window).name(), "#1a1e23");
    useLook(std::nullopt);
    EXPECT_EQ(failure.palette().color(QPalette::WindowText),
              QApplication::palette().color(QPalette::WindowText));
}

TEST_F(LooksTest, GiveRulesWhenTheyAreNeeded)
{
    useLook(Look::dark);
    QWidget window;
    window.resize(200, 100);
    QPlainTextEdit hidden(&window);
    hidden.hide();
    QPlainTextEdit fixed(&window);
    fixed.setFixedSize(100, 50);
    fixed.move(0, 1000); // below what is seen
    window.show();
    QTest::qWait(20);
    for (QPlainTextEdit* edit : {&hidden, &fixed}) {
        EXPECT_TRUE(edit->styleSheet().isEmpty());
        edit->move(0, 0);
        edit->show();
        QTest::qWait(20);
        EXPECT_TRUE(edit->styleSheet().contains("#15181c"));
    }
}

TEST_F(LooksTest, LeaveSheetsOfOtherMakersTheLastWord)
{
    QWidget page;
    page.setStyleSheet("QPushButton, QPushButton[style=\"assist\"] { background: #804020; }"
                       "QListWidget, QLabel { color: #ff8080; }");
    QPushButton plain(&page);
    QPushButton quiet(&page);
    quiet.setProperty("style", "assist"); // for which the look has a transparent ground
    QPushButton section(&page);
    section.setProperty("style", "settingBtn");
    section.setCheckable(true);
    section.setChecked(true);
    QPushButton fixed(&page);
    fixed.setFixedSize(60, 30);
    QListWidget list(&page);
    QLabel failure(&page);
    failure.setObjectName("portFailure");
    for (const auto look : {Look::dark, Look::light}) {
        useLook(look);
        for (QPushButton* button : {&plain, &quiet, &section, &fixed}) {
            button->resize(60, 30);
            EXPECT_EQ(pixelOf(*button, 8, 8).name(), "#804020");
        }
        list.ensurePolished();
        failure.ensurePolished();
        EXPECT_EQ(list.palette().color(QPalette::Text).name(), "#ff8080");
        EXPECT_EQ(failure.palette().color(QPalette::WindowText).name(), "#ff8080");
        EXPECT_EQ(list.palette().color(QPalette::Base).name(),
                  look == Look::dark ? "#15181c" : "#ffffff");
    }
}

TEST(ScreenFit, BringsWindowsOntoTheirScreen)
{
    const ScreenFit screenFit;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const auto shown = [&screen](QWidget& window, QPoint position) {
        window.move(position);
        window.show();
        QApplication::processEvents();
        window.hide();
        return screen.contains(window.frameGeometry());
    };
    QWidget wide;
    QDialog fixed;
    wide.resize(5000, 300);
    fixed.setFixedSize(300, 5000);
    for (const QPoint& position : {QPoint(0, 0), QPoint(700, -50)}) {
        EXPECT_TRUE(shown(wide, position));
        EXPECT_TRUE(shown(fixed, position));
        EXPECT_EQ(fixed.minimumSize(), fixed.maximumSize());
    }
    QDialog small;
    small.setFixedSize(200, 100);
    EXPECT_TRUE(shown(small, {50, 60}));
    EXPECT_EQ(small.pos(), QPoint(50, 60));
    EXPECT_EQ(small.size(), QSize(200, 100));
}

} // namespace lookstest
