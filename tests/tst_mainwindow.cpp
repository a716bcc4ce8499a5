#include "surface/mainwindow.h"

#include "base/hosttext.h"
#include "peripherals/peripherals.h"
#include "surface/actionpanel.h"
#include "surface/actiontools.h"
#include "surface/bindingsheet.h"
#include "surface/importdialog.h"
#include "surface/settingstexts.h"
#include "system/tray.h"

#include "support/projecttest.h"

#include <mivosettingswidgets/settingsdialog.h>

namespace projecttest {

using mivo::widgets::TipDialog;

struct Window : InEnglish, ProjectTest
{
    Window()
    {
        window.switchLanguage("en");
        activateWindow(&window);
    }

    /// Presses the button at that place of the next question; notes the question's text.
    void answer(int button)
    {
        whenModal<QMessageBox>([this, button](QMessageBox& question) {
            asked.append(question.text());
            QTest::mouseClick(question.buttons().at(button), Qt::LeftButton);
        });
    }
    enum Answer { keep, stay, drop }; // in the order of QMessageBox::buttons()

    /// Whether such a text is the last message, or is soon.
    bool says(const std::string& text)
    {
        return QTest::qWaitFor([&] {
            const auto& messages = window.messages().messages();
            return !messages.empty() && messages.back().text.find(text) != std::string::npos;
        });
    }

    QStringList asked;
    Peripherals peripherals{runtime, *store};
    MainWindow window{runtime, *store, *file, peripherals};
    QSignalSpy closed{&window, &MainWindow::closed};
};

TEST_F(Window, AsksBeforeChangesAreLost)
{
    file->play(3);
    answer(stay);
    window.close();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(asked, QStringList{"Save the changes to “Unnamed project”?"});

    ASSERT_TRUE(saveAs(path("a&b.mivo")));
    file->play(4);
    auto* menu = window.menuBar()->actions().at(0)->menu();
    emit menu->aboutToShow();
    const auto entries = menu->actions();
    for (const int entry : {0, 1, 2}) { // new, open, and the first of the recent files
        const auto* recent = entries.at(entry)->menu();
        answer(stay);
        (recent != nullptr ? recent->actions() : entries).at(recent ? 0 : entry)->trigger();
        EXPECT_EQ(file->state().project.lastPlayed, 4) << entry;
    }
    answer(drop);
    entries.at(0)->trigger(); // New
    EXPECT_EQ(file->state().file, "");
    EXPECT_FALSE(file->state().modified);

    ASSERT_TRUE(open(path("a&b.mivo")));
    EXPECT_EQ(file->state().project.lastPlayed, 3) << "dropped";
    file->play(4);
    answer(keep);
    window.close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return closed.size() == 1; })) << "when it is saved";
    EXPECT_EQ(asked.size(), 6);
    ASSERT_TRUE(open(path("a&b.mivo")));
    EXPECT_EQ(file->state().project.lastPlayed, 4);

    window.show();
    file->play(5);
    ASSERT_FALSE(QSystemTrayIcon::isSystemTrayAvailable());
    window.showTray();
    runtime.call([this] {
        store->setNotPromptForSave(true);
        store->setCloseSoftWareMinimize(true);
    });
    window.close();
    EXPECT_EQ(closed.size(), 2) << "without a question, and there is no tray to hide to";
    file->rescue();
    EXPECT_EQ(runtime.call([this] { return store->getUnsavedProject(); }), "") << "as is wished";
}

TEST_F(Window, ClosesOnceAllThatIsBeingSavedIsSaved)
{
    const std::pair<QString, std::function<void(const QString&)>> cases[]{
        {"hangs.mivo", [this](const QString& file) { this->file->saveAs(file); }},
        {"keys.json", [this](const QString& file) { window.actions().transfer().exportTo(file); }},
        {"settings.json",
         [this](const QString& file) {
             window.transfer().exportTo(file, {SettingsFile::Section::undo});
         }},
        {"sheet.html",
         [this](const QString& file) { window.actions().tools().sheet().saveTo(file); }},
    };
    runtime.call([this] { store->setNotPromptForSave(true); });
    for (const auto& [name, save] : cases) {
        window.show();
        file->play(3); // and is modified
        save(path(name));
        window.close();
        window.close(); // by a double click
        EXPECT_TRUE(window.isVisible() && closed.isEmpty()) << name;
        QTimer::singleShot(20, [this] { hanging.answer(); });
        EXPECT_TRUE(closed.wait()) << name;
        EXPECT_TRUE(QFile::exists(path(name))) << name;
        closed.clear();
    }
    window.show();
    file->saveAs(path("missing/show.mivo"));
    window.close();
    EXPECT_TRUE(says("missing"));
    QApplication::processEvents();
    EXPECT_TRUE(window.isVisible()) << "a failure is seen";
}

TEST_F(Window, IsClosedWithoutWhatIsNotWaitedForAnyMore)
{
    file->saveAs(path("hangs.mivo"));
    window.close();
    const QWidget* waiting = window.findChild<QLabel*>("waiting");
    QTest::qWait(600);
    EXPECT_TRUE(waiting->isVisible() && closed.isEmpty());
    window.close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return closed.size() == 1; }));
}

TEST_F(Window, OffersWhatIsUnsavedUntilSomebodyDecides)
{
    const QString save = path("unnamed-1.mivo");
    runtime.call([&] { store->setUnsavedProject(save); });
    const auto left = [&](const std::function<void(QMessageBox&)>& answer) {
        file->start();
        QPointer<QMessageBox> question;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return question = window.findChild<QMessageBox*>("unsavedFound"); }));
        answer(*question);
        EXPECT_TRUE(QTest::qWaitFor([&] { return question.isNull(); }));
        return runtime.call([this] { return store->getUnsavedProject(); });
    };
    EXPECT_EQ(left([](QMessageBox& asks) { QTest::keyClick(&asks, Qt::Key_Escape); }), save);
    EXPECT_EQ(left([](QMessageBox& asks) { asks.buttons().at(drop)->click(); }), "");
}

TEST_F(Window, ShowsAFailureUntilItIsDismissedAndKeepsEachMessage)
{
    const QLabel* notice = nullptr;
    for (const auto* label : window.findChildren<QLabel*>()) {
        notice = label->property("style") == "notice" ? label : notice;
    }
    EXPECT_FALSE(open(path("missing.mivo")));
    EXPECT_TRUE(notice->isVisible());
    const QString failure = notice->text();
    EXPECT_TRUE(failure.contains("missing.mivo"));
    window.settings(); // whose pages post messages, too
    runtime.call([this] {
        store->applyFadeTimes(1, 1);
        store->soundCards().reportMismatch({true, "left", "card"});
    });
    EXPECT_TRUE(QTest::qWaitFor([this] { return window.messages().messages().size() == 3; }));
    EXPECT_EQ(notice->text(), failure);
    EXPECT_EQ(window.messages().messages()[0].text, failure.toStdString());
    QTest::mouseClick(window.findChild<QPushButton*>("dismissNotice"), Qt::LeftButton);
    EXPECT_FALSE(notice->isVisible());
    runtime.call([this] {
        store->kept.fails = true;
        store->setUndoStep(80);
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice->isVisible(); }));
    EXPECT_TRUE(notice->text().contains("disk full"));
    runtime.call([this] { store->change("undoStep", 9000); });
    EXPECT_TRUE(says("Undo steps: what was set elsewhere is no value of it (9000)"));

    BindingSheet& sheet = window.actions().tools().sheet();
    sheet.openWindow();
    sheet.saveTo(path("missing/sheet.pdf"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice->text().contains("sheet.pdf"); }));
    EXPECT_TRUE(sheet.findChild<QLabel*>("sheetState")->text().contains("sheet.pdf"))
        << "which says so itself, too";
}

TEST_F(Window, ImportsTheSettingsThatAreTicked)
{
    const QString path = this->path("settings.json");
    const auto chosen = [this, &path] {
        window.transfer().importFrom(path);
        ImportDialog* dialog = nullptr;
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return (dialog = window.findChild<ImportDialog*>()) != nullptr && dialog->isVisible();
        }));
        return dialog;
    };
    const auto accept = [](QDialog* dialog) {
        const QPointer<QDialog> open(dialog);
        auto* buttons = dialog->findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        EXPECT_TRUE(QTest::qWaitFor([&] { return open.isNull(); }));
    };
    writeFile(path, R"({"schema":"mivo-settings","version":1,"machine":"a","settings":{
        "undoStep":81,"mfps":true,"blackScreenMute":true,"language":"zh_CN","<b>":1,
        "pictureDuration":1,"osc":{"enabled":true,"port":16}}})");
    auto* dialog = chosen();
    auto* changes = dialog->findChild<QTreeWidget*>("importChanges");
    QStringList rows;
    for (QTreeWidgetItemIterator item(changes); *item != nullptr; ++item) {
        rows.append(QString::number((*item)->checkState(0)) + ' ' + (*item)->text(0) + ' '
                    + (*item)->text(1) + ' ' + (*item)->text(2));
    }
    EXPECT_EQ(rows.join('\n'), "2 Undo and redo  \n"
                               "2 Undo steps 50 81\n"
                               "2 Display control  \n"
                               "2 MFPS Off On\n"
                               "2 Mute while the screen is black Off On\n"
                               "0 Network  \n"
                               "0 Use OSC Off, 9000 On, 16\n"
                               "0 Program  \n"
                               "0 Language – zh_CN");
    const auto* refused = dialog->findChild<QTreeWidget*>("importRefused");
    EXPECT_FALSE(changes->accessibleName().isEmpty() || refused->accessibleName().isEmpty());
    EXPECT_EQ(refused->topLevelItem(0)->text(1), "this version does not know it");
    EXPECT_EQ(refused->topLevelItem(0)->toolTip(0), "<p>&lt;b&gt;</p>") << "the name itself";
    EXPECT_EQ(refused->topLevelItem(1)->text(1), "not from 3000 to 86399000");
    const auto before = runtime.call([this] { return store->kept.rows; });
    runtime.call([this] { store->kept.fails = true; });
    accept(dialog);
    EXPECT_EQ(runtime.call([this] { return store->kept.rows; }), before);
    EXPECT_TRUE(says("nothing has changed: disk full"));
    runtime.call([this] { store->kept.fails = false; });

    dialog = chosen();
    changes = dialog->findChild<QTreeWidget*>("importChanges");
    const auto tick = [changes](const char* name, Qt::CheckState state) {
        const auto items = changes->findItems(name, Qt::MatchExactly | Qt::MatchRecursive);
        items.at(0)->setCheckState(0, state);
    };
    tick("Undo steps", Qt::Unchecked);
    tick("Use OSC", Qt::Checked);
    tick("Language", Qt::Checked);
    accept(dialog);
    EXPECT_EQ(runtime.call([this] { return store->kept.rows; }),
              (QVariantHash{
                  {"mfps", 1}, {"blackScreenMute", 1}, {"language", "zh_CN"}, {"osc", "1|16"}}));
    EXPECT_EQ(peripherals.osc().info().port, 16) << "the service follows";
    EXPECT_EQ(window.menuBar()->actions().at(0)->text(), hostText("Project"));
    EXPECT_EQ(window.findChild<QComboBox*>("languages")->currentData(), "zh_cn");
    EXPECT_TRUE(says("已导入的设置：4"));

    dialog = chosen();
    EXPECT_EQ(dialog->chosen().size(), 1U) << "the undo steps";
    dialog->reject();
    writeFile(path, "{");
    window.transfer().importFrom(path);
    EXPECT_TRUE(says("不是设置文件，第 1 行"));
}

TEST_F(Window, ExportsTheSectionsThatAreTicked)
{
    const QString path = this->path("settings 1.2.json");
    const auto type = [this](QFileDialog& chooser) {
        chooseFolder(chooser, this->path("settings 1.2"));
    };
    const auto exportUndo = [this](const std::function<void(QFileDialog&)>& choose) {
        whenModal<QDialog>([&choose](QDialog& sections) {
            for (auto* box : sections.findChildren<QCheckBox*>()) {
                box->setChecked(box->objectName() == "undo");
            }
            whenModal(choose);
            sections.accept();
        });
        window.transfer().chooseExport();
    };
    exportUndo(type);
    EXPECT_TRUE(
        says("The settings have been exported to " + QDir::toNativeSeparators(path).toStdString()));
    EXPECT_TRUE(readFile(path).contains("\"settings\": {\n        \"undoStep\": 50\n    }"))
        << readFile(path).constData();
    const QFileDialog other(nullptr, {}, QDir::rootPath()); // whose folder Qt remembers
    exportUndo([&](QFileDialog& chooser) {
        EXPECT_EQ(chooser.directory().path(), folder.path());
        whenModal<QMessageBox>([this](QMessageBox& question) {
            asked.append(question.text());
            whenModal<QFileDialog>([](QFileDialog& again) { again.reject(); });
            question.button(QMessageBox::No)->click();
        });
        type(chooser);
    });
    EXPECT_EQ(asked, QStringList{"settings 1.2.json already exists.\nDo you want to replace it?"});
    const QString capitals = this->path("OTHER.JSON");
    exportUndo([&](QFileDialog& chooser) { chooseFolder(chooser, capitals); });
    EXPECT_TRUE(says("OTHER.JSON") && QFile::exists(capitals));
    window.transfer().exportTo(folder.path(), {SettingsFile::Section::undo});
    EXPECT_TRUE(says("The settings were not exported: "
                     + QDir::toNativeSeparators(folder.path()).toStdString()));
}

TEST_F(Window, KeepsAllSettingsInAFileBeforeASectionIsPutBack)
{
    const QDir kept(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                    + "/keptsettings");
    auto& dialog = window.settings().dialog();
    QString told;
    const auto putBack = [&] {
        told.clear();
        runtime.call([this] { store->setUndoStep(81); });
        whenModal<TipDialog>([&](TipDialog& question) {
            whenModal<TipDialog>([&](TipDialog& answer) {
                told = answer.tipText() + ' ' + answer.findChild<QLabel*>("tipAssistText")->text();
                answer.done(TipDialog::cancelled);
            });
            question.done(TipDialog::accepted);
        });
        dialog.findChild<QStackedWidget*>()
            ->widget(0)
            ->findChild<QPushButton*>("putBackSection")
            ->click();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !told.isEmpty(); }));
        return runtime.call([this] { return store->getUndoStep(); });
    };
    QTest::keySequence(&window, QKeySequence("Ctrl+,"));
    EXPECT_TRUE(QTest::qWaitFor([&dialog] { return dialog.isVisible(); }));
    QDir().mkpath(QFileInfo(kept.path()).path());
    writeFile(kept.path()); // a file in place of the folder
    EXPECT_EQ(putBack(), 81);
    EXPECT_TRUE(told.contains(QDir::toNativeSeparators(kept.path() + "/settings-"))) << told;
    QFile::remove(kept.path());
    QDir().mkpath(kept.path());
    for (int i = 10; i < 22; ++i) { // from before the clock was set back
        QFile later(kept.filePath(QString("settings-2099%1.json").arg(i)));
        EXPECT_TRUE(later.open(QIODevice::WriteOnly));
        later.setFileTime(QDateTime(QDate(2099, 1, i), {}), QFileDevice::FileModificationTime);
    }
    EXPECT_EQ(putBack(), 50);
    EXPECT_EQ(kept.entryList(QDir::Files).size(), 10);
    const QString file = kept.filePath(kept.entryList(QDir::Files).at(0));
    EXPECT_TRUE(told.contains(QDir::toNativeSeparators(file))) << told;
    EXPECT_TRUE(readFile(file).contains("\"undoStep\": 81"));
    putBack();
    EXPECT_TRUE(QFile::exists(file)) << "the next one takes the place of another";
}

TEST_F(Window, HasEveryTextInTheLanguageThatIsChosen)
{
    QStringList missing;
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    translator.setMissingTextHandler(
        [&](const QString&, const QString&, const QString& key) { missing.append(key); });
    window.showTray();
    file->play(1);
    const QStringList others{"midiBindings", "dmxBindings", "recentProjectFiles", "unsavedProject"};
    std::map<SettingsFile::Key, QVariant> all; // that an export has, whose texts are shown
    const auto entries = runtime.call([this] { return store->all(); });
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto key = static_cast<SettingsFile::Key>(i);
        if (!others.contains(SettingsFile::nameOf(key))) {
            all[key] = runtime.call([&] { return store->held(SettingsFile::nameOf(key)); });
        }
    }
    window.showNotice("SettingNotSaved",
                      "/a (b): unable to open database file (Permission denied)");
    auto* languages = window.findChild<QComboBox*>("languages");
    for (const int index : {1, 0, 1}) {
        chooseItem(languages, index);
        for (const char* key :
             {"ProjectNotOpened", "ProjectNotSaved", "AutomaticSaveFailed", "AutostartFailed",
              "BindingsNotWritten", "KeysClash", "KeysReplaced", "PowerActionFailed",
              "SettingNotSaved", "SharedNotSaved", "ShortcutsNotExported", "ShowNotSaved",
              "ShortcutsNotImported", "SettingsExportedLate", "TimedActionCalledOff"}) {
            EXPECT_TRUE(hostText(key).contains("%1")) << key;
        }
        for (const char* reason :
             {"0 is no port", "a program has no id of its own", "no such folder",
              "not a project file", "the file was replaced or removed",
              "written by a later version", "no answer", "a file is still being opened or saved",
              "the open project has been changed meanwhile", "the file is too large",
              "not a settings file", "too many settings, or the name of one is too long",
              "a setting is there twice", "too deeply nested",
              "the file that is there cannot be replaced"}) {
            EXPECT_EQ(reasonText(reason) == reason, index == 0) << reason;
        }
        EXPECT_EQ(QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText) == "Space",
                  index == 0);
        for (const char* key :
             {"DataInUse", "KeyHint", "MidiHint", "MidiNoDevice", "MidiHangs", "MidiNotOpened",
              "MidiOff", "DmxHint", "DmxOff", "OscHint", "OscOff", "ShortcutFiles",
              "ClearShortcutsQuestion", "ImportShortcutsQuestion"}) {
            hostText(key);
        }
        for (const auto& entry : entries) {
            sectionText(entry.section);
        }
        for (const auto& [key, value] : all) {
            EXPECT_NE(settingText(key), SettingsFile::nameOf(key));
            for (int number = 0; number <= ResourceOSD; ++number) {
                valueText(key, value.type() == QVariant::Int ? QVariant(number) : value);
            }
        }
        EXPECT_EQ(settingText(SettingsFile::Key::unsavedProject), "unsavedProject")
            << "has no text";
        valueText(SettingsFile::Key::dynamicRangeConfig, "1|12");
        for (const auto problem :
             {SettingsFile::Problem::unknown, SettingsFile::Problem::notTaken,
              SettingsFile::Problem::wrongType, SettingsFile::Problem::outOfRange,
              SettingsFile::Problem::invalid}) {
            refusedText({"", problem});
        }
    }
    translator.setMissingTextHandler(nullptr);
    EXPECT_EQ(missing, QStringList());
    EXPECT_TRUE(says("/a (b): the settings file cannot be opened (no permission)"));
    bool isToldInChinese = false;
    for (const auto* label : window.findChildren<QLabel*>()) {
        isToldInChinese |= label->text().contains("/a (b): 无法打开设置文件 (没有权限)");
    }
    EXPECT_TRUE(isToldInChinese);
    EXPECT_EQ(runtime.call([this] { return store->getLanguage(); }), "zh_cn");
    runtime.call([this] { store->kept.fails = true; });
    chooseItem(languages, 0);
    EXPECT_EQ(languages->currentData(), "zh_cn") << "as is kept";
    EXPECT_EQ(window.findChild<QLabel*>("playing")->text(), "正在播放：Doors open");
    for (QTreeWidgetItemIterator item(window.findChild<QTreeWidget*>("programs")); *item; ++item) {
        EXPECT_EQ((*item)->font(0).bold(), (*item)->text(0) == "Doors open");
        EXPECT_EQ((*item)->toolTip(0).contains("淡入"), (*item)->parent() != nullptr);
    }
    for (const char* language : {"fr", ""}) {
        chooseItem(languages, 1);
        runtime.call([&] {
            store->kept.fails = false;
            store->setLanguage(language);
        });
        emit window.transfer().imported();
        EXPECT_EQ(languages->currentData(), systemLanguage());
        EXPECT_EQ(window.findChild<QLabel*>("hostTitle")->text(), hostText("Title"));
        EXPECT_EQ(runtime.call([this] { return store->getLanguage(); }), language);
    }
}

} // namespace projecttest
