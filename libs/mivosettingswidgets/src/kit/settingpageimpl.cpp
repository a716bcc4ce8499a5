#include "mivosettingswidgets/settingpageimpl.h"

#include "mivosettingswidgets/isettingbox.h"
#include "mivosettingswidgets/texts.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>

#include <thread>
#include <utility>

namespace mivo::settings {

SettingPageImpl::SettingPageImpl(ISettingBox* page, const QString& navigationKey)
    : owner(page), titleText(navigationKey)
{}

SettingPageImpl::~SettingPageImpl() = default;

void SettingPageImpl::setSettings(MivoSettings* settings, const CallSite& site)
{
    sharedSettings = settings;
    callInRuntime(zrRuntime, site.file, site.line, site.function, [this] {
        for (const auto& connectTo : m_followed) {
            m_connections.emplace_back(connectTo(*sharedSettings));
        }
    });
    initSettings();
}

void SettingPageImpl::unsetSettings(const CallSite& site)
{
    if (sharedSettings == nullptr) {
        return;
    }
    callInRuntime(zrRuntime, site.file, site.line, site.function,
                  [this] { m_connections.clear(); });
}

void SettingPageImpl::releaseStore()
{
    if (!m_connections.empty()) {
        try {
            unsetSettings();
        } catch (const std::future_error&) { // stopped with the task still queued
        }
        m_connections.clear();
    }
    const std::weak_ptr<SettingPageImpl> called = std::exchange(m_self, nullptr);
    while (!called.expired()) {
        std::this_thread::yield();
    }
}

void SettingPageImpl::translateLanguage()
{
    for (Text& entry : m_texts) {
        QString translated = settings::text(entry.key);
        if (!entry.set) {
            emit owner->sigTitleTextChanged(translated);
            titleText = translated;
        } else if (entry.shown != translated) {
            entry.shown = std::move(translated);
            entry.set(entry.shown);
        }
    }
}

bool SettingPageImpl::isStore(const MivoSettings* settings, const CallSite& site)
{
    if (settings == nullptr) {
        warn(site, "sharedSettings is nullptr!");
    }
    return settings != nullptr;
}

bool SettingPageImpl::hasRuntime(const CallSite& site, const char* warning) const
{
    if (zrRuntime == nullptr) {
        warn(site, "{}", warning);
    }
    return zrRuntime != nullptr;
}

bool SettingPageImpl::startFetching(const CallSite& site)
{
    if (!hasStore(site)) {
        return false;
    }
    m_showFetched = zrRuntime->isUiSyncEnabled();
    return true;
}

void SettingPageImpl::text(const QString& key, std::function<void(const QString&)> set,
                           const QString& initial)
{
    m_texts.push_back({key, std::move(set), initial.isEmpty() ? settings::text(key) : initial});
    m_texts.back().set(m_texts.back().shown);
}

void SettingPageImpl::text(const QString& key, QLabel* label, QWidget* buddy,
                           const QString& initial)
{
    label->setBuddy(buddy);
    const auto set = [label, buddy](const QString& translated) {
        label->setText(translated);
        if (buddy != nullptr) {
            buddy->setAccessibleName(translated);
        }
    };
    text(key, set, initial);
}

void SettingPageImpl::text(const QString& key, QAbstractButton* button, const QString& initial)
{
    text(
        key, [button](const QString& translated) { button->setText(translated); }, initial);
}

void SettingPageImpl::itemTexts(QComboBox* combo, const std::vector<const char*>& keys)
{
    for (int item = 0; item < static_cast<int>(keys.size()); ++item) {
        if (item == combo->count()) {
            combo->addItem(QString());
        }
        text(QString::fromLatin1(keys[static_cast<std::size_t>(item)]),
             [combo, item](const QString& translated) { combo->setItemText(item, translated); });
    }
}

void SettingPageImpl::navigationText(const QString& key)
{
    // Not before translateLanguage(): until then the dialog groups the page by the key.
    m_texts.push_back({key, nullptr, QString()});
}

} // namespace mivo::settings
