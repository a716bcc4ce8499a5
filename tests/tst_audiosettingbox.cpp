#include <mivosettingswidgets/audiosettingbox.h>

#include "support/hostlanguage.h"
#include "support/test.h"

#include "mivohostapi/imsgcentermgr.h"
#include "qvspdlog/spdlogapplication.h"

#include <mivosettingswidgets/virtualmappingwidget.h>

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QLayout>
#include <QtWidgets/QScrollArea>

#include <map>
#include <random>

namespace audiosettingboxtest {

using namespace mivo::settings;
using mivo::STSoundCardChangeInfo;
using mivo::widgets::CheckBox;
using mivo::widgets::ComboBox;
using mivo::widgets::TipDialog;
using velorn::mediadispatch::STChosenSoundCard;
using velorn::mediadispatch::STSoundCardMappingInfo;
using Cards = std::vector<STSoundCardInfo>;
using Lines = std::vector<std::string>;

namespace {

void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// From left to right and top to bottom.
QList<ComboBox*> combosOf(const QWidget* editor)
{
    std::map<std::pair<int, int>, ComboBox*> places;
    for (auto* combo : editor->findChildren<ComboBox*>()) {
        const QWidget* column = combo->parentWidget();
        if (!column->isHidden()) {
            places[{column->y(), column->x()}] = combo;
        }
    }
    return QMap<std::pair<int, int>, ComboBox*>(places).values();
}

QList<CheckBox*> marksOf(const ComboBox* combo)
{
    return combo->parentWidget()->findChildren<CheckBox*>();
}

/// What a person sees of the columns: "Hall: [None, A, B] = B +-": the channel pairs that are
/// marked and not; and "!" where the hint says that nothing is played.
Lines columnsOf(const QWidget* editor)
{
    Lines columns;
    for (const ComboBox* combo : combosOf(editor)) {
        QString text = combo->accessibleName() + ": [" + itemsOf(combo).join(", ")
                       + "] = " + combo->currentText() + ' ';
        for (const auto* mark : marksOf(combo)) {
            text += mark->isChecked() ? '+' : '-';
        }
        const bool hasHint = combo->parentWidget()->findChild<QLabel*>("soundCardPlaysNowhere");
        columns.push_back((hasHint ? text + '!' : text).toStdString());
    }
    return columns;
}

class Audio : public ::testing::Test, public velorn::msgcenter::IMsgCenterMgr
{
protected:
    const InEnglish english;

    Audio()
    {
        window.setWidgetResizable(true);
        window.resize(900, 500);
        window.show();
    }

    void postMessage(const velorn::msgcenter::STMsgInfo& message) override
    {
        EXPECT_EQ(std::tuple(message.kind, message.programId, message.time), std::tuple(2U, -1, 0));
        messages.push_back(message.text);
    }

    /// A new page on a store.
    void open(TestStore& bound)
    {
        page = new AudioSettingBox;
        window.setWidget(page);
        page->setZRRuntime(&runtime);
        page->setSettings(&bound);
        runtime.call([&bound] { bound.soundCards().announceMappings(); });
        settle();
    }
    void bind()
    {
        setCards("", {{"a", "Alpha", 2}, {"b", "Beta", 8}, {"c", "Gamma", 5}});
        open(store);
        runtime.takePosted();
        log.clear();
    }

    /// On the store's thread; then the page shows what follows.
    void run(const std::function<void()>& what)
    {
        runtime.call(what);
        settle();
    }
    void setCards(const std::string& device, const Cards& cards, const std::string& caption = {})
    {
        run([&] { known.setDeviceSoundCards(device, caption, cards); });
    }
    void request(std::uint64_t id, unsigned kind, const std::string& text = {})
    {
        run([&] {
            store.changeSoundCardMappingRequested(STSoundCardChangeInfo{id, kind, text, {}});
        });
    }

    QPushButton* addButton() const { return page->findChild<QPushButton*>("addMapping"); }
    void add(int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            QTest::mouseClick(addButton(), Qt::LeftButton);
            settle();
        }
    }

    /// From top to bottom.
    QList<VirtualMappingWidget*> editors() const
    {
        return page->findChildren<VirtualMappingWidget*>(QString(), Qt::FindDirectChildrenOnly);
    }
    ComboBox* combo(int editor, int column = 0) const
    {
        return combosOf(editors().at(editor)).at(column);
    }
    QLineEdit* name(int editor) const
    {
        return editors().at(editor)->findChild<QLineEdit*>("mappingName");
    }

    static void choose(ComboBox* combo, const QString& card)
    {
        chooseItem(combo, combo->findText(card));
        settle();
    }

    void remove(int editor, std::function<void(TipDialog&)> answer = &TipDialog::accept)
    {
        whenModal<TipDialog>(std::move(answer));
        editors().at(editor)->findChild<QPushButton*>("deleteMapping")->click();
        settle();
    }

    // In this order, so that the page goes first.
    TestRuntime runtime;
    TestStore store;
    mivohost::SoundCardMappings& known = store.soundCards();
    LogCapture log;
    Lines messages;
    QScrollArea window;
    AudioSettingBox* page = nullptr;
};

} // namespace

TEST_F(Audio, TheButtonAddsUpToTwentyMappings)
{
    bind();
    add(19);
    EXPECT_TRUE(addButton()->isEnabled());
    EXPECT_EQ(window.focusWidget(), name(18));
    EXPECT_FALSE(name(18)->visibleRegion().isEmpty()) << "it is scrolled to";
    add();
    const auto hop = runtime.takePosted().back();
    EXPECT_EQ(hop.function + ' ' + hop.file, "setAddedMappingBtnState audiosettingbox");
    EXPECT_EQ(hop.line, 314);
    EXPECT_FALSE(addButton()->isEnabled());
    EXPECT_NE(addButton()->toolTip(), "");
    // Another page may ask for one more; it is refused, and nothing changes here.
    run([&] { store.addSoundCardMappingRequested(STSoundCardMappingInfo()); });
    EXPECT_EQ(editors().size(), 20);
    EXPECT_TRUE(runtime.takePosted().empty());
    name(4)->setFocus();
    remove(4);
    EXPECT_EQ(window.focusWidget(), addButton());
    EXPECT_EQ(editors().size(), 19);
    EXPECT_TRUE(addButton()->isEnabled());
    EXPECT_EQ(addButton()->toolTip(), "");
    run([&] { store.addSoundCardMappingRequested(STSoundCardMappingInfo()); });
    EXPECT_EQ(name(19)->text(), "Output 5") << "the next free one";
    EXPECT_NE(window.focusWidget(), name(19)) << "not added here";
}

TEST_F(Audio, AnOpenListKeepsItsItemsAndWhatIsClickedIsChosen)
{
    bind();
    add(2);
    const Lines before = columnsOf(editors()[0]);
    for (const auto& [key, after] : {std::pair(Qt::Key_Escape, "[None, Gamma, Beta] = None "),
                                     {Qt::Key_Return, "[None, Gamma] = Gamma +--"}}) {
        setCards("", {{"a", "Alpha", 2}, {"b", "Beta", 8}, {"c", "Gamma", 5}});
        combo(0)->showPopup();
        combo(0)->view()->setCurrentIndex(combo(0)->model()->index(3, 0)); // Gamma
        setCards("", {{"c", "Gamma", 5}, {"b", "Beta", 8}});
        if (key == Qt::Key_Return) {
            choose(combo(1), "Beta");
        }
        EXPECT_EQ(columnsOf(editors()[0]), before);
        QTest::keyClick(combo(0)->view(), key);
        settle();
        EXPECT_EQ(columnsOf(editors()[0]), Lines{"This machine: " + std::string(after)});
    }
}

TEST_F(Audio, ADeviceIsHiddenOnTheGuiThreadWithALineInTheLog)
{
    bind();
    add();
    setCards("10.0.0.2", {{"x", "X", 2}}, "R&D <b>");
    EXPECT_EQ(combo(0, 1)->parentWidget()->findChild<QLabel*>()->text(), "R&&D <b>");
    QV::SpdlogApplication::instance().logger()->set_level(spdlog::level::debug);
    log.clear();
    runtime.call([&] { known.setDeviceVisible("10.0.0.2", false); });
    EXPECT_EQ(columnsOf(editors()[0]).size(), 2U) << "a widget was touched off its thread";
    EXPECT_EQ(log.take(),
              Lines{"debug|setDeviceSoundCardVisible deviceIp:10.0.0.2, visible:false \n "
                    "//audiosettingbox.cpp:setDeviceSoundCardVisible()"});
    settle();
    EXPECT_EQ(columnsOf(editors()[0]).size(), 1U);
}

TEST_F(Audio, OnlyAChangeOfACardRebuildsTheOffersOfAllOthers)
{
    bind();
    add(3);
    for (const auto& [id, kind, reads] : {std::tuple(2U, mivo::SoundCardChangeLocalCard, 1U),
                                          {2U, mivo::SoundCardChangeName, 0U},
                                          {2U, mivo::SoundCardChangeChannels, 0U},
                                          {2U, mivo::SoundCardChangeClusterCard, 1U},
                                          {9U, mivo::SoundCardChangeClusterCard, 0U}}) {
        runtime.takePosted();
        const STSoundCardChangeInfo change{id, kind, "Renamed", {"", "a", "Alpha", 2, 1}};
        run([&] { store.soundCardMappingChanged(change); });
        EXPECT_EQ(runtime.takePosted().size(), reads) << "for all at once, and nothing written";
    }
    EXPECT_EQ(name(1)->text(), "Renamed");
    EXPECT_EQ(columnsOf(editors()[1])[0], "This machine: [None, Alpha, Beta, Gamma] = Alpha ");
    for (auto* signal : {&store.soundCardEnabled, &store.soundCardDisabled}) {
        runtime.takePosted();
        run([&] { (*signal)(STLocalSoundCardList{{"a"}, ""}); });
        EXPECT_EQ(runtime.takePosted().size(), 1U) << "what is free now is read";
    }
}

TEST_F(Audio, OddAnnouncementsAreTakenAsTheyCome)
{
    bind();
    add();
    run([&] {
        store.soundCardMappingsInit(STAllDeviceSoundCardMappings{{{7, 0, "Odd", {}}}, true});
    });
    EXPECT_EQ(editors().size(), 1) << "a refresh adds no editor";
    run([&] { store.soundCardMappingAdded(STSoundCardMappingInfo{1, 0, "Second", {}}); });
    ASSERT_EQ(editors().size(), 2) << "a second one for the id stands there ...";
    request(1, mivo::SoundCardChangeName, "First");
    EXPECT_EQ(name(0)->text(), "First") << "... and the first one stays the one";
    EXPECT_EQ(name(1)->text(), "Output 1");
    run([&] { store.soundCardMappingDeleted(STSoundCardMappingInfo{9, 0, {}, {}}); });
    EXPECT_EQ(editors().size(), 2);
    runtime.refuses = true;
    run([&] { store.soundCardMappingAdded(STSoundCardMappingInfo{9, 0, "Late", {}}); });
    run([&] { store.clusterNodeSoundCardsChanged(); });
    runtime.refuses = false;
    EXPECT_TRUE(QTest::qWaitFor([this] { return editors().size() == 3; })) << "read later";
}

TEST_F(Audio, AnEditorShowsWhatTheStoreKeeps)
{
    bind();
    add(2);
    for (const auto& [typed, shown, isInUse] : {std::tuple("Main ", "Main", false),
                                                {"Output 2", "Main", true},
                                                {"   ", "Main", false},
                                                {"Last", "Last", false}}) {
        typeInto(name(0), typed);
        settle();
        EXPECT_EQ(name(0)->text(), shown);
        EXPECT_EQ(!editors()[0]->findChild<QLabel*>("mappingNameTip")->isHidden(), isInUse);
    }
    EXPECT_EQ(name(0)->maxLength(), 64);
    choose(combo(0), "Gamma");
    EXPECT_EQ(marksOf(combo(0))[1]->text() + ' ' + marksOf(combo(0))[2]->text(), "3-4 5");
    for (int mark : {1, 2}) { // before the first is answered
        marksOf(combo(0))[mark]->click();
    }
    settle();
    EXPECT_EQ(columnsOf(editors()[0])[0], "This machine: [None, Alpha, Beta, Gamma] = Gamma +++");
    const Lines before = columnsOf(editors()[0]);
    store.kept.fails = true;
    typeInto(name(0), "Main");
    settle();
    EXPECT_EQ(name(0)->text(), "Last");
    choose(combo(0), "Alpha");
    EXPECT_EQ(columnsOf(editors()[0]), before);
    add();
    remove(0);
    EXPECT_EQ(editors().size(), 2);
}

TEST_F(Audio, DeletingAsksFirstAndMayHappenAtAnyMoment)
{
    bind();
    add(3);
    remove(1, [](TipDialog& question) {
        EXPECT_TRUE(question.tipText().contains("Output 2"));
        question.done(TipDialog::cancelled);
    });
    EXPECT_EQ(editors().size(), 3);
    // While its own question is open, or its list.
    remove(1, [this](auto&) { request(2, mivo::SoundCardChangeDeletion); });
    EXPECT_EQ(editors().size(), 2);
    combo(1)->showPopup();
    settle();
    request(3, mivo::SoundCardChangeDeletion);
    EXPECT_EQ(editors().size(), 1);
    // The page itself may go while it asks.
    whenModal<TipDialog>([this](auto&) { delete page; });
    editors()[0]->findChild<QPushButton*>("deleteMapping")->click();
    EXPECT_EQ(store.connections(), 0U);
}

TEST_F(Audio, AMismatchIsToldInEveryLanguageOfThePage)
{
    bind();
    add();
    const STSoundCardMismatchInfo local{true, "10.0.0.9", "Line 1"};
    run([&] { store.soundCardMismatch(local); }); // without a message centre: nothing
    page->setMsgCenterMgr(this);
    Lines columns;
    for (const char* language : {"en", "ZH_CN", "fr"}) {
        page->switchLanguage(language);
        columns.push_back(columnsOf(editors()[0])[0]);
        run([&] { store.soundCardMismatch(local); });
        run([&] { store.soundCardMismatch(STSoundCardMismatchInfo{false, "d", "3"}); });
    }
    EXPECT_EQ(columns[1], "本机: [无, Alpha, Beta, Gamma] = 无 ");
    EXPECT_EQ(
        messages,
        (Lines{"The sound cards of the backup 10.0.0.9 and this machine (Line 1) do not match.",
               "The sound cards of the slave's backup d and the slave (3) do not match.",
               "备机 10.0.0.9 与本机的声卡(Line 1)不一致。", "从机的备机 d 与从机的声卡(3)不一致。",
               "SoundCardNumberOfBackUp10.0.0.9LocalDeviceLine 1) SoundCardMisMatch",
               "SoundCardNumberOfSlaverBackUpdSlaver3) SoundCardMisMatch"}));
}

TEST_F(Audio, WithoutAStoreItLogsAndGoesOn)
{
    bind();
    add();
    log.clear();
    page->setSettings(nullptr);
    add();
    choose(combo(0), "Alpha");
    EXPECT_EQ(log.take(),
              (Lines{"warning|sharedSettings is nullptr! \n //audiosettingbox.cpp:initSettings()",
                     "warning|setting is null \n //audiosettingbox.cpp:slotAddMapping()",
                     "warning|setting is null \n //audiosettingbox.cpp:slotMappingInfoChanged()"}));
    runtime.takePosted();
    typeInto(name(0), "Mine");
    request(1, mivo::SoundCardChangeName, "Other");
    EXPECT_TRUE(runtime.takePosted().empty()) << "the store may be gone";
    page->setSettings(&store); // its editors go on
    run([this] { known.announceMappings(true); });
    EXPECT_EQ(columnsOf(editors()[0])[0], "This machine: [None, Alpha, Beta, Gamma] = None ");
    EXPECT_EQ(name(0)->text(), "Other");
}

namespace {

/// What columnsOf() an editor has to be, by what the store holds.
Lines expectedOf(const STSoundCardMappingsInfo& all, const STSoundCardMappingInfo& mapping)
{
    Lines columns;
    for (const auto& device : all.devices) {
        STChosenSoundCard chosen;
        for (const auto& card : mapping.soundCards) {
            chosen = card.device == device.device ? card : chosen;
        }
        std::string items = "None";
        std::string current;
        for (const auto& card : device.soundCards) {
            if (card.chosenIn == 0 || card.chosenIn == mapping.id) {
                items += ", " + card.caption;
                current = card.id == chosen.id ? card.caption : current;
            }
        }
        const bool isGone = !chosen.id.empty() && current.empty();
        if (isGone) {
            current = chosen.caption + " (not connected)";
            items += ", " + current;
        }
        std::string marks = " ";
        if (!chosen.id.empty() && (chosen.channels > 2 || chosen.channelPairs == 0)) {
            for (unsigned pair = 0; 2 * pair < chosen.channels; ++pair) {
                marks += ((chosen.channelPairs >> pair) & 1U) != 0 ? '+' : '-';
            }
            marks += chosen.channelPairs == 0 ? "!" : "";
        }
        if (device.visible && (device.device.empty() || isGone || !device.soundCards.empty())) {
            columns.push_back((device.device.empty() ? "This machine" : device.device) + ": ["
                              + items + "] = " + (current.empty() ? "None" : current) + marks);
        }
    }
    return columns;
}

} // namespace

TEST_F(Audio, ShowsWhatTheStoreHoldsWhateverHappens)
{
    std::mt19937 generator{1};
    const auto random = [&generator](auto below) {
        return static_cast<int>(generator() % static_cast<unsigned>(below));
    };
    QPointer<QWidget> focused;
    const auto compare = [this, &focused](TestStore& bound) {
        const auto all = runtime.call([&bound] { return bound.getSoundCardMappings(); });
        std::vector<Lines> expected;
        std::vector<Lines> shown;
        for (const auto& mapping : all.mappings) {
            expected.push_back(expectedOf(all, mapping));
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { // an initial set takes several turns
            settle();
            shown.clear();
            for (const QWidget* editor : editors()) {
                shown.push_back(columnsOf(editor));
            }
            return shown == expected;
        }));
        EXPECT_EQ(shown, expected);
        QWidget* now = window.focusWidget();
        EXPECT_TRUE(
            now == focused
            || (qobject_cast<ComboBox*>(now) == nullptr && qobject_cast<CheckBox*>(now) == nullptr))
            << "the next key would change another control";
    };
    const auto userStep = [&] {
        const int editor = random(8);
        const int count = editors().size();
        if (editor >= count) {
            add();
            EXPECT_EQ(editors().size(), count + 1);
        } else if (random(8) == 0) {
            remove(editor);
            EXPECT_EQ(editors().size(), count - 1);
        } else if (const auto combos = combosOf(editors()[editor]); !combos.isEmpty()) {
            const QPointer<ComboBox> combo = combos[random(combos.size())];
            const auto marks = marksOf(combo);
            const QPointer<CheckBox> mark = marks.isEmpty() ? nullptr : marks[random(marks.size())];
            focused = mark ? static_cast<QWidget*>(mark) : combo;
            focused->setFocus();
            if (mark && random(3) == 0) {
                const bool wasOn = mark->isChecked();
                mark->click();
                settle();
                EXPECT_TRUE(mark.isNull() || mark->isChecked() != wasOn);
            } else {
                const QString item = combo->itemText(random(combo->count()));
                choose(combo, item);
                EXPECT_TRUE(combo.isNull() || combo->currentText() == item);
            }
        }
    };
    std::map<std::string, Cards> told; // by their devices
    const auto hostStep = [&](const std::string& device, int what) {
        Cards& cards = told[device];
        const unsigned channels = 1 + static_cast<unsigned>(random(6));
        const std::string id = std::to_string(channels);
        const auto same = std::find_if(cards.begin(), cards.end(),
                                       [&](const auto& card) { return card.id == id; });
        if (what == 8) {
            open(store);
        } else if (what == 7) {
            runtime.call([&] { known.removeDevice(device); });
        } else if (what == 6) {
            runtime.call([&] { known.setDeviceVisible(device, random(2) == 0); });
        } else {
            same != cards.end() ? cards.erase(same)
                                : cards.insert(cards.begin() + random(cards.size() + 1),
                                               {id, "card " + id, channels});
            runtime.call([&] { known.setDeviceSoundCards(device, "", cards); });
        }
    };
    setCards("", {});
    open(store);
    for (int step = 0; step < 600 && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        if (random(3) == 0) {
            compare(store);
            userStep();
            compare(store);
        } else {
            hostStep(random(2) == 0 ? "" : "d" + std::to_string(random(3)), random(9));
        }
    }
    TestStore after(store.kept.rows); // a restart, with no card there yet
    after.soundCards().setDeviceSoundCards("", "", {});
    open(after);
    compare(after);
    delete page; // before that store
    for (const std::string& line : log.lines()) {
        EXPECT_EQ(line.find("info|"), 0U) << line;
    }
}

} // namespace audiosettingboxtest
