#include "devices/graphicscards.h"

#include "base/hostlog.h"
#include "mivohostkit/runtimethread.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>

#include <fmt/ranges.h>
#include <vulkan/vulkan.h>

#include <algorithm>
#include <utility>

namespace mivohost {

namespace {

/// The name, with a number appended where another card has it already.
std::string unlike(const std::vector<std::string>& taken, const std::string& name)
{
    std::string numbered = name;
    for (int number = 2; std::find(taken.begin(), taken.end(), numbered) != taken.end(); ++number) {
        numbered = name + " (" + std::to_string(number) + ')';
    }
    return numbered;
}

QString firstLine(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readLine(256)).trimmed()
                                          : QString();
}

/// A device's name: what its driver calls it, else the driver and the number of the model.
QString deviceName(const QString& device, const QString& fallback)
{
    const QString product = firstLine(device + "/product_name");
    if (!product.isEmpty()) {
        return product;
    }
    QMap<QString, QString> events; // lines of "KEY=value"
    QFile file(device + "/uevent");
    if (file.open(QIODevice::ReadOnly)) {
        for (const QString& line : QString::fromUtf8(file.read(4096)).split('\n')) {
            events.insert(line.section('=', 0, 0), line.section('=', 1).trimmed());
        }
    }
    const QString name =
        QStringLiteral("%1 %2").arg(events.value("DRIVER"), events.value("PCI_ID"));
    return name.trimmed().isEmpty() ? fallback : name.trimmed();
}

} // namespace

GraphicsCardList vulkanGraphicsCards()
{
    VkApplicationInfo application{};
    application.sType = VK_STRUCTURE_TYPE_APPLICATION_INFO;
    application.pApplicationName = "mivohost";
    application.apiVersion = VK_API_VERSION_1_0;
    VkInstanceCreateInfo wanted{};
    wanted.sType = VK_STRUCTURE_TYPE_INSTANCE_CREATE_INFO;
    wanted.pApplicationInfo = &application;
    // Not QVulkanInstance: it belongs to the GUI thread and needs a platform plugin that supports
    // Vulkan, which the offscreen one does not.
    VkInstance instance = VK_NULL_HANDLE;
    if (vkCreateInstance(&wanted, nullptr, &instance) != VK_SUCCESS) {
        return {};
    }
    GraphicsCardList list;
    std::vector<VkPhysicalDevice> devices;
    std::uint32_t count = 0;
    vkEnumeratePhysicalDevices(instance, &count, nullptr);
    devices.resize(count);
    vkEnumeratePhysicalDevices(instance, &count, devices.data());
    devices.resize(count); // fewer than counted when a card was removed meanwhile
    for (VkPhysicalDevice device : devices) {
        VkPhysicalDeviceProperties properties{};
        vkGetPhysicalDeviceProperties(device, &properties);
        list.names.push_back(unlike(list.names, properties.deviceName));
    }
    vkDestroyInstance(instance, nullptr);
    if (!list.names.empty()) {
        list.inUse = list.names.front();
    }
    return list;
}

GraphicsCardList kernelGraphicsCards(const QString& folder)
{
    const QDir directory(folder);
    QMap<int, QString> cards; // sorted by number: card2 comes before card10
    for (const QString& entry : directory.entryList({QStringLiteral("card*")}, QDir::Dirs)) {
        bool isNumber = false; // folders such as card0-HDMI-A-1 are sockets of a card
        const int number = entry.mid(4).toInt(&isNumber);
        if (isNumber) {
            cards.insert(number, entry);
        }
    }
    GraphicsCardList list;
    for (const QString& card : std::as_const(cards)) {
        const QString device = directory.filePath(card + "/device");
        list.names.push_back(unlike(list.names, deviceName(device, card).toStdString()));
        if (list.inUse.empty() || firstLine(device + "/boot_vga") == QLatin1String("1")) {
            list.inUse = list.names.back();
        }
    }
    return list;
}

GraphicsCardList machineGraphicsCards()
{
    auto list = vulkanGraphicsCards();
    return list.names.empty() ? kernelGraphicsCards(QStringLiteral("/sys/class/drm")) : list;
}

GraphicsCards::GraphicsCards(RuntimeThread& runtime, Reader read)
    : m_runtime(runtime), m_reading([this, read = std::move(read)] {
          GraphicsCardList list = read();
          const auto logger = hostLog();
          if (list.names.empty()) {
              logger->warn("no graphics card found");
              return;
          }
          logger->info("graphics cards: {}", fmt::join(list.names, ", "));
          m_runtime.call([this, &list] {
              m_list = std::move(list);
              graphicsCardsChanged();
          });
      })
{}

GraphicsCards::~GraphicsCards()
{
    wait();
}

void GraphicsCards::wait()
{
    if (m_reading.joinable()) {
        m_reading.join();
    }
}

} // namespace mivohost
