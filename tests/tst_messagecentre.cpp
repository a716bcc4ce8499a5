#include "surface/messagecentre.h"
#include "surface/messagepanel.h"

#include "support/test.h"

namespace messagecentretest {

using namespace mivohost;
using namespace velorn::msgcenter;

struct Messages : ::testing::Test
{
    const InEnglish english;

    Messages() { panel.show(); }

    void post(std::uint32_t kind, const std::string& text, std::int64_t time = 0)
    {
        centre.postMessage({kind, text, -1, time});
        QCoreApplication::processEvents();
    }

    QString shown(int row, int column) const { return list->item(row, column)->text(); }

    LogCapture log;
    MessageCentre centre;
    MessagePanel panel{centre};
    QTableWidget* list = panel.findChild<QTableWidget*>("messages");
};

TEST_F(Messages, ShowKindTextAndTime)
{
    post(MsgWarning, "a <b>card</b>", QDateTime({2030, 1, 2}, {12, 34, 56}).toMSecsSinceEpoch());
    post(MsgInformation, u8"\u58f0\u5361");
    post(77, "later");
    EXPECT_EQ(shown(0, 0), "12:34:56");
    EXPECT_GT(centre.messages()[1].time, 1700000000000) << "now";
    EXPECT_EQ(shown(0, 2), "a <b>card</b>");
    EXPECT_TRUE(list->item(0, 2)->toolTip().contains("&lt;b&gt;"));
    EXPECT_EQ((QStringList{shown(0, 1), shown(1, 1), shown(2, 1)}).join(' '),
              "Warning Information Information");
}

TEST_F(Messages, TheLastHundredAreKeptAndManyAtOnceAreOneChange)
{
    for (int i = 0; i < 101; ++i) {
        post(MsgInformation, std::to_string(i));
    }
    EXPECT_EQ(list->rowCount(), 100);
    EXPECT_EQ(shown(0, 2), "1");
    QSignalSpy posted(&centre, &MessageCentre::posted);
    std::vector<std::thread> threads;
    for (const std::uint32_t thread : {0U, 1U, 2U, 3U}) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < 50; ++i) {
                centre.postMessage({thread, std::to_string(i)});
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(posted.size(), 1);
    EXPECT_EQ(list->rowCount(), 100);
    EXPECT_EQ(shown(99, 2), QString::fromStdString(centre.messages().back().text));
    int last[4]{-1, -1, -1, -1};
    for (const auto& message : centre.messages()) {
        EXPECT_GT(std::stoi(message.text), last[message.kind]) << "in the order of each thread";
        last[message.kind] = std::stoi(message.text);
    }
    EXPECT_EQ(log.lines().size(), 301U) << "all of them are logged";
}

} // namespace messagecentretest
