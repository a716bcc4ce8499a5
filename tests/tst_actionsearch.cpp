#include "surface/actionpanel.h"

#include "peripherals/peripherals.h"
#include "support/fulldisk.h"
#include "support/servicetest.h"
#include "surface/actiontools.h"
#include "surface/bindingsheet.h"
#include "surface/inputmonitor.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivowidgets/alertlabel.h>
#include <mivowidgets/shortcutcover.h>

namespace actionsearchtest {

using namespace mivohost;
using mivo::widgets::ShortCutCover;

const std::string takePath = "/Peripherals/Stage/Take";

struct FindAction : ::testing::Test
{
    FindAction()
    {
        // Several actions hold F6, as where another machine of the show has bound it meanwhile.
        QDir().mkpath(QFileInfo(mivo::settings::shortCutFilePath()).path());
        writeFile(mivo::settings::shortCutFilePath(),
                  R"({"shortCutInfoList":[{"type":210,"path":"","shortCutStr":"Ctrl + F5"},
                  {"type":9999,"path":"","shortCutStr":"F6"},
                  {"type":189,"path":"","shortCutStr":"F6"},{"type":186,"path":"","shortCutStr":"F6"},
                  {"type":188,"path":"","shortCutStr":"Ctrl + S"}]})");
        peripherals.midi().table().bind({189, "/Peripherals/Global/MuteSwitch", control});
        peripherals.dmx().table().bind({210, takePath, "DMX 10"});
        peripherals.dmx().table().bind({187, "/Peripherals/Global/OutputSwitch", "DMX 2"});
        peripherals.osc().setInfo({true, port});
        panel = std::make_unique<ActionPanel>(peripherals);
        panel->setTexts();
        activateWindow(panel.get());
        log.clear();
    }
    ~FindAction() override
    {
        runtime.stop(); // it may be writing a setting
        QFile::remove(mivo::settings::shortCutFilePath());
    }

    template <typename Control>
    Control* find(const char* name)
    {
        return panel->findChild<Control*>(name);
    }
    QStringList names()
    {
        QStringList shown;
        for (const auto* cover : panel->findChildren<ShortCutCover*>()) {
            const auto* button = qobject_cast<QPushButton*>(cover->parent());
            if (button->isVisibleTo(panel.get())) {
                shown.append(button->text());
            }
        }
        return shown;
    }
    QString result()
    {
        const auto* label = find<mivo::widgets::AlertLabel>("foundAction");
        EXPECT_EQ(label->isVisible(), !label->text().isEmpty()) << "what appears is spoken";
        return label->text();
    }

    const std::string control = "CC 7 ch 1 (Desk)";
    const int port = freeUdpPort();
    const InEnglish english;
    LogCapture log;
    TestRuntime runtime;
    SettingsStore store;
    Peripherals peripherals{runtime, store};
    std::unique_ptr<ActionPanel> panel;
};

TEST_F(FindAction, FindsByNameInEveryLanguage)
{
    const int all = names().size();
    for (const auto& [text, name] : {std::pair("  tAké", "Stage: Take"),
                                     std::pair("静音", "Global: Mute"), std::pair("xyz", "")}) {
        find<QLineEdit>("findAction")->setText(text);
        EXPECT_EQ(names().join(','), QString(name).section(' ', 1)) << text;
        EXPECT_EQ(result().isEmpty(), !names().isEmpty()) << text;
        panel->setEditing(true);
        const auto* focus = qobject_cast<ShortCutCover*>(QApplication::focusWidget());
        EXPECT_EQ(focus == nullptr ? "" : focus->accessibleName(), name) << "no hidden one";
        panel->setEditing(false);
    }
    find<QLineEdit>("findAction")->clear();
    EXPECT_EQ(names().size(), all);
}

TEST_F(FindAction, FindsByPressingAndTriggersNothing)
{
    const auto bindings = peripherals.midi().table().text();
    const int all = names().size();
    find<QLineEdit>("findAction")->setText("xyz");
    find<QPushButton>("findByPressing")->click();
    EXPECT_EQ(names().size(), all) << "any may be found";
    const auto move = [](auto& service, const char* used) {
        EXPECT_EQ(service.table().use(used, true, true).first, BindingTable::Outcome::nothing);
    };
    const auto send = [this](const QByteArray& address, char value = 1) {
        const QByteArray datagram = address + QByteArray(",i\0\0\0\0\0", 7) + value;
        QUdpSocket().writeDatagram(datagram, QHostAddress::LocalHost, quint16(port));
    };
    const std::vector<std::pair<std::function<void()>, QString>> rows{
        {[&] { press(Qt::Key_F5, Qt::ControlModifier); }, "Ctrl + F5 – Stage: Take"},
        {[&] { press(Qt::Key_F6); }, "F6 – Global: Fade to black"},
        {[&] { press(Qt::Key_F7); }, "F7 is free"},
        {[&] { press(Qt::Key_E, Qt::ControlModifier); }, "Ctrl + E is free"},
        {[&] { press(Qt::Key_S, Qt::ControlModifier); }, "Ctrl + S belongs to the program itself"},
        {[&] { move(peripherals.midi(), control.c_str()); }, "CC 7 ch 1 (Desk) – Global: Mute"},
        {[&] { move(peripherals.midi(), "CC 8 ch 1 (Desk)"); }, "CC 8 ch 1 (Desk) is free"},
        {[&] { move(peripherals.dmx(), "DMX 10"); }, "DMX 10 – Stage: Take"},
        {[&] { send(QByteArray("/Peripherals/Stage/Take\0", 24)); },
         "/Peripherals/Stage/Take – Stage: Take"},
        {[&] { send(QByteArray("/Peripherals/a/b\0\0\0\0", 20)); }, "/Peripherals/a/b is free"}};
    for (const auto& [use, told] : rows) {
        use();
        EXPECT_TRUE(QTest::qWaitFor([&, &wanted = told] { return result() == wanted; }, 2000))
            << result();
    }
    peripherals.midi().table().use("CC 9 ch 1 (Desk)", true, false); // repeats its position
    send(QByteArray("/Peripherals/Stage/Take\0", 24), 0);
    QTest::qWait(150);
    EXPECT_EQ(result(), rows.back().second);
    QWidget other;
    const std::function<void()> ends[]{[] { press(Qt::Key_Escape); },
                                       [&other] { activateWindow(&other); },
                                       [this] { panel->setLocked(true); }};
    for (const auto& end : ends) {
        panel->setLocked(false);
        find<QPushButton>("findByPressing")->setChecked(true);
        end();
        EXPECT_FALSE(panel->tools().search().isFinding()) << &end - ends;
    }
    panel->setLocked(false);
    activateWindow(panel.get());
    EXPECT_EQ(log.count("|action "), 0) << "nothing was triggered";
    EXPECT_EQ(peripherals.midi().table().text(), bindings);
    press(Qt::Key_F6);
    send(QByteArray("/Peripherals/Stage/Cut\0\0", 24));
    EXPECT_TRUE(QTest::qWaitFor([&] { return log.count("|action ") == 2; })) << "now they do again";
    EXPECT_EQ(log.count("|action Global/FTBSwitch by F6"), 1) << "as found";
    EXPECT_EQ(peripherals.midi().table().use(control, true, true).first,
              BindingTable::Outcome::triggered);
}

TEST_F(FindAction, TheMonitorShowsWhileAControlIsLearnedAndLeavesTheFocus)
{
    chooseItem(find<QComboBox>("shortcutKind"), PeripheralDmx);
    panel->setEditing(true);
    EXPECT_TRUE(panel->tools().monitor().isVisible());
    EXPECT_EQ(panel->tools().monitor().findChild<QComboBox*>("inputKind")->currentText(), "DMX");
    QApplication::processEvents();
    EXPECT_NE(qobject_cast<ShortCutCover*>(QApplication::focusWidget()), nullptr);
    EXPECT_EQ(peripherals.dmx().table().use("DMX 9", true, true).first,
              BindingTable::Outcome::learned);
}

TEST_F(FindAction, ASheetHasEveryKindAndMarksConflicts)
{
    BindingSheet& sheet = panel->tools().sheet();
    sheet.openWindow();
    auto* view = sheet.findChild<QTableView*>("bindings");
    const auto column = [view](int number) {
        QStringList texts;
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            texts.append(view->model()->index(row, number).data().toString());
        }
        return texts;
    };
    EXPECT_EQ(column(0).first(), "Global: Output on/off") << "in the order of the program";
    view->sortByColumn(3, Qt::AscendingOrder);
    EXPECT_EQ(column(3).mid(0, 3), QStringList({"DMX 2", "DMX 10", ""}));
    auto* filter = sheet.findChild<QLineEdit*>("bindingFilter");
    filter->setText("ctrl");
    EXPECT_EQ(column(1), QStringList({"Ctrl + F5", "Ctrl + S"}));
    const QTemporaryDir folder;
    const auto save = [&](const QString& name) {
        sheet.saveTo(folder.filePath(name));
        auto* pdf = sheet.findChild<QPushButton*>("sheetAsPdf");
        EXPECT_TRUE(QTest::qWaitFor([&] { return pdf->isEnabled(); }));
        return readFile(folder.filePath(name));
    };
    filter->clear();
    const QByteArray html = save("sheet.html");
    for (const char* part :
         {"<td>Stage: Take</td><td>Ctrl + F5</td><td></td><td>DMX "
          "10</td><td>/Peripherals/Stage/Take</td>",
          "<td>Global: Mute</td><td>F6<br><b>F6 is bound more than once</b></td><td>CC 7 ch 1 "
          "(Desk)</td>",
          "<td>Ctrl + S<br><b>Ctrl + S belongs to the program itself</b></td>"}) {
        EXPECT_TRUE(html.contains(part)) << part;
    }
    EXPECT_EQ(html.count("<b>"), 4);
    EXPECT_TRUE(save("sheet.pdf").startsWith("%PDF-"));
    QSignalSpy failed(panel.get(), &ActionPanel::failed);
    save("missing/sheet.pdf");
    EXPECT_TRUE(save("SHEET.HTM").startsWith("<"));
    SKIP_WITHOUT_FULL_DISK();
    {
        const FullDisk full;
        save("full.html");
    }
    ASSERT_EQ(failed.size(), 2);
    EXPECT_EQ(failed[1][0].toString(), "ShortcutsNotExported");
    filter->setText("xyz");
    EXPECT_FALSE(sheet.findChild<QPushButton*>("sheetAsHtml")->isEnabled());
    EXPECT_FALSE(sheet.findChild<QLabel*>("sheetState")->text().isEmpty());
}

} // namespace actionsearchtest
