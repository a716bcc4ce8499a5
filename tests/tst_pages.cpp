#include "support/hostlanguage.h"
#include "support/pagecases.h"
#include "support/qtlog.h"
#include "support/test.h"

#include <QtGui/QAccessible>
#include <QtGui/QWheelEvent>
#include <QtTest/qtestspontaneevent.h>
#include <QtWidgets/QVBoxLayout>

#include <regex>

namespace pagestest {

using namespace mivo::settings;

namespace {

/// Delivers all events, also those that events cause.
void settle()
{
    QApplication::processEvents();
    QApplication::sendPostedEvents();
}

class Pages : public ::testing::TestWithParam<PageCase>
{
protected:
    Pages()
    {
        useHostLanguage(QString());
        for (const ControlCase& control : GetParam().controls) {
            store.change(control.setting, control.kept(control.initial));
        }
        new QVBoxLayout(&window);
        makePage();
    }

    void makePage()
    {
        page = GetParam().make();
        window.layout()->addWidget(page);
        page->setZRRuntime(&runtime);
    }

    static velorn::trans::Translator& translator()
    {
        return SettingWdigetTranslateManager::instance().translator();
    }

    void show()
    {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        // What a page does with its services when it is shown is a matter of its own tests.
        log.clear();
        runtime.takePosted();
    }

    void bind()
    {
        page->setSettings(&store);
        settle();
    }

    QWidget* widgetOf(const ControlCase& control) const { return findControl(page, control); }

    // In this order, so that the page goes first.
    TestRuntime runtime;
    TestStore store;
    LogCapture log;
    QWidget window;
    SettingPage* page = nullptr;
};

TEST_P(Pages, AreBuiltWithTheirDefaults)
{
    EXPECT_EQ(page->priorityIndex(), -1);
    page->setPriorityIndex(7);
    EXPECT_EQ(page->priorityIndex(), 7);
    QSignalSpy announced(page, &ISettingBox::sigTitleTextChanged);
    page->setTitleText("Elsewhere");
    EXPECT_EQ(page->titleText(), "Elsewhere");
    EXPECT_TRUE(announced.isEmpty());
    for (const ControlCase& control : GetParam().controls) {
        ASSERT_NE(widgetOf(control), nullptr) << control.setting;
        EXPECT_EQ(shownBy(widgetOf(control)), control.initial) << control.setting;
        if (control.limits != std::pair(0, 0)) {
            EXPECT_EQ(limitsOf(widgetOf(control)), control.limits) << control.setting;
        }
    }
}

TEST_P(Pages, ShowWhatTheStoreHoldsReadOnceEachOnTheRuntimeThread)
{
    const auto& controls = GetParam().controls;
    // One setting after the other differs from what is shown, so that none is taken for another.
    for (std::size_t differing = 0; differing <= controls.size(); ++differing) {
        TestStore other;
        const auto expected = [&](const ControlCase& control) {
            return &control - controls.data() == static_cast<std::ptrdiff_t>(differing)
                       ? control.edited
                       : control.initial;
        };
        std::vector<QVariant> before;
        for (const ControlCase& control : controls) {
            ASSERT_NE(control.edited, control.initial);
            other.change(control.setting, control.kept(expected(control)));
            before.push_back(shownBy(widgetOf(control)));
        }
        page->setSettings(&other);
        auto shown = before.begin();
        for (const ControlCase& control : controls) {
            EXPECT_EQ(shownBy(widgetOf(control)), *shown++) << "shown before the event loop ran";
        }
        settle();
        for (const ControlCase& control : controls) {
            EXPECT_EQ(shownBy(widgetOf(control)), expected(control)) << control.setting;
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

TEST_P(Pages, WriteAnEditOnceOnTheRuntimeThread)
{
    show();
    bind();
    for (const ControlCase& control : GetParam().controls) {
        store.kept.writes.clear();
        runtime.takePosted();
        control.edit(widgetOf(control));
        settle(); // the store announces the new value: it must not be written again
        ASSERT_EQ(store.kept.writes.size(), 1U) << control.setting;
        EXPECT_EQ(store.kept.writes[0].key, control.setting);
        EXPECT_EQ(store.held(control.setting), control.kept(control.edited));
        EXPECT_EQ(store.kept.writes[0].thread, runtime.thread());
        EXPECT_EQ(shownBy(widgetOf(control)), control.edited);
        const auto posted = runtime.takePosted();
        ASSERT_EQ(posted.size(), control.hops);
        EXPECT_EQ(posted.back().function, control.writeSlot);
    }
}

TEST_P(Pages, FollowTheStoreWithoutEcho)
{
    bind();
    for (const ControlCase& control : GetParam().controls) {
        // A value that differs from the one before makes the change visible.
        for (const QVariant& value : {control.edited, control.changed, control.edited}) {
            const QVariant before = shownBy(widgetOf(control));
            runtime.takePosted();
            runtime.call([&] { store.change(control.setting, control.kept(value)); });
            EXPECT_EQ(shownBy(widgetOf(control)), before) << "a control was touched off its thread";
            settle();
            EXPECT_EQ(shownBy(widgetOf(control)), value) << control.setting;
            EXPECT_TRUE(runtime.takePosted().empty()) << control.setting;
        }
    }
}

TEST_P(Pages, WithoutAStoreAnEditIsLoggedAndNothingElse)
{
    const QtLog qtLog;
    show();
    for (const ControlCase& control : GetParam().controls) {
        log.clear();
        control.edit(widgetOf(control));
        EXPECT_EQ(shownBy(widgetOf(control)), control.edited);
        if (GetParam().qtWarning != nullptr) {
            EXPECT_TRUE(log.lines().empty());
            EXPECT_EQ(std::exchange(QtLog::lines(), {}),
                      std::vector<std::string>{GetParam().qtWarning});
            continue;
        }
        ASSERT_EQ(log.lines().size(), 1U) << control.setting;
        const std::regex line("warning\\|sharedSettings is nullptr! \n //" + GetParam().sourceFile
                              + ":" + control.writeSlot + R"(\(\)#[1-9][0-9]*\.)");
        EXPECT_TRUE(std::regex_match(log.lines()[0], line)) << log.lines()[0];
    }
    EXPECT_TRUE(runtime.takePosted().empty());
}

TEST_P(Pages, LogAStoreOrARuntimeThatIsMissing)
{
    const MissingLines& missing = GetParam().missing;
    /// The lines since the last call, as "text|function".
    const auto logged = [this] {
        std::string lines;
        const std::regex line(R"(warning\|(.*) \n //)" + GetParam().sourceFile + R"(:(\w+)\(\))");
        for (const std::string& text : log.take()) {
            lines += std::regex_replace(text, line, "$1|$2");
        }
        return lines;
    };
    const auto text = [](const char* line) { return std::string(line != nullptr ? line : ""); };
    log.clear();
    page->unsetSettings();
    EXPECT_EQ(logged(), text(missing.unsetWithoutStore));
    if (missing.setWithoutStore != nullptr) {
        page->setSettings(nullptr);
        EXPECT_EQ(logged(), missing.setWithoutStore);
    }
    if (missing.setWithoutRuntime != nullptr) {
        page->setZRRuntime(nullptr);
        page->setSettings(&store);
        EXPECT_EQ(logged(), missing.setWithoutRuntime);
        EXPECT_EQ(store.connections(), 0U);
        page->setZRRuntime(&runtime);
        page->unsetSettings();
        EXPECT_EQ(logged(), text(missing.unsetWithoutStore)) << "kept none";
    }
    EXPECT_TRUE(runtime.takePosted().empty());
    if (missing.unsetWithoutRuntime != nullptr) {
        bind();
        page->setZRRuntime(nullptr);
        page->unsetSettings();
        EXPECT_EQ(logged(), missing.unsetWithoutRuntime);
        page->setZRRuntime(&runtime);
    }
}

TEST_P(Pages, ARefusingRuntimeLeavesEmptyValuesAndNoTrace)
{
    show();
    runtime.refuses = true;
    bind();
    for (const ControlCase& control : GetParam().controls) {
        EXPECT_EQ(shownBy(widgetOf(control)), control.refused) << control.setting;
        control.edit(widgetOf(control));
        if (widgetOf(control)->property("readOnly").toBool()) {
            EXPECT_EQ(shownBy(widgetOf(control)), control.refused) << "a folder that nobody keeps";
        }
    }
    EXPECT_TRUE(runtime.takePosted().empty());
    EXPECT_EQ(store.connections(), 0U);
    EXPECT_TRUE(log.lines().empty());
}

TEST_P(Pages, WithoutUiSyncTheValuesAreReadAndDroppedButChangesShow)
{
    for (const ControlCase& control : GetParam().controls) {
        store.change(control.setting, control.kept(control.edited));
    }
    runtime.uiSync = false;
    bind();
    EXPECT_EQ(runtime.takePosted().size(), GetParam().getters + 1);
    for (const ControlCase& control : GetParam().controls) {
        EXPECT_EQ(shownBy(widgetOf(control)), control.initial) << control.setting;
    }
    for (const ControlCase& control : GetParam().controls) {
        for (const QVariant& value : {control.changed, control.edited}) {
            runtime.call([&] { store.change(control.setting, control.kept(value)); });
            settle();
            EXPECT_EQ(shownBy(widgetOf(control)), value) << control.setting;
        }
    }
}

TEST_P(Pages, LetGoOfTheStoreWhenTheyAreUnset)
{
    show();
    bind();
    page->setSettings(&store); // connects a second time
    EXPECT_EQ(store.connections(), 2 * GetParam().signals_);
    settle();
    for (const ControlCase& control : GetParam().controls) {
        runtime.call([&] { store.change(control.setting, control.kept(control.changed)); });
    }
    page->unsetSettings();
    EXPECT_EQ(store.connections(), 0U);
    settle();
    if (GetParam().controls.empty()) {
        return;
    }
    const ControlCase& control = GetParam().controls.front();
    EXPECT_EQ(shownBy(widgetOf(control)), control.changed) << "it was on its way already";

    control.edit(widgetOf(control));
    EXPECT_EQ(store.kept.writes.size(), GetParam().keepsStoreWhenUnset ? 1U : 0U);
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0].find("warning|sharedSettings is nullptr!") == 0,
              !GetParam().keepsStoreWhenUnset);
}

TEST_P(Pages, FollowOnceAfterARuntimeThatRefusedToUnsetThem)
{
    bind();
    runtime.refuses = true;
    page->unsetSettings();
    runtime.refuses = false;
    bind();
    EXPECT_EQ(store.connections(), GetParam().signals_);
}

TEST_P(Pages, LeaveNoConnectionBehindEvenWhenTheRuntimeRefusesOrHasStopped)
{
    bind();
    runtime.refuses = true;
    delete page;
    EXPECT_EQ(store.connections(), 0U);

    runtime.refuses = false;
    makePage();
    bind();
    EXPECT_GT(store.connections(), 0U);
    runtime.stop();
    delete page;
    EXPECT_EQ(store.connections(), 0U);
}

TEST_P(Pages, SurviveAStormOfChangesWhileTheyComeAndGo)
{
    std::atomic<bool> storming{true};
    std::thread storm([&] {
        for (int i = 0; storming; ++i) {
            for (const ControlCase& control : GetParam().controls) {
                runtime.call([&] {
                    store.change(control.setting,
                                 control.kept(i % 2 ? control.edited : control.changed));
                });
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
    for (const ControlCase& control : GetParam().controls) {
        EXPECT_EQ(control.kept(shownBy(widgetOf(control))), store.held(control.setting))
            << control.setting;
    }
}

TEST_P(Pages, AreWholeInBothLanguagesThereAndBack)
{
    QStringList missing;
    translator().setMissingTextHandler(
        [&missing](const QString&, const QString&, const QString& key) { missing.append(key); });
    const auto texts = [this] {
        QStringList all{page->title(), page->titleText()};
        for (QLabel* label : page->findChildren<QLabel*>()) {
            all.append(label->text());
        }
        for (QWidget* control : controlsIn(page)) {
            auto* button = qobject_cast<QAbstractButton*>(control);
            all.append(button ? button->text() : control->accessibleName());
            if (auto* combo = qobject_cast<QComboBox*>(control)) {
                for (int i = 0; i < combo->count(); ++i) {
                    all.append(combo->itemText(i));
                }
            }
        }
        return all;
    };
    const QString key = page->titleText();
    QSignalSpy announced(page, &ISettingBox::sigTitleTextChanged);

    page->switchLanguage("en");
    const QStringList english = texts();
    page->switchLanguage("zh_cn");
    const QStringList chinese = texts();
    page->switchLanguage("en");
    EXPECT_EQ(texts(), english);
    EXPECT_TRUE(missing.isEmpty()) << missing.join(", ").toStdString();

    const QRegularExpression han("\\p{Han}");
    // Names of protocols, standards and colours, sizes, bit depths: they are the same everywhere.
    const QRegularExpression protocol("^([A-Z]+|[A-Z]+[.-][A-Z0-9]+|[0-9]+[*][0-9]+|[0-9]+bit)$");
    for (int i = 0; i < english.size(); ++i) {
        EXPECT_EQ(english[i].isEmpty(), chinese[i].isEmpty());
        EXPECT_FALSE(han.match(english[i]).hasMatch()) << english[i].toStdString();
        if (!chinese[i].isEmpty() && !protocol.match(english[i]).hasMatch()) {
            EXPECT_TRUE(han.match(chinese[i]).hasMatch()) << chinese[i].toStdString();
        }
    }
    ASSERT_EQ(announced.size(), 3);
    EXPECT_EQ(announced[0][0].toString(), english[1]);
    EXPECT_EQ(announced[1][0].toString(), chinese[1]);
    EXPECT_NE(english[1], key);
    translator().setMissingTextHandler(nullptr);

    page->setTitle("Changed by somebody else");
    page->translateLanguage();
    EXPECT_EQ(texts(), english);
}

TEST_P(Pages, HaveRoomForTheirTextsWithoutAStyleSheetInAnyFont)
{
    show();
    for (const char* language : {"en", "zh_cn"}) {
        page->switchLanguage(language);
        for (const int points : {9, 12}) {
            QFont font = QApplication::font();
            font.setPointSize(points);
            window.setFont(font);
            settle();
            EXPECT_TRUE(QTest::qWaitFor([this] {
                return page->height() >= page->layout()->totalMinimumSize().height();
            })) << points;
            for (QWidget* widget : page->findChildren<QWidget*>()) {
                const QString text = widget->property("text").toString();
                const bool isElided = widget->property("readOnly").toBool();
                if (!widget->isVisible() || text.isEmpty() || isElided
                    || widget->property("wordWrap").toBool()) {
                    continue;
                }
                const QSize needed = widget->fontMetrics().size(0, text);
                const bool hasMark = qobject_cast<QCheckBox*>(widget) != nullptr
                                     || qobject_cast<QRadioButton*>(widget) != nullptr;
                EXPECT_GE(widget->width(), needed.width() + (hasMark ? 16 : 0))
                    << text.toStdString();
                EXPECT_GE(widget->height(), qobject_cast<QLineEdit*>(widget)
                                                ? widget->fontMetrics().height()
                                                : needed.height())
                    << text.toStdString();
            }
        }
    }
}

TEST_P(Pages, NameEveryControlAfterItsLabel)
{
    show();
    page->switchLanguage("zh_cn");
    for (QWidget* control : controlsIn(page)) {
        auto* accessible = QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(accessible, nullptr);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
            << control->metaObject()->className();
    }
    for (QLabel* label : page->findChildren<QLabel*>()) {
        if (label->buddy() != nullptr) {
            EXPECT_EQ(label->buddy()->accessibleName(), label->text());
        }
    }
}

TEST_P(Pages, TheWheelOverAControlWithoutFocusChangesNothing)
{
    show();
    bind();
    for (QWidget* control : controlsIn(page)) {
        control->clearFocus();
        runtime.takePosted();
        const QVariant before = shownBy(control);
        const QPoint middle = control->rect().center();
        for (int turn = 0; turn < 2; ++turn) {
            QWheelEvent wheel(middle, control->mapToGlobal(middle), {}, {0, 120}, Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QSpontaneKeyEvent::setSpontaneous(&wheel); // else it gives no focus
            QApplication::instance()->notify(control, &wheel);
        }
        EXPECT_EQ(shownBy(control), before) << control->metaObject()->className();
        EXPECT_EQ(control->hasFocus(), control->focusPolicy() == Qt::WheelFocus);
        EXPECT_TRUE(runtime.takePosted().empty());
    }
}

INSTANTIATE_TEST_SUITE_P(All, Pages, ::testing::ValuesIn(pageCases()), [](const auto& info) {
    const std::string& name = info.param.name;
    return name.substr(name.rfind(':') + 1);
});

} // namespace

} // namespace pagestest
