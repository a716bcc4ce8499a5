#include "devices/graphicscards.h"
#include "devices/physicsoutputs.h"

#include "mivohostkit/runtimethread.h"
#include "surface/settingsview.h"

#include "support/logcapture.h"
#include "support/teststore.h"

#include <mivosettingswidgets/codeccontrolsettingbox.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivowidgets/combobox.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <future>

namespace graphicscardstest {

using namespace mivohost;
using Names = std::vector<std::string>;

namespace {

/// A folder in the form of /sys/class/drm.
class KernelFolder
{
public:
    /// Contents by the names of files in the card's device folder.
    void add(const QString& card, const std::vector<std::pair<const char*, QByteArray>>& files)
    {
        QDir(m_folder.path()).mkpath(card + "/device");
        for (const auto& [name, content] : files) {
            QFile file(m_folder.filePath(card + "/device/" + name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
    }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

mivo::widgets::ComboBox* cardCombo(SettingsView& view)
{
    return view.dialog()
        .findChild<mivo::settings::CodecControlSettingBox*>()
        ->findChild<mivo::widgets::ComboBox*>();
}

} // namespace

TEST(GraphicsCardList, OfTheKernelNumbersTwinsAndLeavesSocketsOut)
{
    KernelFolder folder;
    const QByteArray fast = "DRIVER=fast\nPCI_CLASS=30000\nPCI_ID=1234:5678\n";
    folder.add("card10", {{"uevent", fast}, {"boot_vga", "0\n"}});
    folder.add("card2", {{"uevent", fast}, {"boot_vga", "1\n"}});
    folder.add("card0", {{"uevent", "DRIVER=simple\nOF_NAME=gpu"}});
    folder.add("card1", {{"uevent", fast}, {"product_name", "Fine Card 7\n"}});
    folder.add("card3", {{"uevent", ""}});
    folder.add("card2-HDMI-A-1", {{"uevent", fast}});
    folder.add("renderD128", {{"uevent", fast}});
    const auto list = kernelGraphicsCards(folder.path());
    EXPECT_EQ(list.names,
              (Names{"simple", "Fine Card 7", "fast 1234:5678", "card3", "fast 1234:5678 (2)"}));
    EXPECT_EQ(list.inUse, "fast 1234:5678") << "the machine started with it";
}

TEST(GraphicsCardList, OfTheKernelMayBeEmptyOrHaveNothingToStartWith)
{
    KernelFolder folder;
    EXPECT_TRUE(kernelGraphicsCards(folder.path()).names.empty());
    EXPECT_TRUE(kernelGraphicsCards(folder.path() + "/missing").names.empty());
    folder.add("card0", {});
    folder.add("card1", {});
    EXPECT_EQ(kernelGraphicsCards(folder.path()).inUse, "card0");
}

TEST(GraphicsCardList, OfVulkanIsWhatItsDriversSay)
{
    // The software driver, so that the list does not depend on the machine.
    const QStringList drivers =
        QDir("/usr/share/vulkan/icd.d").entryList({"lvp_icd.*.json"}, QDir::Files);
    // The library stays loaded, so that a leak check knows what the driver keeps.
    if (drivers.size() != 1 || !QLibrary(QStringLiteral("vulkan_lvp")).load()) {
        GTEST_SKIP() << "no software driver of Vulkan here (mesa-vulkan-drivers)";
    }
    qputenv("VK_ICD_FILENAMES", "/usr/share/vulkan/icd.d/" + drivers[0].toUtf8());
    const auto list = vulkanGraphicsCards();
    ASSERT_EQ(list.names.size(), 1U);
    EXPECT_EQ(list.names[0].rfind("llvmpipe", 0), 0U) << list.names[0];
    EXPECT_EQ(list.inUse, list.names[0]);

    qputenv("VK_ICD_FILENAMES", "/missing.json");
    EXPECT_TRUE(vulkanGraphicsCards().names.empty());
    qunsetenv("VK_ICD_FILENAMES");
}

TEST(GraphicsCards, AreReadBesideTheDialogAndShownWhenTheyAreKnown)
{
    LogCapture log;
    RuntimeThread runtime;
    TestStore store({{"graphicsCard", "Second"}});
    std::promise<void> slow;
    GraphicsCards cards(runtime, [&slow] {
        slow.get_future().wait();
        return GraphicsCardList{{"First", "Second"}, "First"};
    });
    SettingsServices services;
    services.cards = &cards;
    SettingsView early(runtime, store, nullptr, services);
    QApplication::processEvents();
    EXPECT_EQ(cardCombo(early)->count(), 0);
    slow.set_value();
    EXPECT_TRUE(QTest::qWaitFor([&] { return cardCombo(early)->count() == 2; }));
    EXPECT_EQ(cardCombo(early)->currentText(), "Second");

    SettingsView late(runtime, store, nullptr, services);
    EXPECT_EQ(cardCombo(late)->currentText(), "Second") << "known already";
    EXPECT_EQ(log.lines(), Names{"info|graphics cards: First, Second"});
}

TEST(GraphicsCards, OnAnEmptyMachineAreAnEmptyListAndOneLine)
{
    LogCapture log;
    RuntimeThread runtime;
    TestStore store;
    {
        GraphicsCards cards(runtime, [] { return GraphicsCardList(); });
        SettingsServices services;
        services.cards = &cards;
        SettingsView early(runtime, store, nullptr, services);
        cards.wait();
        SettingsView late(runtime, store, nullptr, services);
        QApplication::processEvents();
        EXPECT_EQ(cardCombo(early)->count() + cardCombo(late)->count(), 0);
    }
    EXPECT_EQ(log.lines(), Names{"warning|no graphics card found"});
}

TEST(Outputs, AreTheScreens)
{
    LogCapture log;
    PhysicsOutputs outputs;
    const QScreen* screen = QGuiApplication::primaryScreen();
    ASSERT_EQ(PhysicsOutputs::outputs().size(), QGuiApplication::screens().size());
    EXPECT_TRUE(PhysicsOutputs::outputs()[0].contains(QString::number(screen->size().width())));
    outputs.setOutputConfig({});
    EXPECT_EQ(log.lines().size(), 2U);
}

} // namespace graphicscardstest
