#pragma once

#include "mivohostapi/imivosettings.h"
#include "mivosettingswidgets/export.h"
#include "mivosettingswidgets/queuedtypes.h"
#include "mivosettingswidgets/storeaccess.h"
#include "mivosettingswidgets/storedcheckbox.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <vector>

class QAbstractButton;
class QComboBox;
class QLabel;
class QWidget;

namespace mivo::settings {

class ISettingBox;

/// The field that stands before all others in a page's Impl.
template <typename Store>
struct StoreField
{
    Store* sharedSettings = nullptr; ///< the host's; null until the page is bound
};

/// The part of a page's Impl that does not depend on the type of its store: the common fields, in
/// an order that is fixed, and the page's texts. GUI thread, but for what is said to be called on
/// another one.
class MIVOSETTINGSWIDGETS_EXPORT SettingPageImplBase
{
public:
    /// `navigationKey` is the section's untranslated name; `site` is the page's own file, which the
    /// runtime is told.
    SettingPageImplBase(ISettingBox* page, const char* navigationKey, const CallSite& site);
    virtual ~SettingPageImplBase();
    Q_DISABLE_COPY_MOVE(SettingPageImplBase)

    IZRRuntime* zrRuntime = nullptr; ///< the host's; null until the page is given it
    ISettingBox* owner;              ///< the page
    QString titleText;               ///< as ISettingBox::titleText()
    int priorityIndex = -1;          ///< as ISettingBox::priorityIndex()

    /// Disconnects all that is followed; without a store, nothing. The store stays known.
    virtual void unsetSettings() = 0;

    /// Leaves no connection behind even where the runtime refuses or has stopped, and lets a
    /// forwarding method that still runs end: for the end of the page.
    void releaseStore();

    /// Sets every registered text again, in the order of registration.
    void translateLanguage();

    /// False, and `warning` under the function of `site`, without a runtime: for pages that check.
    bool hasRuntime(const char* warning, const CallSite& site = {}) const;

    /// Registers a text: `set` gets the translation of `key` now and at each translateLanguage().
    /// An `initial` text takes the place of the first translation.
    void addText(const char* key, std::function<void(const QString&)> set,
                 const char* initial = nullptr);

    /// @{
    /// The same for a label; the control next to it becomes its buddy and is named after it.
    void addText(const char* key, QLabel* label, QWidget* buddy = nullptr,
                 const char* initial = nullptr);
    void addText(const char* key, QAbstractButton* button, const char* initial = nullptr);
    /// @}

    /// The same for the items of a combo box, from the first on; those that are missing are added.
    void addItemTexts(QComboBox* combo, const std::vector<const char*>& keys);

    /// Registers the title of the page's box.
    void addTitle(const char* key, const char* initial = nullptr);

    /// Registers the place among the texts where the section's name is translated and announced.
    void addNavigationText(const char* key);

    /// addText(), for a part of a page that has texts of its own.
    auto textRegistrar()
    {
        return [this](const char* key, std::function<void(const QString&)> set) {
            addText(key, std::move(set));
        };
    }

protected:
    /// @{
    /// Connects all that is followed, and disconnects it; on the runtime thread.
    void connectFollowed();
    void disconnectFollowed();
    /// @}

    /// A function of the page's own file.
    CallSite siteOf(const char* function) const { return {function, m_site.file, m_site.line}; }

    /// False, and the null-store warning under the function of `site`, for a null pointer.
    static bool isStore(const void* settings, const CallSite& site = {});

    /// Has `work` done on the runtime thread, for what is more than one call of the store.
    template <typename Work>
    auto inRuntime(Work work, const CallSite& site = {})
    {
        return callInRuntime(zrRuntime, site.file, site.line, site.function, std::move(work));
    }

    /// Has `connectTo` called on the runtime thread when the page is bound, and what it connected
    /// disconnected later: for the signals of a service, which are connected to self().
    void follow(std::function<sigslot::connection()> connectTo)
    {
        m_followed.push_back(std::move(connectTo));
    }

    /// What a signal is connected to, so that the page does not end while it is called.
    template <typename Impl>
    std::weak_ptr<Impl> self() const
    {
        return std::static_pointer_cast<Impl>(m_self);
    }

    /// self() for a widget of the page that the signal calls in place of its Impl.
    template <typename Widget>
    std::weak_ptr<Widget> part(Widget* widget) const
    {
        return std::shared_ptr<Widget>(m_self, widget);
    }

private:
    struct Text
    {
        QString key;
        std::function<void(const QString&)> set; // null: the section's name
    };

    std::shared_ptr<SettingPageImplBase> m_self{this, [](SettingPageImplBase*) {}}; // owns nothing
    std::vector<std::function<sigslot::connection()>> m_followed;
    std::vector<sigslot::scoped_connection>
        m_connections; // runtime thread, while the GUI thread waits
    std::vector<Text> m_texts;
    CallSite m_site;
    bool m_unset = false; // since it was bound; what a refusing runtime left connected goes later
};

/// Base of the Impl of a page for a store of any type: the verbs in which a page is written.
///
/// What is said of IMivoSettings holds for every store: its operations are called, and its signals
/// connected and emitted, on the runtime thread, and it outlives the page. GUI thread, but for what
/// is said to run on the runtime thread.
template <typename Store>
class StorePageImpl : public QObject, public StoreField<Store>, public SettingPageImplBase
{
public:
    using StoreField<Store>::sharedSettings;

    /// As SettingPageImplBase.
    StorePageImpl(ISettingBox* page, const char* navigationKey, const CallSite& site = {})
        : SettingPageImplBase(page, navigationKey, site)
    {}

    /// Binds to the store: connects all that is followed, then calls initSettings(). Neither the
    /// store nor the runtime may be null; a page that checks them overrides this.
    virtual void setSettings(Store* settings)
    {
        sharedSettings = settings;
        connectFollowed();
        initSettings();
    }

    /// As SettingPageImplBase says; virtual for pages that forget the store.
    void unsetSettings() override
    {
        if (sharedSettings != nullptr) {
            disconnectFollowed();
        }
    }

    /// False, and the null-store warning under the function of `site`, without a store.
    bool hasStore(const CallSite& site = {}) const { return isStore(sharedSettings, site); }

protected:
    /// Reads every value with fetch(); runs at the end of setSettings().
    virtual void initSettings() = 0;

    /// To be called first in initSettings(): hasStore(), and asks the runtime whether the values
    /// that are fetched from here on are shown.
    bool startFetching(const CallSite& site = {})
    {
        if (!hasStore(site)) {
            return false;
        }
        m_showFetched = zrRuntime->isUiSyncEnabled();
        return true;
    }

    /// Reads one value from the store, which must be there.
    template <typename Getter>
    auto read(Getter getter, const CallSite& site = {})
    {
        return callInRuntime(zrRuntime, site.file, site.line, site.function, getter,
                             sharedSettings);
    }

    /// Reads one value and queues it to the slot of that name. While the runtime's UI is not
    /// synchronised the value is read and dropped; kept on purpose, so that the runtime sees the
    /// same calls.
    template <typename Getter>
    void fetch(Getter getter, const char* slot, const CallSite& site = {})
    {
        const auto value = read(getter, site);
        if (m_showFetched) {
            queue(slot, value);
        }
    }

    /// Whether initSettings() is to show what it read by read(); as startFetching() found it.
    bool showsFetched() const { return m_showFetched; }

    /// Writes a value to the store; without one, the null-store warning. False where the runtime
    /// refused it.
    template <typename Setter, typename Value>
    bool submit(Setter setter, const Value& value, const CallSite& site = {})
    {
        const auto write = [this, setter, &value] {
            std::invoke(setter, sharedSettings, value);
            return true;
        };
        return !hasStore(site) || inRuntime(write, site);
    }

    using SettingPageImplBase::follow;

    /// Has `forward` called on the runtime thread for every change that the store announces while
    /// the page is bound. `forward` may only queue().
    template <typename Impl, typename Owner, typename Signal, typename... Value>
    void follow(Signal Owner::*signal, void (Impl::*forward)(Value...))
    {
        follow([this, signal, forward] {
            return (sharedSettings->*signal).connect(forward, this->template self<Impl>());
        });
    }

    /// Has a check box show what the store announces, and `chosen` called for what a person
    /// chooses.
    template <typename Impl, typename Owner>
    void follow(sigslot::signal<const bool> Owner::*signal, StoredCheckBox* box,
                void (Impl::*chosen)(int state))
    {
        connect(box, &QCheckBox::stateChanged, static_cast<Impl*>(this), chosen);
        follow([this, signal, box] {
            return (sharedSettings->*signal).connect(&StoredCheckBox::queueChecked, part(box));
        });
    }

    /// Calls the slot of that name with `values` from the event loop. Any thread.
    template <typename... T>
    void queue(const char* slot, const T&... values)
    {
        queueCall(this, slot, values...);
    }

private:
    bool m_showFetched = false;
};

/// Base of the Impl of a page for the library's own store.
class SettingPageImpl : public StorePageImpl<MivoSettings>
{
public:
    using StorePageImpl::StorePageImpl;
};

/// The same for a page that warns, and does nothing, where it is bound to no store or unset without
/// one.
class CheckingPageImpl : public SettingPageImpl
{
public:
    using SettingPageImpl::SettingPageImpl;

    void setSettings(MivoSettings* settings) override
    {
        if (isStore(settings, siteOf("setSettings"))) {
            SettingPageImpl::setSettings(settings);
        }
    }
    void unsetSettings() override
    {
        if (hasStore(siteOf("unsetSettings"))) {
            SettingPageImpl::unsetSettings();
        }
    }
};

} // namespace mivo::settings
