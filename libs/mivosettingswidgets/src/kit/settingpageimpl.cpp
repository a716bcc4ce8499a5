#include "mivosettingswidgets/settingpageimpl.h"

#include "mivosettingswidgets/isettingbox.h"
#include "mivosettingswidgets/texts.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

#include <thread>
#include <utility>

namespace mivo::settings {

SettingPageImplBase::SettingPageImplBase(ISettingBox* page, const char* navigationKey,
                                         const CallSite& site)
    : owner(page), titleText(QString::fromLatin1(navigationKey)), m_site(site)
{}

SettingPageImplBase::~SettingPageImplBase() = default;

void SettingPageImplBase::connectFollowed()
{
    callInRuntime(zrRuntime, m_site.file, m_site.line, "setSettings", [this] {
        if (std::exchange(m_unset, false)) {
            m_connections.clear();
        }
        m_connections.reserve(m_connections.size() + m_followed.size());
        for (const auto& connectTo : m_followed) {
            m_connections.emplace_back(connectTo());
        }
    });
}

void SettingPageImplBase::disconnectFollowed()
{
    m_unset = true;
    callInRuntime(zrRuntime, m_site.file, m_site.line, "unsetSettings",
                  [this] { m_connections.clear(); });
}

void SettingPageImplBase::releaseStore()
{
    if (!m_connections.empty()) {
        try {
            disconnectFollowed();
        } catch (const std::future_error&) { // stopped with the task still queued
        }
        m_connections.clear();
    }
    const std::weak_ptr<SettingPageImplBase> called = std::exchange(m_self, nullptr);
    while (!called.expired()) {
        std::this_thread::yield();
    }
}

void SettingPageImplBase::translateLanguage()
{
    for (const Text& entry : m_texts) {
        const QString translated = text(entry.key);
        if (entry.set) {
            entry.set(translated);
        } else {
            emit owner->sigTitleTextChanged(translated);
            titleText = translated;
        }
    }
}

bool SettingPageImplBase::isStore(const void* settings, const CallSite& site)
{
    if (settings == nullptr) {
        warn(site, "sharedSettings is nullptr!");
    }
    return settings != nullptr;
}

bool SettingPageImplBase::hasRuntime(const char* warning, const CallSite& site) const
{
    if (zrRuntime == nullptr) {
        warn(site, "{}", warning);
    }
    return zrRuntime != nullptr;
}

void SettingPageImplBase::addText(const char* key, std::function<void(const QString&)> set,
                                  const char* initial)
{
    const auto name = QString::fromLatin1(key);
    set(initial != nullptr ? QString::fromLatin1(initial) : text(name));
    m_texts.push_back({name, std::move(set)});
}

void SettingPageImplBase::addText(const char* key, QLabel* label, QWidget* buddy,
                                  const char* initial)
{
    label->setBuddy(buddy);
    const auto set = [label, buddy](const QString& translated) {
        label->setText(translated);
        if (buddy != nullptr) {
            buddy->setAccessibleName(translated);
        }
    };
    addText(key, set, initial);
}

void SettingPageImplBase::addText(const char* key, QAbstractButton* button, const char* initial)
{
    addText(
        key, [button](const QString& translated) { button->setText(translated); }, initial);
}

void SettingPageImplBase::addItemTexts(QComboBox* combo, const std::vector<const char*>& keys)
{
    for (int item = 0; item < static_cast<int>(keys.size()); ++item) {
        const char* key = keys[static_cast<std::size_t>(item)];
        addText(key, [combo, item](const QString& translated) {
            if (item == combo->count()) {
                combo->addItem(translated);
            } else {
                combo->setItemText(item, translated);
            }
        });
    }
}

void SettingPageImplBase::addTitle(const char* key, const char* initial)
{
    addText(
        key, [this](const QString& title) { owner->setTitle(title); }, initial);
}

void SettingPageImplBase::addNavigationText(const char* key)
{
    // Not before translateLanguage(): until then the dialog groups the page by the key.
    m_texts.push_back({QString::fromLatin1(key), nullptr});
}

} // namespace mivo::settings
