#include <mivosettingswidgets/audiosettingbox.h>

#include "support/pagetest.h"

#include "mivohostapi/imsgcentermgr.h"
#include "qvspdlog/spdlogapplication.h"

#include <mivosettingswidgets/virtualmappingwidget.h>

#include <random>

namespace audiosettingboxtest {

using namespace mivo::settings;
using mivo::STSoundCardChangeInfo;
using namespace mivo::widgets;
using namespace velorn::mediadispatch;
using Cards = std::vector<STSoundCardInfo>;
using Lines = std::vector<std::string>;

/// From left to right and top to bottom.
QList<ComboBox*> combosOf(const QWidget* editor)
{
    QMap<std::pair<int, int>, ComboBox*> places;
    for (auto* combo : editor->findChildren<ComboBox*>()) {
        const QWidget* column = combo->parentWidget();
        if (!column->isHidden()) {
            places[{column->y(), column->x()}] = combo;
        }
    }
    return places.values();
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

struct Audio : PageTest<AudioSettingBox>, velorn::msgcenter::IMsgCenterMgr
{
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
        delete page;
        page = new AudioSettingBox;
        window.setWidget(page);
        page->setZRRuntime(&runtime);
        page->setSettings(&bound);
        announce([&bound] { bound.soundCards().announceMappings(); });
    }
    /// With three cards, and some mappings that are added.
    void bindAndAdd(int mappings)
    {
        setCards("", {{"a", "Alpha", 2}, {"b", "Beta", 8}, {"c", "Gamma", 5}});
        open(store);
        add(mappings);
    }

    void setCards(const std::string& device, const Cards& cards)
    {
        announce([&] { known.setDeviceSoundCards(device, "", cards); });
    }
    void request(std::uint64_t id, unsigned kind, const std::string& text = {})
    {
        announce([&] {
            store.changeSoundCardMappingRequested(STSoundCardChangeInfo{id, kind, text, {}});
        });
    }

    QPushButton* addButton() const { return page->findChild<QPushButton*>("addMapping"); }
    void add(int times = 1)
    {
        for (int i = 0; i < times; ++i) {
            QTest::mouseClick(addButton(), Qt::LeftButton);
            settleEvents();
        }
    }

    QList<VirtualMappingWidget*> editors() const
    {
        return page->findChildren<VirtualMappingWidget*>(QString(), Qt::FindDirectChildrenOnly);
    }
    ComboBox* combo(int editor) const { return combosOf(editors().at(editor)).first(); }
    QLineEdit* name(int editor) const
    {
        return editors().at(editor)->findChild<QLineEdit*>("mappingName");
    }

    static void choose(ComboBox* combo, const QString& card)
    {
        chooseItem(combo, combo->findText(card));
        settleEvents();
    }

    void remove(int editor, std::function<void(TipDialog&)> answer = &TipDialog::accept)
    {
        whenModal<TipDialog>(std::move(answer));
        editors().at(editor)->findChild<QPushButton*>("deleteMapping")->click();
        settleEvents();
    }

    mivohost::SoundCardMappings& known = store.soundCards();
    Lines messages;
    QScrollArea window;
};

TEST_F(Audio, TheButtonAddsUpToTwentyMappings)
{
    bindAndAdd(19);
    EXPECT_EQ(window.focusWidget(), name(18));
    EXPECT_FALSE(name(18)->visibleRegion().isEmpty()) << "it is scrolled to";
    EXPECT_TRUE(addButton()->isEnabled());
    add();
    const auto hop = runtime.takePosted().back();
    EXPECT_EQ(hop.function + ' ' + hop.file, "setAddedMappingBtnState audiosettingbox");
    EXPECT_EQ(hop.line, 314);
    EXPECT_FALSE(addButton()->isEnabled());
    EXPECT_NE(addButton()->toolTip(), "") << "why not";
    remove(4);
    EXPECT_TRUE(addButton()->isEnabled());
    page->hide();
    settleEvents();
    EXPECT_TRUE(page->findChildren<QAbstractItemView*>().isEmpty()) << "lists that nobody opened";
}

TEST_F(Audio, ANewEditorHasItsPlaceAlsoAfterTheFontHasGrown)
{
    page->switchLanguage("zh_cn");
    QWidget roomy;
    (new QVBoxLayout(&roomy))->addWidget(page);
    roomy.resize(1200, 900);
    activateWindow(&roomy);
    bind();
    add();
    roomy.setFont(QFont(roomy.font().family(), 18));
    for (const char* language : {"en", "zh_cn"}) {
        page->switchLanguage(language);
        settleEvents();
    }
    add();
    EXPECT_EQ(editors().at(1)->width(), editors().at(0)->width());
}

TEST_F(Audio, AnOpenListKeepsItsItemsAndWhatIsClickedIsChosen)
{
    bindAndAdd(2);
    const Lines before = columnsOf(editors()[0]);
    combo(0)->showPopup();
    combo(0)->view()->setCurrentIndex(combo(0)->model()->index(3, 0)); // Gamma
    setCards("", {{"c", "Gamma", 5}, {"b", "Beta", 8}});
    choose(combo(1), "Beta");
    EXPECT_EQ(columnsOf(editors()[0]), before);
    QTest::keyClick(combo(0)->view(), Qt::Key_Return);
    settleEvents();
    EXPECT_EQ(columnsOf(editors()[0]), Lines{"This machine: [None, Gamma] = Gamma +--"});
}

TEST_F(Audio, OddAnnouncementsAreTakenAsTheyCome)
{
    bindAndAdd(1);
    announce([&] {
        store.soundCardMappingsInit(STAllDeviceSoundCardMappings{{{7, 0, "Odd", {}}}, true});
    });
    EXPECT_EQ(editors().size(), 1) << "a refresh adds no editor";
    announce([&] { store.soundCardMappingAdded(STSoundCardMappingInfo{1, 0, "Second", {}}); });
    ASSERT_EQ(editors().size(), 2) << "a second one for the id stands there ...";
    EXPECT_EQ(window.focusWidget(), name(0)) << "and takes no focus";
    request(1, mivo::SoundCardChangeName, "First");
    EXPECT_EQ(name(0)->text(), "First") << "... and the first one stays the one";
    EXPECT_EQ(name(1)->text(), "Output 1");
    setCards("10.0.0.2", {{"d", "Delta", 2}});
    const auto shown = columnsOf(editors()[0]);
    const std::function<void()> notKept[]{
        [&] {
            store.deviceSoundCardVisibleChanged(STDeviceSoundCardVisibleInfo{"10.0.0.2", false});
        },
        [&] { store.clusterDeviceSoundCardsDeleted(std::vector<std::string>{"10.0.0.2"}); },
        [&] {
            store.soundCardMappingChanged(
                STSoundCardChangeInfo{1, mivo::SoundCardChangeName, "Other", {}});
        },
    };
    for (const auto& change : notKept) {
        announce([&] { store.clusterNodeSoundCardsChanged(); });
        announce(change);
        announce([&] { store.clusterNodeSoundCardsChanged(); });
        EXPECT_EQ(columnsOf(editors()[0]), shown) << &change - notKept << ": the store keeps all";
        EXPECT_EQ(name(0)->text(), "First");
    }
    runtime.refuses = true;
    choose(combo(0), "Beta");
    runtime.refuses = false;
    announce([&] { store.clusterNodeSoundCardsChanged(); });
    EXPECT_EQ(columnsOf(editors()[0]), shown) << "the store was not told";
    runtime.refuses = true;
    announce([&] { store.soundCardMappingAdded(STSoundCardMappingInfo{9, 0, "Late", {}}); });
    announce([&] { store.clusterNodeSoundCardsChanged(); });
    runtime.refuses = false;
    EXPECT_TRUE(QTest::qWaitFor([this] { return editors().size() == 3; })) << "read later";
}

TEST_F(Audio, AnEditorShowsWhatTheStoreKeeps)
{
    bindAndAdd(2);
    for (const auto& [typed, shown, isInUse] : {std::tuple("Main ", "Main", false),
                                                {"Output 2", "Main", true},
                                                {"Last", "Last", false}}) {
        typeInto(name(0), typed);
        settleEvents();
        EXPECT_EQ(name(0)->text(), shown);
        EXPECT_EQ(!editors()[0]->findChild<QLabel*>("mappingNameTip")->isHidden(), isInUse);
    }
    choose(combo(0), "Gamma");
    for (int mark : {1, 2}) { // before the first is answered
        marksOf(combo(0))[mark]->click();
    }
    settleEvents();
    EXPECT_EQ(columnsOf(editors()[0])[0], "This machine: [None, Alpha, Beta, Gamma] = Gamma +++");
    const Lines before = columnsOf(editors()[0]);
    store.kept.fails = true;
    typeInto(name(0), "Main");
    settleEvents();
    EXPECT_EQ(name(0)->text(), "Last");
    choose(combo(0), "Alpha");
    EXPECT_EQ(columnsOf(editors()[0]), before);
    page->setSettings(nullptr); // without a store it goes on
    log.clear();
    add();
    choose(combo(0), "Alpha");
    EXPECT_EQ(warned(log), "setting is null|slotAddMapping\n"
                           "setting is null|slotMappingInfoChanged");
}

TEST_F(Audio, DeletingAsksFirstAndMayHappenAtAnyMoment)
{
    bindAndAdd(3);
    remove(1, [](TipDialog& question) { question.done(TipDialog::cancelled); });
    EXPECT_EQ(editors().size(), 3);
    // While its own question is open, or its list.
    remove(1, [this](auto&) { request(2, mivo::SoundCardChangeDeletion); });
    EXPECT_EQ(editors().size(), 2);
    combo(1)->showPopup();
    settleEvents();
    combo(1)->setFocus();
    request(3, mivo::SoundCardChangeDeletion);
    EXPECT_EQ(editors().size(), 1);
    EXPECT_EQ(window.focusWidget(), addButton()) << "where no key changes anything";
    remove(0, [this](auto&) { delete page; });
    EXPECT_EQ(store.connections(), 0U);
}

TEST_F(Audio, AMismatchIsToldInTheLanguageOfThePageAndAHiddenDeviceLogged)
{
    bindAndAdd(1);
    page->setMsgCenterMgr(this);
    page->switchLanguage("ZH_CN");
    announce([&] { store.soundCardMismatch(STSoundCardMismatchInfo{true, "10.0.0.9", "Line 1"}); });
    announce([&] { store.soundCardMismatch(STSoundCardMismatchInfo{false, "d", "3"}); });
    EXPECT_EQ(columnsOf(editors()[0])[0], "本机: [无, Alpha, Beta, Gamma] = 无 ");
    page->switchLanguage("en");
    announce([&] { store.soundCardMismatch(STSoundCardMismatchInfo{true, "d", "4"}); });
    EXPECT_EQ(
        messages,
        (Lines{"备机 10.0.0.9 与本机的声卡(Line 1)不一致。", "从机的备机 d 与从机的声卡(3)不一致。",
               "The sound cards of the backup d and this machine (4) do not match."}));
    setCards("10.0.0.2", {{"x", "X", 2}});
    QV::SpdlogApplication::instance().logger()->set_level(spdlog::level::debug);
    announce([&] { known.setDeviceVisible("10.0.0.2", false); });
    EXPECT_EQ(log.take().back(),
              "debug|setDeviceSoundCardVisible deviceIp:10.0.0.2, visible:false \n "
              "//audiosettingbox.cpp:setDeviceSoundCardVisible()");
}

TEST_F(Audio, AChoiceOnADisconnectedDeviceIsShownWhereItMovesTo)
{
    bindAndAdd(2);
    setCards("d", {{"x", "X", 2}});
    QVariantList texts;
    for (const int chooser : {0, 1}) {
        choose(combosOf(editors()[chooser])[1], "X");
        texts.append(runtime.call([&] { return store.held("soundCardMappings"); }));
        if (chooser == 0) {
            choose(combosOf(editors()[chooser])[1], "None");
        }
    }
    announce([&] { known.removeDevice("d"); });
    const auto expectAt = [&](int chooser) {
        EXPECT_EQ(columnsOf(editors()[chooser]).back(),
                  "d: [None, X (not connected)] = X (not connected) ");
        EXPECT_EQ(columnsOf(editors()[1 - chooser]).size(), 1U);
    };
    announce([&] { store.change("soundCardMappings", texts[0]); });
    expectAt(0);
    page->setSettings(nullptr);
    announce([&] { store.change("soundCardMappings", texts[1]); });
    page->setSettings(&store);
    announce([&] { known.announceMappings(true); });
    expectAt(1);
}

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

TEST_F(Audio, ShowsWhatTheStoreHoldsWhateverHappens)
{
    std::mt19937 generator{1};
    const auto random = [&generator](auto below) {
        return static_cast<int>(generator() % static_cast<unsigned>(below));
    };
    QPointer<QWidget> focused;
    const auto compare = [this, &focused](TestStore& bound) {
        const auto all = runtime.call([&bound] { return bound.getSoundCardMappings(); });
        std::multimap<std::string, Lines> expected;
        std::multimap<std::string, Lines> shown;
        for (const auto& mapping : all.mappings) {
            expected.emplace(mapping.name, expectedOf(all, mapping));
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { // an initial set takes several turns
            settleEvents();
            shown.clear();
            for (int editor = 0; editor < editors().size(); ++editor) {
                shown.emplace(name(editor)->text().toStdString(), columnsOf(editors()[editor]));
            }
            return shown == expected;
        }));
        EXPECT_EQ(shown, expected);
        auto* now = window.focusWidget();
        const bool isControl = qobject_cast<ComboBox*>(now) || qobject_cast<CheckBox*>(now);
        EXPECT_TRUE(now == focused || !isControl) << "the next key would change another control";
    };
    const auto userStep = [&] {
        const int editor = random(8);
        if (editor >= editors().size()) {
            add();
        } else if (random(8) == 0) {
            remove(editor);
        } else if (const auto combos = combosOf(editors()[editor]); !combos.isEmpty()) {
            const QPointer<ComboBox> combo = combos[random(combos.size())];
            const auto marks = marksOf(combo);
            const QPointer<CheckBox> mark = marks.isEmpty() ? nullptr : marks[random(marks.size())];
            focused = mark ? static_cast<QWidget*>(mark) : combo;
            focused->setFocus();
            if (mark && random(3) == 0) {
                mark->click();
                settleEvents();
            } else {
                choose(combo, combo->itemText(random(combo->count())));
            }
        }
    };
    std::deque<QVariant> before{"", "", ""}; // the last texts
    const auto hostStep = [&](const std::string& device, int what) {
        if (what >= 8) { // an undo, or an import
            runtime.call([&] {
                store.change("soundCardMappings", before[static_cast<std::size_t>(random(3))]);
            });
        } else if (what == 7) {
            runtime.call([&] { known.removeDevice(device); });
        } else if (what == 6) {
            runtime.call([&] { known.setDeviceVisible(device, random(2) == 0); });
        } else {
            Cards cards{{"1", "One", 1},  {"2", "Two", 2},  {"3", "Three", 3},
                        {"4", "Four", 4}, {"5", "Five", 5}, {"6", "Six", 6}};
            std::shuffle(cards.begin(), cards.end(), generator);
            cards.resize(static_cast<std::size_t>(random(7)));
            runtime.call([&] { known.setDeviceSoundCards(device, "", cards); });
        }
    };
    setCards("", {});
    open(store);
    for (int step = 0; step < 600 && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        before.pop_front();
        before.push_back(runtime.call([&] { return store.held("soundCardMappings"); }));
        if (random(3) == 0) {
            compare(store);
            userStep();
            compare(store);
        } else {
            hostStep(random(2) == 0 ? "" : "d" + std::to_string(random(3)), random(12));
        }
    }
    TestStore after(store.kept.rows); // a restart, with no card there yet
    after.soundCards().setDeviceSoundCards("", "", {});
    open(after);
    compare(after);
    delete page; // before that store
}

} // namespace audiosettingboxtest
