#include <mivosettingswidgets/queuedtypes.h>
#include <mivosettingswidgets/storeaccess.h>

#include "support/pagecases.h"
#include "support/pagetest.h"
#include "support/qtlog.h"

namespace pagestest {

using namespace mivo::settings;

QVariant shownBy(QWidget* control)
{
    const auto* combo = qobject_cast<QComboBox*>(control);
    if (combo != nullptr && combo->currentData().isValid()) {
        return combo->currentData();
    }
    const QVariant value = control->metaObject()->userProperty().read(control);
    return value.type() == QVariant::Time ? value.toTime().msecsSinceStartOfDay() : value;
}

std::pair<int, int> limitsOf(QWidget* control)
{
    if (auto* edit = qobject_cast<QTimeEdit*>(control)) {
        return {edit->minimumTime().msecsSinceStartOfDay(),
                edit->maximumTime().msecsSinceStartOfDay()};
    }
    return {control->property("minimum").toInt(), control->property("maximum").toInt()};
}

struct Pages : PageTest<SettingPage>, ::testing::WithParamInterface<PageCase>
{
    Pages() : PageTest(make())
    {
        for (const ControlCase& control : controls) {
            store.change(control.setting, control.kept(control.initial));
        }
        new QVBoxLayout(&window);
        window.layout()->addWidget(page);
    }

    static SettingPage* make()
    {
        useHostLanguage(QString());
        return GetParam().make();
    }

    void makePage()
    {
        page = make();
        window.layout()->addWidget(page);
        page->setZRRuntime(&runtime);
    }

    void show()
    {
        activateWindow(&window);
        // What a page does with its services when it is shown is a matter of its own tests.
        log.clear();
        runtime.takePosted();
    }

    /// The store changes elsewhere, while the page is there.
    void announce(const ControlCase& control, const QVariant& value)
    {
        runtime.call([&] { store.change(control.setting, control.kept(value)); });
    }

    QWidget* find(const ControlCase& control)
    {
        QList<QWidget*> ofType;
        for (QWidget* child : page->findChildren<QWidget*>()) {
            child->inherits(control.type) ? ofType.append(child) : void();
        }
        return ofType.value(control.index);
    }
    QVariant shown(const ControlCase& control) { return shownBy(find(control)); }
    void edit(const ControlCase& control) { control.edit(find(control)); }

    const std::vector<ControlCase>& controls = GetParam().controls;
    QWidget window;
};

TEST_P(Pages, ShowWhatTheStoreHoldsReadOnceEachOnTheRuntimeThread)
{
    // One setting after the other differs from what is shown, so that none is taken for another.
    for (std::size_t differing = 0; differing <= controls.size(); ++differing) {
        TestStore other;
        const auto expected = [&](const ControlCase& control) {
            const auto index = static_cast<std::size_t>(&control - controls.data());
            return index == differing ? control.edited : control.initial;
        };
        for (const ControlCase& control : controls) {
            ASSERT_NE(control.edited, control.initial);
            other.change(control.setting, control.kept(expected(control)));
        }
        page->setSettings(&other);
        settleEvents();
        for (const ControlCase& control : controls) {
            EXPECT_EQ(shown(control), expected(control)) << control.setting;
        }
        EXPECT_TRUE(other.kept.writes.empty());
        const auto posted = runtime.takePosted();
        ASSERT_EQ(posted.size(), GetParam().getters + 1) << "one hop per value";
        EXPECT_EQ(posted.front().function, "setSettings");
        EXPECT_EQ(posted.back().function, GetParam().getters > 0 ? "initSettings" : "setSettings");
        page->unsetSettings();
        runtime.takePosted();
    }
}

TEST_P(Pages, WriteAnEditOnceOnTheRuntimeThreadAsAnAssistiveProgramDoes)
{
    show();
    bind();
    for (const ControlCase& control : controls) {
        store.kept.writes.clear();
        runtime.takePosted();
        edit(control);
        settleEvents(); // the store announces the new value: it must not be written again
        ASSERT_EQ(store.kept.writes.size(), 1U) << control.setting;
        EXPECT_EQ(store.kept.writes[0].key, control.setting);
        EXPECT_EQ(store.held(control.setting), control.kept(control.edited));
        EXPECT_EQ(store.kept.writes[0].thread, runtime.thread());
        EXPECT_EQ(shown(control), control.edited);
        const auto posted = runtime.takePosted();
        ASSERT_EQ(posted.size(), control.hops);
        EXPECT_EQ(posted.back().function, control.writeSlot);
        // And by an assistive program.
        announce(control, control.initial);
        settleEvents();
        QWidget* changed = find(control);
        changed->clearFocus(); // with it, a number is written when the focus leaves
        auto* seen = QAccessible::queryAccessibleInterface(changed);
        if (qobject_cast<QDoubleSpinBox*>(changed) != nullptr) {
            seen->valueInterface()->setCurrentValue(control.edited);
        } else if (seen->state().checkable) {
            seen->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        } else {
            edit(control);
        }
        settleEvents();
        EXPECT_EQ(store.held(control.setting), control.kept(control.edited)) << control.setting;
    }
}

TEST_P(Pages, WithoutUiSyncReadAndDropTheValuesButFollowTheStoreWithoutEcho)
{
    for (const ControlCase& control : controls) {
        store.change(control.setting, control.kept(control.edited));
    }
    runtime.uiSync = false;
    bind();
    EXPECT_EQ(runtime.takePosted().size(), GetParam().getters + 1);
    for (const ControlCase& control : controls) {
        EXPECT_EQ(shown(control), control.initial) << control.setting << " of a new page";
        EXPECT_EQ(limitsOf(find(control)), control.limits) << control.setting;
    }
    for (const ControlCase& control : controls) {
        for (const QVariant& value : {control.changed, control.edited, control.changed}) {
            const QVariant before = shown(control);
            announce(control, value);
            EXPECT_EQ(shown(control), before) << "a control was touched off its thread";
            settleEvents();
            EXPECT_EQ(shown(control), value) << control.setting;
            EXPECT_TRUE(runtime.takePosted().empty()) << control.setting;
        }
    }
}

TEST_P(Pages, LogAStoreOrARuntimeThatIsMissing)
{
    const QtLog qtLog;
    const MissingLines& missing = GetParam().missing;
    show();
    for (const ControlCase& control : controls) {
        edit(control);
        EXPECT_EQ(shown(control), control.edited);
        const char* byQt = GetParam().qtWarning;
        EXPECT_EQ(warned(log) + QtLog::take(),
                  byQt != nullptr ? byQt + control.writeSlot + "()"
                                  : "sharedSettings is nullptr!|" + control.writeSlot);
    }
    page->unsetSettings();
    EXPECT_EQ(warned(log), missing.unsetWithoutStore);
    if (*missing.setWithoutStore != '\0') {
        page->setSettings(nullptr);
        EXPECT_EQ(warned(log), missing.setWithoutStore);
    }
    if (*missing.setWithoutRuntime != '\0') {
        page->setZRRuntime(nullptr);
        page->setSettings(&store);
        EXPECT_EQ(warned(log), missing.setWithoutRuntime);
        page->setZRRuntime(&runtime);
        page->unsetSettings();
        EXPECT_EQ(warned(log), missing.unsetWithoutStore) << "kept none";
    }
    EXPECT_TRUE(runtime.takePosted().empty());
    if (*missing.unsetWithoutRuntime != '\0') {
        bind();
        page->setZRRuntime(nullptr);
        page->unsetSettings();
        EXPECT_EQ(warned(log), missing.unsetWithoutRuntime);
        page->setZRRuntime(&runtime);
    }
}

TEST_P(Pages, ARefusingRuntimeLeavesEmptyValuesAndNoTrace)
{
    show();
    runtime.refuses = true;
    bind();
    for (const ControlCase& control : controls) {
        EXPECT_EQ(shown(control), control.refused) << control.setting;
        edit(control);
        if (find(control)->property("readOnly").toBool()) {
            EXPECT_EQ(shown(control), control.refused) << "a folder that nobody keeps";
        }
    }
    EXPECT_TRUE(runtime.takePosted().empty());
    EXPECT_EQ(store.connections(), 0U);
    EXPECT_TRUE(log.lines().empty());
}

TEST_P(Pages, LetGoOfTheStoreWhenTheyAreUnsetOrEndEvenWhenTheRuntimeRefusesOrHasStopped)
{
    show();
    bind();
    page->setSettings(&store); // connects a second time
    EXPECT_EQ(store.connections(), 2 * GetParam().signals_);
    settleEvents();
    for (const ControlCase& control : controls) {
        announce(control, control.changed);
    }
    page->unsetSettings();
    EXPECT_EQ(store.connections(), 0U);
    settleEvents();
    if (!controls.empty()) {
        EXPECT_EQ(shown(controls[0]), controls[0].changed) << "it was on its way already";
        edit(controls[0]);
        EXPECT_EQ(store.kept.writes.size(), GetParam().keepsStoreWhenUnset ? 1U : 0U);
        EXPECT_EQ(warned(log).empty(), GetParam().keepsStoreWhenUnset);
    }
    bind();
    runtime.refuses = true;
    page->unsetSettings();
    runtime.refuses = false;
    bind();
    EXPECT_EQ(store.connections(), GetParam().signals_) << "once, after a refused unsetting";
    runtime.refuses = true;
    delete page;
    EXPECT_EQ(store.connections(), 0U);
    runtime.refuses = false;
    makePage();
    bind();
    runtime.stop();
    delete page;
    EXPECT_EQ(store.connections(), 0U);
}

TEST_P(Pages, SurviveAStormOfChangesWhileTheyComeAndGo)
{
    std::atomic<bool> storming{true};
    std::thread storm([&] {
        for (int i = 0; storming; ++i) {
            for (const ControlCase& control : controls) {
                announce(control, i % 2 ? control.edited : control.changed);
            }
        }
    });
    for (int i = 0; i < 30; ++i) {
        bind();
        runtime.refuses = i % 2 != 0; // then the page goes while the storm goes on
        delete page;
        runtime.refuses = false;
        makePage();
    }
    storming = false;
    storm.join();
    bind();
    for (const ControlCase& control : controls) {
        EXPECT_EQ(control.kept(shown(control)), store.held(control.setting)) << control.setting;
    }
}

TEST_P(Pages, AreWholeInBothLanguagesThereAndBackAndNameTheirControls)
{
    auto& translator = SettingWdigetTranslateManager::instance().translator();
    translator.setMissingTextHandler([](const QString&, const QString&, const QString& key) {
        ADD_FAILURE() << key << " has no text";
    });
    const auto texts = [this] {
        QStringList all{page->title(), page->titleText()};
        for (QLabel* label : page->findChildren<QLabel*>()) {
            all.append(label->text());
        }
        for (QWidget* control : controlsIn(page)) {
            all.append(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name));
            EXPECT_FALSE(all.last().isEmpty()) << control->metaObject()->className();
            if (auto* combo = qobject_cast<QComboBox*>(control)) {
                all.append(itemsOf(combo));
            }
        }
        return all;
    };
    const QString key = page->titleText();
    QSignalSpy announced(page, &ISettingBox::sigTitleTextChanged);
    page->switchLanguage("zh_cn");
    const QStringList chinese = texts();
    page->switchLanguage("en");
    const QStringList english = texts();
    translator.setMissingTextHandler(nullptr);

    const QRegularExpression han("\\p{Han}");
    // Names of protocols, standards and colours, sizes, bit depths: they are the same everywhere.
    const QRegularExpression same(
        "^([A-Z]+|#[0-9A-F]+|[A-Z]+[.-][A-Z0-9]+|[0-9]+[*][0-9]+|[0-9]+bit)?$");
    for (int i = 0; i < english.size(); ++i) {
        EXPECT_FALSE(han.match(english[i]).hasMatch()) << english[i];
        EXPECT_TRUE(han.match(chinese[i]).hasMatch() || same.match(chinese[i]).hasMatch())
            << chinese[i];
    }
    EXPECT_EQ(announced, (QList<QVariantList>{{chinese[1]}, {english[1]}}));
    EXPECT_NE(english[1], key);
    page->setTitle("Changed by somebody else");
    page->translateLanguage();
    EXPECT_EQ(texts(), english);
}

TEST_P(Pages, HaveRoomForTheirTextsWithoutAStyleSheetInAnyFont)
{
    show();
    bind();
    runtime.call([this] {
        store.change("soundCardMappings", R"({"mappings":[{"id":1,"name":"A","soundCards":[)"
                                          R"({"device":"","id":"a","channels":32}]}]})");
    });
    for (const auto& [language, points] :
         {std::pair("zh_cn", 9), {"en", 9}, {"en", 12}, {"en", 18}, {"zh_cn", 12}, {"zh_cn", 18}}) {
        page->switchLanguage(language);
        QFont font = QApplication::font();
        font.setPointSize(points);
        window.setFont(font);
        settleEvents();
        EXPECT_TRUE(QTest::qWaitFor([this] {
            return page->height() >= page->layout()->totalMinimumSize().height();
        })) << points;
        if (points <= 12) { // beside the navigation and the scroll bar of the dialog
            EXPECT_LE(page->minimumSizeHint().width(), 894) << language << ' ' << points;
        }
        for (QWidget* widget : page->findChildren<QWidget*>()) {
            const auto* combo = qobject_cast<QComboBox*>(widget);
            const QString text = widget->property(combo ? "currentText" : "text").toString();
            const bool isElided = widget->property("readOnly").toBool();
            if (!widget->isVisible() || text.isEmpty() || isElided
                || widget->property("wordWrap").toBool()) {
                continue;
            }
            const bool hasMark = qobject_cast<QCheckBox*>(widget) != nullptr
                                 || qobject_cast<QRadioButton*>(widget) != nullptr;
            const QSize needed = widget->fontMetrics().size(0, text);
            if (combo == nullptr) {
                EXPECT_GE(widget->width(), needed.width() + (hasMark ? 16 : 0)) << text;
            } else if (points <= 12) { // Qt keeps its least width when the font becomes larger
                EXPECT_GE(combo->width(), combo->sizeHint().width()) << text;
            }
            // Fusion makes the field of a spin box a pixel less high than a line.
            const int cut = widget->objectName() == "qt_spinbox_lineedit" ? 1 : 0;
            EXPECT_GE(widget->height(),
                      std::min(needed.height(), widget->fontMetrics().height()) - cut)
                << text;
        }
    }
}

TEST_P(Pages, TheWheelOverAControlIsThePagesUntilThatHasTheFocus)
{
    show();
    bind();
    for (QWidget* control : controlsIn(page)) {
        control->clearFocus();
        runtime.takePosted();
        const QVariant before = shownBy(control);
        turnWheel(control); // which may give it the focus, for the next turn
        const bool isUsed = turnWheel(control);
        EXPECT_EQ(shownBy(control), before) << control->metaObject()->className();
        EXPECT_EQ(control->hasFocus(), control->focusPolicy() == Qt::WheelFocus);
        EXPECT_TRUE(runtime.takePosted().empty());
        auto* box = qobject_cast<mivo::widgets::SpinEditBox*>(control);
        if (box != nullptr && box->isEnabled() && box->value() < box->maximum()) {
            box->setFocus();
            EXPECT_TRUE(!isUsed && turnWheel(box));
            EXPECT_GT(box->value(), before.toDouble());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Pages, ::testing::ValuesIn(pageCases()), [](const auto& info) {
    const std::string& name = info.param.name;
    return name.substr(name.rfind(':') + 1);
});

TEST(StoreAccess, LetsFailuresReachTheCaller)
{
    TestRuntime runtime;
    EXPECT_THROW(callInRuntime(&runtime, "", 1, "f", [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    runtime.drops = true;
    EXPECT_THROW(callInRuntime(&runtime, "", 1, "f", [] { return 5; }), std::future_error);
    runtime.takePosted();
    runtime.call([&] { callInRuntime(&runtime, "", 1, "f", [] {}); });
    EXPECT_TRUE(runtime.takePosted().empty()) << "straight through on the runtime thread";
}

TEST(QueuedCalls, FindTheSlotOfTheClassByNameAndTypes)
{
    const QtLog log;
    QLabel label;
    QLineEdit edit;
    for (int round = 0; round < 2; ++round) { // searched, then known
        queueCall(&label, "setText", QStringLiteral("text"));
        queueCall(&edit, "setText", QStringLiteral("another class"));
        queueCall(&label, "setNum", 2.5);
        settleEvents();
        EXPECT_EQ(edit.text(), "another class");
        EXPECT_EQ(label.text(), "2.5");
        queueCall(&label, "setNum", 7);
        queueCall(&label, "setNum", QString());
        settleEvents();
        EXPECT_EQ(label.text(), "7");
        EXPECT_NE(QtLog::take().find("No such method QLabel::setNum(QString)"), std::string::npos);
    }
}

} // namespace pagestest
