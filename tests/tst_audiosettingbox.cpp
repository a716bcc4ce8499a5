#include <mivosettingswidgets/audiosettingbox.h>

#include "support/dialogs.h"
#include "support/hostlanguage.h"
#include "support/logcapture.h"
#include "support/testruntime.h"
#include "support/teststore.h"

#include "mivohostapi/imsgcentermgr.h"
#include "qvspdlog/spdlogapplication.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>
#include <mivosettingswidgets/virtualmappingwidget.h>
#include <mivowidgets/checkbox.h>
#include <mivowidgets/combobox.h>

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLayout>
#include <QtWidgets/QScrollArea>

#include <map>
#include <random>
#include <set>

namespace audiosettingboxtest {

using namespace mivo::settings;
using mivo::STSoundCardChangeInfo;
using mivo::widgets::CheckBox;
using mivo::widgets::ComboBox;
using mivo::widgets::TipDialog;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;

namespace {

using Cards = std::vector<STSoundCardInfo>;
using Lines = std::vector<std::string>;

void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

struct MessageLog : velorn::msgcenter::IMsgCenterMgr
{
    void postMessage(const velorn::msgcenter::STMsgInfo& message) override
    {
        all.push_back(message);
    }
    std::vector<velorn::msgcenter::STMsgInfo> all;
};

std::vector<ComboBox*> combosOf(const QWidget* editor)
{
    std::vector<ComboBox*> combos;
    for (auto* combo : editor->findChildren<ComboBox*>()) {
        if (!combo->isHidden() && !combo->parentWidget()->isHidden()) {
            combos.push_back(combo);
        }
    }
    std::sort(combos.begin(), combos.end(), [editor](QWidget* a, QWidget* b) {
        const QPoint first = a->mapTo(editor->window(), QPoint());
        const QPoint second = b->mapTo(editor->window(), QPoint());
        return std::pair(first.y(), first.x()) < std::pair(second.y(), second.x());
    });
    return combos;
}

/// What a person sees of one column: "Hall: [None, A, B] = B 1-2 (3-4)"; a channel pair that is not
/// played on stands in brackets, and "!" where the hint says that nothing is played.
std::string columnText(const ComboBox* combo)
{
    QString text =
        combo->accessibleName() + ": [" + itemsOf(combo).join(", ") + "] = " + combo->currentText();
    for (auto* mark : combo->parentWidget()->findChildren<CheckBox*>()) {
        if (!mark->isHidden()) {
            text += mark->isChecked() ? ' ' + mark->text() : " (" + mark->text() + ')';
        }
    }
    const auto* hint = combo->parentWidget()->findChild<QLabel*>("soundCardPlaysNowhere");
    return (hint != nullptr && !hint->isHidden() ? text + " !" : text).toStdString();
}

Lines columnsOf(const QWidget* editor)
{
    Lines columns;
    for (const ComboBox* combo : combosOf(editor)) {
        columns.push_back(columnText(combo));
    }
    return columns;
}

QLineEdit* nameOf(const QWidget* editor)
{
    return editor->findChild<QLineEdit*>("mappingName");
}

class Audio : public ::testing::Test
{
protected:
    const InEnglish english;

    Audio()
    {
        window.setWidgetResizable(true);
        window.resize(900, 500);
        window.show();
        makePage();
    }

    void makePage()
    {
        page = new AudioSettingBox;
        window.setWidget(page);
        page->setZRRuntime(&runtime);
    }

    void bind()
    {
        page->setSettings(&store);
        tell([](auto& cards) { cards.announceMappings(); });
        runtime.takePosted();
        log.clear();
    }

    /// Has the host tell the store, and the page shown what follows.
    void tell(const std::function<void(mivohost::SoundCardMappings&)>& what, bool settled = true)
    {
        runtime.call([&] { what(store.soundCards()); });
        if (settled) {
            settle();
        }
    }

    void setCards(const std::string& device, const std::string& caption, const Cards& cards)
    {
        tell([&](auto& known) { known.setDeviceSoundCards(device, caption, cards); });
    }

    /// Emits a signal of the store, as it does itself.
    template <typename Signal, typename... Value>
    void announce(Signal IMivoSettings::*signal, const Value&... value)
    {
        runtime.call([&] { (store.*signal)(value...); });
        settle();
    }

    QPushButton* addButton() const { return page->findChild<QPushButton*>("addMapping"); }

    void add(int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            QTest::mouseClick(addButton(), Qt::LeftButton);
            settle();
        }
    }

    std::vector<VirtualMappingWidget*> editors() const
    {
        std::vector<VirtualMappingWidget*> shown;
        for (int i = 0; i < page->layout()->count(); ++i) {
            if (auto* widget = page->layout()->itemAt(i)->widget()) {
                shown.push_back(static_cast<VirtualMappingWidget*>(widget));
            }
        }
        return shown;
    }

    /// Chooses as a person does, by the text of an item.
    static void choose(const VirtualMappingWidget* editor, std::size_t column, const QString& card)
    {
        ComboBox* combo = combosOf(editor).at(column);
        const int item = combo->findText(card);
        ASSERT_NE(item, -1) << card.toStdString();
        chooseItem(combo, item);
        settle();
    }

    void remove(VirtualMappingWidget* editor, std::function<void(TipDialog&)> answer = accept)
    {
        whenModal<TipDialog>(std::move(answer));
        editor->findChild<QPushButton*>("deleteMapping")->click();
        settle();
    }
    static void accept(TipDialog& question) { question.done(TipDialog::accepted); }

    void rename(VirtualMappingWidget* editor, const QString& name)
    {
        QLineEdit* edit = nameOf(editor);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        edit->insert(name); // the keys of the test library know no Chinese
        QTest::keyClick(edit, Qt::Key_Return);
        settle();
    }

    std::vector<STSoundCardMappingInfo> held()
    {
        const auto all = runtime.call([this] { return store.getSoundCardMappings().mappings; });
        return {all.begin(), all.end()};
    }

    /// What has read or written the store since the last call.
    Lines posted()
    {
        Lines functions;
        for (const auto& post : runtime.takePosted()) {
            functions.push_back(post.function);
        }
        return functions;
    }

    // In this order, so that the page goes first.
    TestRuntime runtime;
    TestStore store;
    LogCapture log;
    MessageLog messages;
    QScrollArea window;
    AudioSettingBox* page = nullptr;
};

const Cards threeCards{{"a", "Alpha", 2}, {"b", "Beta", 8}, {"c", "Gamma", 5}};

} // namespace

TEST_F(Audio, TheButtonAddsUpToTwentyMappings)
{
    bind();
    EXPECT_TRUE(editors().empty());
    add(19);
    EXPECT_TRUE(addButton()->isEnabled());
    EXPECT_EQ(addButton()->toolTip(), "");
    EXPECT_EQ(window.focusWidget(), nameOf(editors().back()));
    EXPECT_FALSE(nameOf(editors().back())->visibleRegion().isEmpty()) << "it is scrolled to";
    runtime.takePosted();
    add();
    const auto hops = runtime.takePosted();
    ASSERT_FALSE(hops.empty());
    EXPECT_EQ(hops.back().function, "setAddedMappingBtnState");
    EXPECT_EQ(hops.back().file, "audiosettingbox");
    EXPECT_EQ(hops.back().line, 314);
    EXPECT_FALSE(addButton()->isEnabled());
    EXPECT_NE(addButton()->toolTip(), "");
    ASSERT_EQ(editors().size(), 20U);
    EXPECT_EQ(nameOf(editors().back())->text(), "Output 20");

    // Another page may ask for one more; it is refused, and nothing changes here.
    announce(&IMivoSettings::addSoundCardMappingRequested, STSoundCardMappingInfo());
    EXPECT_EQ(editors().size(), 20U);
    EXPECT_EQ(posted(), Lines());

    remove(editors()[4]);
    EXPECT_TRUE(addButton()->isEnabled());
    EXPECT_EQ(editors().size(), 19U);
    announce(&IMivoSettings::addSoundCardMappingRequested, STSoundCardMappingInfo());
    EXPECT_EQ(nameOf(editors().back())->text(), "Output 5") << "the next free one";
    EXPECT_NE(window.focusWidget(), nameOf(editors().back())) << "not added here";
}

TEST_F(Audio, AnOpenListKeepsItsItemsAndWhatIsClickedIsChosen)
{
    setCards("", "", threeCards);
    bind();
    add(2);
    ComboBox* combo = combosOf(editors()[0])[0];
    const Lines before = columnsOf(editors()[0]);
    for (const auto& [key, after] : {std::pair(Qt::Key_Escape, "[None, Gamma, Beta] = None"),
                                     {Qt::Key_Return, "[None, Gamma] = Gamma 1-2 (3-4) (5)"}}) {
        setCards("", "", threeCards);
        combo->showPopup();
        combo->view()->setCurrentIndex(combo->model()->index(3, 0)); // Gamma
        setCards("", "", {threeCards[2], threeCards[1]});
        if (key == Qt::Key_Return) {
            choose(editors()[1], 0, "Beta");
        }
        EXPECT_EQ(columnsOf(editors()[0]), before);
        QTest::keyClick(combo->view(), key);
        settle();
        EXPECT_EQ(columnsOf(editors()[0]), Lines{"This machine: " + std::string(after)});
    }
}

TEST_F(Audio, TheFocusNeverMovesToAControlThatTheNextKeyWouldChange)
{
    setCards("", "", {threeCards[1]});
    bind();
    add(2);
    choose(editors()[0], 0, "Beta");
    auto* editor = editors()[0];
    const auto focusOnDevice = [&](const std::string& device) {
        setCards(device, "", threeCards);
        setCards("10.0.0.9", "", threeCards);
        combosOf(editor)[1]->setFocus();
    };
    focusOnDevice("10.0.0.1");
    tell([](auto& cards) { cards.removeDevice("10.0.0.1"); });
    EXPECT_EQ(window.focusWidget(), nameOf(editor)) << "left the cluster";
    focusOnDevice("10.0.0.2");
    tell([](auto& cards) { cards.setDeviceVisible("10.0.0.2", false); });
    EXPECT_EQ(window.focusWidget(), nameOf(editor)) << "hidden";
    combosOf(editor)[0]->parentWidget()->findChildren<CheckBox*>().back()->setFocus();
    setCards("", "", {{"b", "Beta", 4}});
    EXPECT_EQ(window.focusWidget(), nameOf(editor)) << "fewer channels";
    remove(editor);
    EXPECT_EQ(window.focusWidget(), addButton());
}

TEST_F(Audio, ADeviceHasItsNameOrElseItsAddressAndIsHiddenWithALineInTheLog)
{
    setCards("10.0.0.2", "", {{"a", "Alpha", 2}});
    bind();
    add();
    EXPECT_EQ(columnsOf(editors()[0])[1], "10.0.0.2: [None, Alpha] = None");
    setCards("10.0.0.2", "R&D <b>", {{"a", "Alpha", 2}});
    const auto* label = combosOf(editors()[0])[1]->parentWidget()->findChild<QLabel*>();
    EXPECT_EQ(label->text(), "R&&D <b>") << "no key of the keyboard";
    EXPECT_EQ(label->toolTip(), "<p>R&amp;D &lt;b&gt;</p>") << "no markup";
    runtime.refuses = true;
    announce(&IMivoSettings::clusterNodeSoundCardsChanged);
    EXPECT_EQ(columnsOf(editors()[0]).size(), 2U) << "nothing could be read";
    announce(&IMivoSettings::soundCardMappingAdded, STSoundCardMappingInfo{99, 0, "Late", {}});
    runtime.refuses = false;
    EXPECT_TRUE(QTest::qWaitFor([this] { return editors().size() == 2; }));

    QV::SpdlogApplication::instance().logger()->set_level(spdlog::level::debug);
    log.clear();
    tell([](auto& cards) { cards.setDeviceVisible("10.0.0.2", false); }, false);
    EXPECT_EQ(columnsOf(editors()[0]).size(), 2U) << "a widget was touched off its thread";
    EXPECT_EQ(log.take(),
              Lines{"debug|setDeviceSoundCardVisible deviceIp:10.0.0.2, visible:false \n "
                    "//audiosettingbox.cpp:setDeviceSoundCardVisible()"});
    settle();
    EXPECT_EQ(columnsOf(editors()[0]).size(), 1U);
}

TEST_F(Audio, OnlyAChangeOfACardRebuildsTheOffersOfAllOthers)
{
    setCards("", "", threeCards);
    bind();
    add(4);
    const auto mappings = held();
    const STChosenSoundCard card{"", "a", "Alpha", 2, 1};
    runtime.takePosted();
    for (const auto& [kind, reads] : {std::pair(mivo::SoundCardChangeLocalCard, 1U),
                                      {mivo::SoundCardChangeName, 0U},
                                      {mivo::SoundCardChangeChannels, 0U},
                                      {mivo::SoundCardChangeClusterCard, 1U},
                                      {mivo::SoundCardChangeDeletion, 0U}}) {
        announce(&IMivoSettings::soundCardMappingChanged,
                 STSoundCardChangeInfo{mappings[1].id, kind, "Renamed", card});
        EXPECT_EQ(posted(), Lines(reads, "onMappingChanged"))
            << kind << ": for all others at once, and what is applied does not come back";
    }
    EXPECT_EQ(nameOf(editors()[1])->text(), "Renamed");
    announce(&IMivoSettings::soundCardMappingChanged,
             STSoundCardChangeInfo{999, mivo::SoundCardChangeLocalCard, {}, card});
    announce(&IMivoSettings::soundCardMappingDeleted, STSoundCardMappingInfo{999, 0, {}, {}});
    EXPECT_TRUE(runtime.takePosted().empty()) << "a mapping that is not there";
}

TEST_F(Audio, ManyMappingsAreFilledInSeveralTurns)
{
    setCards("", "", threeCards);
    for (int device = 1; device < 17; ++device) {
        setCards("10.0.0." + std::to_string(device), "", {{"x", "X", 2}});
    }
    runtime.call([this] {
        for (int i = 0; i < 20; ++i) {
            store.addSoundCardMappingRequested(STSoundCardMappingInfo());
        }
    });
    const auto mappings = held();
    page->setSettings(&store);
    tell([](auto& cards) { cards.announceMappings(); }, false);
    QApplication::sendPostedEvents(); // but no timer
    ASSERT_EQ(editors().size(), 1U);
    const int height = page->sizeHint().height();
    EXPECT_GT(height, 20 * editors()[0]->sizeHint().height()) << "the others' room";

    // What happens meanwhile holds for all of them.
    const auto ask = [this](const STSoundCardChangeInfo& change) {
        runtime.call([&] { store.changeSoundCardMappingRequested(change); });
        QApplication::sendPostedEvents();
    };
    ask({mappings[18].id, mivo::SoundCardChangeDeletion, {}, {}});
    ask({mappings[19].id, mivo::SoundCardChangeName, "Last", {}});
    ask({mappings[19].id, mivo::SoundCardChangeLocalCard, {}, {"", "a", "Alpha", 2, 1}});
    EXPECT_EQ(editors().size(), 1U) << "it is not its turn";
    page->unsetSettings();
    QTest::qWait(20);
    EXPECT_EQ(editors().size(), 1U) << "there is nothing to read";
    page->setSettings(&store);
    ASSERT_TRUE(QTest::qWaitFor([&] { return editors().size() == 19; }, 60000));
    settle();
    EXPECT_EQ(page->sizeHint().height(), height - editors()[0]->sizeHint().height() - 12)
        << "less by the one that was deleted";
    EXPECT_EQ(columnsOf(editors()[17])[0], "This machine: [None, Beta, Gamma] = None");
    EXPECT_EQ(nameOf(editors().back())->text(), "Last");
    EXPECT_EQ(columnsOf(editors().back())[0], "This machine: [None, Alpha, Beta, Gamma] = Alpha");
}

TEST_F(Audio, AnEditorByItselfReadsTheStoreAndKeepsWhatIsChosen)
{
    setCards("", "", threeCards);
    setCards("10.0.0.2", "Hall", {{"x", "X", 2}});
    VirtualMappingWidget editor({1, 0, "Main", {{"", "b", "Beta", 8, 1}}}, &runtime, &store);
    editor.show();
    editor.resetSoundCardsCombobox();
    const std::string marks = " 1-2 (3-4) (5-6) (7-8)";
    const Lines all{"This machine: [None, Alpha, Beta, Gamma] = Beta" + marks,
                    "Hall: [None, X] = None"};
    EXPECT_EQ(columnsOf(&editor), all);
    editor.setSoundCardDisable("", {"a", "b"});
    const std::string away = "Beta (not connected)";
    EXPECT_EQ(columnsOf(&editor)[0], "This machine: [None, Gamma, " + away + "] = " + away + marks);
    editor.setSoundCardEnable("", {"a", "b"});
    EXPECT_EQ(columnsOf(&editor)[0], "This machine: [None, Gamma, Beta] = Beta" + marks)
        << "others are offered from the next reset on";
    editor.deleteClusterDeviceSoundCard({"", "10.0.0.2"});
    EXPECT_EQ(columnsOf(&editor).size(), 1U) << "this machine stays";
    editor.resetSoundCardWidget();
    EXPECT_EQ(columnsOf(&editor), all);
}

TEST_F(Audio, OddAnnouncementsAreTakenAsTheyCome)
{
    bind();
    add();
    const auto mappings = held();
    announce(&IMivoSettings::soundCardMappingsInit, STAllDeviceSoundCardMappings{mappings, true});
    EXPECT_EQ(editors().size(), 1U) << "a refresh adds no editor";
    announce(&IMivoSettings::soundCardMappingAdded, mappings[0]);
    ASSERT_EQ(editors().size(), 2U) << "a second one for the id stands there ...";
    announce(&IMivoSettings::soundCardMappingChanged,
             STSoundCardChangeInfo{mappings[0].id, mivo::SoundCardChangeName, "First", {}});
    EXPECT_EQ(nameOf(editors()[0])->text(), "First") << "... and the first one stays the one";
    EXPECT_EQ(nameOf(editors()[1])->text(), "Output 1");

    page->unsetSettings(); // none of them touches the store from here on
    runtime.takePosted();
    for (auto* editor : editors()) {
        rename(editor, "Other");
    }
    EXPECT_EQ(posted(), Lines());
}

TEST_F(Audio, ANameIsTrimmedOfOneTo64CharactersAndUnique)
{
    bind();
    add(2);
    auto* tip = editors()[0]->findChild<QLabel*>("mappingNameTip");
    const QString longest(64, QChar(0x4e2d));
    using Case = std::tuple<QString, QString, bool>;
    for (const auto& [typed, shown, isInUse] : std::vector<Case>{{"Main ", "Main", false},
                                                                 {"Output 2", "Main", true},
                                                                 {"", "Main", false},
                                                                 {"   ", "Main", false},
                                                                 {longest + "x", longest, false},
                                                                 {"Output 1", "Output 1", false}}) {
        rename(editors()[0], typed);
        EXPECT_EQ(nameOf(editors()[0])->text(), shown);
        EXPECT_EQ(held()[0].name, shown.toStdString());
        EXPECT_EQ(!tip->isHidden(), isInUse) << typed.toStdString();
    }
}

TEST_F(Audio, WhatTheStoreCannotKeepIsShownAsItWas)
{
    setCards("", "", threeCards);
    bind();
    add();
    store.kept.fails = true;
    rename(editors()[0], "Main");
    EXPECT_EQ(nameOf(editors()[0])->text(), "Output 1");
    choose(editors()[0], 0, "Gamma");
    EXPECT_EQ(columnsOf(editors()[0])[0], "This machine: [None, Alpha, Beta, Gamma] = None");
    store.kept.fails = false;
    choose(editors()[0], 0, "Gamma");
    for (int mark : {1, 2}) { // before the first is answered
        combosOf(editors()[0])[0]->parentWidget()->findChildren<CheckBox*>()[mark]->click();
    }
    settle();
    EXPECT_EQ(held()[0].soundCards.at(0).channelPairs, 7U);
    store.kept.fails = true;
    add();
    remove(editors()[0]);
    EXPECT_EQ(editors().size(), 1U);
    EXPECT_EQ(held().size(), 1U);
}

TEST_F(Audio, DeletingAsksFirstAndMayHappenAtAnyMoment)
{
    setCards("", "", threeCards);
    bind();
    add(3);
    remove(editors()[1], [](TipDialog& question) {
        EXPECT_NE(question.tipText().indexOf("Output 2"), -1);
        question.done(TipDialog::cancelled);
    });
    EXPECT_EQ(held().size(), 3U);

    const auto deleteFromElsewhere = [this](std::size_t place) {
        announce(&IMivoSettings::changeSoundCardMappingRequested,
                 STSoundCardChangeInfo{held()[place].id, mivo::SoundCardChangeDeletion, {}, {}});
    };
    // While its own question is open, or its list.
    remove(editors()[1], [&](TipDialog& /*question*/) { deleteFromElsewhere(1); });
    EXPECT_EQ(editors().size(), 2U);
    combosOf(editors()[1])[0]->showPopup();
    settle();
    deleteFromElsewhere(1);
    EXPECT_EQ(editors().size(), 1U);
    // The page itself may go while it asks.
    remove(editors()[0], [this](TipDialog& /*question*/) { delete page; });
    EXPECT_EQ(store.connections(), 0U);
}

TEST_F(Audio, AMismatchIsToldInEveryLanguage)
{
    bind();
    const STSoundCardMismatchInfo local{true, "10.0.0.9", "Line 1"};
    announce(&IMivoSettings::soundCardMismatch, local); // without a message centre: nothing
    page->setMsgCenterMgr(&messages);
    const STSoundCardMismatchInfo slave{false, "10.0.0.9", "3"};
    for (const char* language : {"en", "ZH_CN", "fr"}) {
        page->switchLanguage(language);
        announce(&IMivoSettings::soundCardMismatch, local);
        announce(&IMivoSettings::soundCardMismatch, slave);
    }
    Lines texts;
    for (const auto& message : messages.all) {
        EXPECT_EQ(message.kind, 2U);
        EXPECT_EQ(message.programId, -1);
        EXPECT_EQ(message.time, 0);
        texts.push_back(message.text);
    }
    EXPECT_EQ(
        texts,
        (Lines{"The sound cards of the backup 10.0.0.9 and this machine (Line 1) do not match.",
               "The sound cards of the slave's backup 10.0.0.9 and the slave (3) do not match.",
               "备机 10.0.0.9 与本机的声卡(Line 1)不一致。",
               "从机的备机 10.0.0.9 与从机的声卡(3)不一致。",
               "SoundCardNumberOfBackUp10.0.0.9LocalDeviceLine 1) SoundCardMisMatch",
               "SoundCardNumberOfSlaverBackUp10.0.0.9Slaver3) SoundCardMisMatch"}));
}

TEST_F(Audio, WithoutAStoreItLogsAndGoesOn)
{
    page->setSettings(nullptr);
    EXPECT_EQ(log.take(),
              Lines{"warning|sharedSettings is nullptr! \n //audiosettingbox.cpp:initSettings()"});
    setCards("", "", threeCards);
    bind();
    add();
    page->unsetSettings();
    runtime.takePosted();
    log.clear();
    QTest::mouseClick(addButton(), Qt::LeftButton);
    choose(editors()[0], 0, "Alpha");
    EXPECT_EQ(log.take(),
              (Lines{"warning|setting is null \n //audiosettingbox.cpp:slotAddMapping()",
                     "warning|setting is null \n //audiosettingbox.cpp:slotMappingInfoChanged()"}));
    announce(&IMivoSettings::changeSoundCardMappingRequested,
             STSoundCardChangeInfo{held()[0].id, mivo::SoundCardChangeName, "Other", {}});
    EXPECT_TRUE(runtime.takePosted().empty()) << "the store may be gone";

    page->setSettings(&store); // its editors go on
    tell([](auto& cards) { cards.announceMappings(true); });
    EXPECT_EQ(columnsOf(editors()[0])[0], "This machine: [None, Alpha, Beta, Gamma] = None");
    EXPECT_EQ(nameOf(editors()[0])->text(), "Other");
}

TEST_F(Audio, EveryControlHasANameIsReachedInOrderAndIsTranslated)
{
    QStringList missing;
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    translator.setMissingTextHandler(
        [&missing](const QString&, const QString&, const QString& key) { missing.append(key); });
    setCards("", "", threeCards);
    bind();
    add(2);
    choose(editors()[0], 0, "Gamma");
    setCards("10.0.0.2", "大厅", {{"x", "线路", 2}});
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    addButton()->setFocus();
    QPoint last;
    std::set<QWidget*> reached;
    for (int i = 0; i < 2 * 4 + 3; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QWidget* focus = QApplication::focusWidget();
        reached.insert(focus);
        EXPECT_FALSE(focus->accessibleName().isEmpty()
                     && focus->property("text").toString().isEmpty());
        const QPoint place(focus->mapTo(page, focus->rect().center()));
        EXPECT_TRUE(place.y() > last.y() + 12 || place.x() > last.x());
        last = place;
    }
    EXPECT_EQ(reached.size(), 11U);
    page->switchLanguage("zh_cn");
    const QRegularExpression han("\\p{Han}");
    for (auto* label : page->findChildren<QLabel*>()) {
        EXPECT_TRUE(label->text().isEmpty() || han.match(label->text()).hasMatch())
            << label->text().toStdString();
    }
    EXPECT_EQ(combosOf(editors()[0])[0]->itemText(0).toStdString(), "无");
    page->switchLanguage("en");
    EXPECT_EQ(missing, QStringList());
    translator.setMissingTextHandler(nullptr);
}

namespace {

/// What must be on screen, told without a thought of how. Card n has n channels.
struct Model
{
    struct Choice
    {
        int card = 0;
        unsigned pairs = 0;
    };
    struct Device
    {
        std::vector<int> cards;
        bool visible = true;
        bool isAway = false;
    };
    using Choices = std::map<std::string, Choice>; // by their devices

    std::map<std::uint64_t, Choices> mappings;
    std::map<std::string, Device> devices;
    bool areDevicesTold = true;

    static std::string id(int card) { return "id" + std::to_string(card); }
    static std::string caption(int card) { return "card " + std::to_string(card); }
    std::string captionOf(const std::string& device) const
    {
        return device.empty() ? "This machine" : areDevicesTold ? "at " + device : device;
    }

    void remove(std::uint64_t id)
    {
        mappings.erase(id);
        forget();
    }

    void leave(const std::string& device)
    {
        if (devices.count(device) > 0) {
            devices[device] = {{}, true, true};
            forget();
        }
    }

    /// Devices that have left and are chosen on no more.
    void forget()
    {
        for (auto device = devices.begin(); device != devices.end();) {
            const bool isUsed =
                std::any_of(mappings.begin(), mappings.end(), [&](const auto& mapping) {
                    return mapping.second.count(device->first) > 0;
                });
            device = device->second.isAway && !isUsed ? devices.erase(device) : std::next(device);
        }
    }

    static std::string marksOf(const Choice& choice)
    {
        std::string marks;
        const bool playsNowhere = (choice.pairs & ((2U << (choice.card - 1) / 2) - 1)) == 0;
        const bool hasMarks = choice.card > 2 || playsNowhere;
        for (int first = 1; hasMarks && first <= choice.card; first += 2) {
            const std::string second = first < choice.card ? "-" + std::to_string(first + 1) : "";
            const std::string mark = std::to_string(first) + second;
            const bool isOn = ((choice.pairs >> (first / 2)) & 1U) != 0;
            marks += isOn ? " " + mark : " (" + mark + ")";
        }
        return playsNowhere ? marks + " !" : marks;
    }

    bool isTaken(std::uint64_t by, const std::string& device, int card) const
    {
        return std::any_of(mappings.begin(), mappings.end(), [&](const auto& other) {
            const auto choice = other.second.find(device);
            return other.first != by && choice != other.second.end() && choice->second.card == card;
        });
    }

    Lines columns(std::uint64_t mapping) const
    {
        Lines all;
        const Choices& choices = mappings.at(mapping);
        for (const auto& [device, held] : devices) {
            const auto choice = choices.find(device);
            const bool isChosen = choice != choices.end();
            if (!held.visible || (!device.empty() && held.cards.empty() && !isChosen)) {
                continue;
            }
            std::string items = "None";
            std::string current = "None";
            for (const int card : held.cards) {
                if (!isTaken(mapping, device, card)) {
                    items += ", " + caption(card);
                }
            }
            if (isChosen) {
                const int card = choice->second.card;
                current = caption(card);
                if (std::count(held.cards.begin(), held.cards.end(), card) == 0) {
                    current += " (not connected)";
                    items += ", " + current;
                }
                current += marksOf(choice->second);
            }
            all.push_back(captionOf(device) + ": [" + items + "] = " + current);
        }
        return all;
    }
};

class AudioSequences : public Audio, public ::testing::WithParamInterface<unsigned>
{
protected:
    int random(std::size_t below) { return static_cast<int>(m_random() % below); }

    void tellCards(const std::string& device)
    {
        Cards cards;
        for (const int card : model.devices[device].cards) {
            cards.push_back({Model::id(card), Model::caption(card), unsigned(card)});
        }
        tell(
            [&](auto& known) {
                known.setDeviceSoundCards(device, device.empty() ? "" : "at " + device, cards);
            },
            false);
    }

    /// Several turns are needed for an initial set.
    bool areEditorsShown()
    {
        settle();
        return QTest::qWaitFor([this] { return editors().size() == model.mappings.size(); });
    }

    void userStep()
    {
        ASSERT_TRUE(areEditorsShown());
        const int what = random(10);
        if (what < 2 || model.mappings.empty()) {
            if (model.mappings.size() < 8) {
                add();
                model.mappings[nextId++];
            }
            return;
        }
        const int place = random(model.mappings.size());
        const auto mapping = std::next(model.mappings.begin(), place);
        VirtualMappingWidget* editor = editors().at(static_cast<std::size_t>(place));
        if (what == 2) {
            remove(editor);
            model.remove(mapping->first);
        } else {
            use(mapping->second, editor, what < 7);
        }
    }

    /// Chooses a card, or marks a channel pair, in one of the columns that are on screen.
    void use(Model::Choices& choices, VirtualMappingWidget* editor, bool choosing)
    {
        const auto combos = combosOf(editor);
        if (combos.empty()) {
            return;
        }
        const auto column = static_cast<std::size_t>(random(combos.size()));
        const std::string caption = combos[column]->accessibleName().toStdString();
        const std::string device = caption == "This machine" ? "" : caption.substr(3);
        if (choosing) {
            const int item = random(static_cast<std::size_t>(combos[column]->count()));
            const QString text = combos[column]->itemText(item);
            choose(editor, column, text);
            if (item == 0) {
                choices.erase(device);
                model.forget();
            } else if (const int card = text.section(' ', 1, 1).toInt();
                       choices[device].card != card) {
                choices[device] = {card, 1};
            }
            return;
        }
        const auto marks = combos[column]->parentWidget()->findChildren<CheckBox*>();
        if (!marks.isEmpty()) {
            const int pair = random(static_cast<std::size_t>(marks.size()));
            marks[pair]->click();
            choices[device].pairs ^= 1U << pair;
        }
    }

    void openPage(TestStore& bound)
    {
        makePage();
        page->setSettings(&bound);
        runtime.call([&] { bound.soundCards().announceMappings(); });
    }

    void hostStep()
    {
        const std::string device = random(2) == 0 ? "" : "d" + std::to_string(random(3));
        const bool isKnown = model.devices.count(device) > 0;
        const int what = random(9);
        if (what == 8) {
            openPage(store);
        } else if (what == 0 && !device.empty()) {
            model.leave(device);
            tell([&](auto& cards) { cards.removeDevice(device); }, false);
        } else if (what == 1 && isKnown) {
            const bool visible = !model.devices[device].visible;
            model.devices[device].visible = visible;
            tell([&](auto& cards) { cards.setDeviceVisible(device, visible); }, false);
        } else {
            auto& cards = model.devices[device].cards;
            model.devices[device].isAway = false;
            const int card = 1 + random(6);
            const auto found = std::find(cards.begin(), cards.end(), card);
            if (found != cards.end()) {
                cards.erase(found);
            } else {
                cards.insert(cards.begin() + random(cards.size() + 1), card);
            }
            tellCards(device);
        }
    }

    void compare(int step)
    {
        ASSERT_TRUE(areEditorsShown()) << editors().size() << ", step " << step;
        const auto shown = editors();
        std::size_t place = 0;
        for (const auto& [id, choices] : model.mappings) {
            const auto* editor = shown[place++];
            const auto expected = model.columns(id);
            ASSERT_TRUE(QTest::qWaitFor([&] { return columnsOf(editor) == expected; }, 2000))
                << ::testing::PrintToString(columnsOf(editor)) << " instead of "
                << ::testing::PrintToString(expected) << ", step " << step << ", " << id;
        }
    }

    Model model{{}, {{"", {}}}};
    std::uint64_t nextId = 1;

private:
    std::mt19937 m_random{GetParam()};
};

} // namespace

TEST_P(AudioSequences, ShowWhatASimpleModelSays)
{
    tellCards("");
    bind();
    for (int step = 0; step < 150 && !HasFatalFailure(); ++step) {
        random(3) == 0 ? userStep() : hostStep();
        if (random(2) == 0) { // else several changes come at once
            compare(step);
        }
    }
    compare(-1);

    // After a restart, with no card told of yet.
    TestStore after(store.kept.rows);
    model.areDevicesTold = false;
    model.devices = {{"", {}}};
    for (const auto& [id, choices] : model.mappings) {
        for (const auto& [device, choice] : choices) {
            model.devices[device];
        }
    }
    openPage(after);
    compare(-2);
    makePage(); // the one before lets go of that store
    for (const std::string& line : log.lines()) {
        EXPECT_EQ(line.find("info|"), 0U) << line;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, AudioSequences, ::testing::Range(1U, 9U));

} // namespace audiosettingboxtest
