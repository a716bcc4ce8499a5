#include "devices/graphicscards.h"

#include "support/test.h"

namespace graphicscardstest {

using namespace mivohost;
using Names = std::vector<std::string>;

#ifdef Q_OS_UNIX // where a kernel lists them as files
TEST(GraphicsCards, OfTheKernelAreNumberedWhereTheyAreTwinsWithoutTheirSockets)
{
    const QTemporaryDir folder; // in the form of /sys/class/drm
    EXPECT_TRUE(kernelGraphicsCards(folder.path() + "/missing").names.empty());
    const QByteArray fast = "DRIVER=fast\nPCI_CLASS=30000\nPCI_ID=1234:5678\n";
    for (const auto& [card, uevent] : {std::pair("card10", fast),
                                       {"card2", fast},
                                       {"card0", "DRIVER=simple\nOF_NAME=gpu"},
                                       {"card1", fast},
                                       {"card3", ""},
                                       {"card2-HDMI-A-1", fast},
                                       {"renderD128", fast}}) {
        QDir(folder.path()).mkpath(QString(card) + "/device");
        writeFile(folder.filePath(QString(card) + "/device/uevent"), uevent);
    }
    writeFile(folder.filePath("card1/device/product_name"), "Fine Card 7\n");
    EXPECT_EQ(kernelGraphicsCards(folder.path()).inUse, "simple") << "the first";
    writeFile(folder.filePath("card10/device/boot_vga"), "0\n");
    writeFile(folder.filePath("card2/device/boot_vga"), "1\n");
    const auto list = kernelGraphicsCards(folder.path());
    EXPECT_EQ(list.names,
              (Names{"simple", "Fine Card 7", "fast 1234:5678", "card3", "fast 1234:5678 (2)"}));
    EXPECT_EQ(list.inUse, "fast 1234:5678") << "the machine started with it";
}
#endif

TEST(GraphicsCards, AreReadBesideTheRuntimeThreadAndAnnouncedOnIt)
{
    LogCapture log;
    TestRuntime runtime;
    std::promise<void> slow;
    GraphicsCards cards(runtime, [&slow](const auto&) {
        slow.get_future().wait();
        return GraphicsCardList{{"First", "Second"}, "First"};
    });
    std::thread::id announcedOn;
    cards.graphicsCardsChanged.connect([&] { announcedOn = std::this_thread::get_id(); });
    cards.wait(); // for nothing: they are not read yet
    cards.start();
    EXPECT_TRUE(runtime.call([&] { return cards.graphicsCards(); }).empty());
    slow.set_value();
    cards.wait();
    EXPECT_EQ(announcedOn, runtime.thread());
    EXPECT_EQ(cards.graphicsCards(), (Names{"First", "Second"}));
    EXPECT_EQ(cards.graphicsCardInUse(), "First");
    GraphicsCards none(runtime, [](const auto&) { return GraphicsCardList(); });
    none.start();
    none.wait();
    EXPECT_EQ(log.lines(),
              (Names{"info|graphics cards: First, Second", "warning|no graphics card found"}));
}

TEST(GraphicsCards, AreListedByAProcessThatMayFailOrHang)
{
    LogCapture log;
    const std::atomic<bool> isWanted{true};
    const QTemporaryDir folder;
    const auto listed = [&](const QByteArray& line, int longest) {
        writeFile(folder.filePath("lines"), line + '\n');
        return listedGraphicsCards(QCoreApplication::applicationFilePath(),
                                   {"--as-lister", folder.filePath("lines")}, isWanted, longest);
    };
    const auto good = listed(R"({"inUse":"声卡 2","names":["Card","声卡 2"]})", 30000);
    EXPECT_EQ(good.names, (Names{"Card", "声卡 2"}));
    EXPECT_EQ(good.inUse, "声卡 2");
    EXPECT_TRUE(listed(R"({"inUse":"","names":[]})", 30000).names.empty()) << "has none";
    EXPECT_EQ(log.lines(), Names{});
    for (const char* line : {"fail", "noise", "hang"}) {
        EXPECT_EQ(listed(line, 1000).names, systemGraphicsCards().names) << line;
    }
    EXPECT_EQ(listedGraphicsCards(folder.filePath("none"), {}, isWanted).names,
              systemGraphicsCards().names);
}

TEST(GraphicsCards, AreNotWaitedForAtTheEnd)
{
    TestRuntime runtime;
    const QTemporaryDir folder;
    writeFile(folder.filePath("lines"), "hang\n");
    bool isAnnounced = false;
    QElapsedTimer time;
    {
        GraphicsCards cards(runtime, [&folder](const auto& isWanted) {
            return listedGraphicsCards(QCoreApplication::applicationFilePath(),
                                       {"--as-lister", folder.filePath("lines")}, isWanted);
        });
        cards.graphicsCardsChanged.connect([&isAnnounced] { isAnnounced = true; });
        cards.start();
        time.start();
    }
    EXPECT_FALSE(isAnnounced);
    EXPECT_LT(time.elapsed(), 15000); // a lister is given up after twenty seconds
}

} // namespace graphicscardstest
