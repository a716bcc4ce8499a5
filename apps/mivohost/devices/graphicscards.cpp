#include "devices/graphicscards.h"

#include "base/hostlog.h"
#include "devices/listerprocess.h"
#include "mivohostkit/runtimethread.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLibrary>
#include <QtCore/QProcess>

#include <fmt/ranges.h>
#define VK_NO_PROTOTYPES
#include <vulkan/vulkan.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace mivohost {

namespace {

/// The system's loader of drivers, which a machine may be without.
class VulkanLoader
{
public:
    VulkanLoader()
    {
        if (!m_library.load()) {
            hostLog()->info("no Vulkan: {}", m_library.errorString().toStdString());
        }
        m_find =
            reinterpret_cast<PFN_vkGetInstanceProcAddr>(m_library.resolve("vkGetInstanceProcAddr"));
    }

    /// Null where it does not offer the function.
    template <typename Function>
    Function function(VkInstance instance, const char* name) const
    {
        return m_find == nullptr ? nullptr : reinterpret_cast<Function>(m_find(instance, name));
    }

private:
#ifdef Q_OS_WIN
    QLibrary m_library{QStringLiteral("vulkan-1")};
#else
    QLibrary m_library{QStringLiteral("vulkan"), 1};
#endif
    PFN_vkGetInstanceProcAddr m_find = nullptr;
};

const QString namesKey = QStringLiteral("names");
const QString inUseKey = QStringLiteral("inUse");

} // namespace

void addCard(GraphicsCardList& list, const std::string& name)
{
    std::string unlike = name;
    for (int number = 2;
         std::find(list.names.begin(), list.names.end(), unlike) != list.names.end(); ++number) {
        unlike = name + " (" + std::to_string(number) + ')';
    }
    list.names.push_back(unlike);
}

namespace {

/// The cards that Vulkan lists, in its order of preference; the first one is in use.
GraphicsCardList vulkanGraphicsCards()
{
    const VulkanLoader vulkan;
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
    const auto create = vulkan.function<PFN_vkCreateInstance>(instance, "vkCreateInstance");
    if (create == nullptr || create(&wanted, nullptr, &instance) != VK_SUCCESS) {
        return {};
    }
    const auto devicesOf =
        vulkan.function<PFN_vkEnumeratePhysicalDevices>(instance, "vkEnumeratePhysicalDevices");
    const auto propertiesOf = vulkan.function<PFN_vkGetPhysicalDeviceProperties>(
        instance, "vkGetPhysicalDeviceProperties");
    GraphicsCardList list;
    std::vector<VkPhysicalDevice> devices;
    std::uint32_t count = 0;
    devicesOf(instance, &count, nullptr);
    devices.resize(count);
    devicesOf(instance, &count, devices.data());
    devices.resize(count); // fewer than counted when a card was removed meanwhile
    for (VkPhysicalDevice device : devices) {
        VkPhysicalDeviceProperties properties{};
        propertiesOf(device, &properties);
        addCard(list, properties.deviceName);
    }
    vulkan.function<PFN_vkDestroyInstance>(instance, "vkDestroyInstance")(instance, nullptr);
    if (!list.names.empty()) {
        list.inUse = list.names.front();
    }
    return list;
}

} // namespace

int listGraphicsCards()
{
    auto list = vulkanGraphicsCards();
    if (list.names.empty()) {
        list = systemGraphicsCards();
    }
    QJsonArray names;
    for (const std::string& name : list.names) {
        names.append(QString::fromStdString(name));
    }
    const QJsonObject cards{{namesKey, names}, {inUseKey, QString::fromStdString(list.inUse)}};
    return writeLine(QJsonDocument(cards).toJson(QJsonDocument::Compact) + '\n');
}

GraphicsCardList listedGraphicsCards(const QString& program, const QStringList& arguments,
                                     const std::atomic<bool>& isWanted, int longest)
{
    constexpr int look = 100; // milliseconds
    auto process = std::make_unique<QProcess>();
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice()); // drivers are talkative
    process->start(program, arguments, QIODevice::ReadOnly);
    for (int waited = 0; isWanted && waited < longest && !process->waitForFinished(look);
         waited += look) {
        if (process->state() == QProcess::NotRunning) {
            break; // it could not be started
        }
    }
    const QByteArray listed = process->readAllStandardOutput();
    const std::string failure = process->errorString().toStdString();
    endLister(process);
    if (!isWanted) {
        return {};
    }
    const QJsonObject cards = QJsonDocument::fromJson(listed).object();
    if (!cards.contains(namesKey)) {
        hostLog()->warn("no list of graphics cards: {}", failure);
        return systemGraphicsCards();
    }
    GraphicsCardList list;
    for (const auto& name : cards.value(namesKey).toArray()) {
        list.names.push_back(name.toString().toStdString());
    }
    list.inUse = cards.value(inUseKey).toString().toStdString();
    return list;
}

GraphicsCards::GraphicsCards(RuntimeThread& runtime, Reader read)
    : m_runtime(runtime), m_read(std::move(read))
{}

GraphicsCards::~GraphicsCards()
{
    m_isWanted = false;
    wait();
}

void GraphicsCards::start()
{
    m_reading = std::thread([this] {
        GraphicsCardList list = m_read(m_isWanted);
        if (!m_isWanted) {
            return;
        }
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
    });
}

void GraphicsCards::wait()
{
    if (m_reading.joinable()) {
        m_reading.join();
    }
}

} // namespace mivohost
