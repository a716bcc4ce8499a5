#include "surface/messagecentre.h"
#include "surface/messagepanel.h"

#include "support/hostlanguage.h"
#include "support/logcapture.h"

#include <mivosettingswidgets/settingwdigettranslatemanager.h>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableWidget>

#include <memory>
#include <thread>

namespace messagecentretest {

using namespace mivohost;
using namespace velorn::msgcenter;

namespace {

class Messages : public ::testing::Test
{
protected:
    const InEnglish english;

    Messages()
    {
        panel = std::make_unique<MessagePanel>(centre);
        panel->resize(600, 200);
        panel->show();
        list = panel->findChild<QTableWidget*>("messages");
    }

    void post(std::uint32_t kind, const std::string& text, std::int64_t time = 0)
    {
        centre.postMessage({kind, text, -1, time});
        QCoreApplication::processEvents();
    }

    QString shown(int row, int column) const
    {
        const auto* item = list->item(row, column);
        return item != nullptr ? item->text() : QStringLiteral("no such row");
    }

    LogCapture log;
    MessageCentre centre;
    std::unique_ptr<MessagePanel> panel;
    QTableWidget* list = nullptr;
};

} // namespace

TEST_F(Messages, ShowKindTextAndTimeInBothLanguages)
{
    const QDateTime noon({2030, 1, 2}, {12, 34, 56});
    post(MsgWarning, "a <b>card</b>\nis missing", noon.toMSecsSinceEpoch());
    const auto before = QDateTime::currentMSecsSinceEpoch();
    post(MsgInformation, u8"\u58f0\u5361");
    post(MsgQuestion, "");
    post(77, "x");
    ASSERT_EQ(list->rowCount(), 4);
    EXPECT_EQ(shown(0, 0), "12:34:56");
    EXPECT_EQ(shown(0, 2), "a <b>card</b>\nis missing");
    EXPECT_TRUE(list->item(0, 2)->toolTip().contains("&lt;b&gt;"));
    EXPECT_EQ(shown(1, 2), QStringLiteral("\u58f0\u5361"));
    EXPECT_GE(centre.messages()[1].time, before);
    EXPECT_LE(centre.messages()[1].time, QDateTime::currentMSecsSinceEpoch());
    EXPECT_EQ(centre.messages()[0].programId, -1);

    const char* const languages[]{"en", "zh_cn"};
    const QStringList kinds[]{{"Warning", "Information", "Question", "Information"},
                              {QStringLiteral("警告"), QStringLiteral("信息"),
                               QStringLiteral("询问"), QStringLiteral("信息")}};
    for (int i = 0; i < 2; ++i) {
        SettingWdigetTranslateManager::instance().translator().switchLanguage(languages[i]);
        panel->setTexts();
        QStringList now;
        for (int row = 0; row < 4; ++row) {
            now.append(shown(row, 1));
        }
        EXPECT_EQ(now, kinds[i]);
        EXPECT_EQ(list->accessibleName(), panel->findChild<QLabel*>()->text());
    }
}

TEST_F(Messages, TheLastHundredAreKept)
{
    for (int i = 0; i < 101; ++i) {
        post(MsgInformation, std::to_string(i));
    }
    EXPECT_EQ(list->rowCount(), 100);
    EXPECT_EQ(shown(0, 2), "1");
    EXPECT_EQ(shown(99, 2), "100");

    QSignalSpy posted(&centre, &MessageCentre::posted);
    for (int i = 0; i < 250; ++i) { // more at once than are kept
        centre.postMessage({MsgInformation, "more " + std::to_string(i)});
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(posted.size(), 1);
    EXPECT_EQ(list->rowCount(), 100);
    EXPECT_EQ(shown(0, 2), "more 150");
    EXPECT_EQ(shown(99, 2), "more 249");
    EXPECT_EQ(log.lines().size(), 351U) << "all of them are logged";

    MessagePanel late(centre);
    EXPECT_EQ(late.findChild<QTableWidget*>()->rowCount(), 100);
}

TEST_F(Messages, StayWhereTheyAreReadUntilTheEndIsShown)
{
    for (int i = 0; i < 50; ++i) {
        post(MsgInformation, std::to_string(i));
    }
    auto* scroll = list->verticalScrollBar();
    ASSERT_GT(scroll->maximum(), 0);
    EXPECT_EQ(scroll->value(), scroll->maximum());
    list->setCurrentCell(10, 2);
    scroll->setValue(5);
    post(MsgWarning, "new");
    EXPECT_EQ(scroll->value(), 5);
    EXPECT_EQ(list->currentItem()->text(), "10");
    scroll->setValue(scroll->maximum());
    post(MsgWarning, "newer");
    EXPECT_EQ(scroll->value(), scroll->maximum());
    panel->resize(350, 150); // what is wrapped takes more lines
    post(MsgWarning, "a message that is far too long for one line of a panel of that width");
    EXPECT_EQ(scroll->value(), scroll->maximum());
    EXPECT_GT(list->rowHeight(52), 2 * list->rowHeight(51));
}

TEST_F(Messages, ComeFromAnyThreadInTheirOrder)
{
    constexpr int each = 25;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < each; ++i) {
                centre.postMessage({static_cast<std::uint32_t>(thread), std::to_string(i)});
            }
        });
    }
    EXPECT_TRUE(QTest::qWaitFor([this] { return centre.messages().size() == 4 * each; }));
    for (auto& thread : threads) {
        thread.join();
    }
    int next[4]{};
    for (const auto& message : centre.messages()) {
        EXPECT_EQ(message.text, std::to_string(next[message.kind]++));
    }
    EXPECT_EQ(list->rowCount(), 4 * each);
}

} // namespace messagecentretest
