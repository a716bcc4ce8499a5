#pragma once

#include "mivohostapi/imivosettings.h"
#include "mivohostapi/shortcuttypes.h"
#include "mivosettingswidgets/storeaccess.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QAbstractButton;
class QComboBox;
class QLabel;
class QWidget;

namespace mivo::settings {

class ISettingBox;

/// The type text under which a value travels through a call queued by slot name.
template <typename T>
constexpr const char* queuedTypeText = nullptr;
template <>
inline constexpr const char* queuedTypeText<int> = "const int";
template <>
inline constexpr const char* queuedTypeText<bool> = "const bool";
template <>
inline constexpr const char* queuedTypeText<double> = "const double";
template <>
inline constexpr const char* queuedTypeText<std::string> = "std::string";
template <>
inline constexpr const char* queuedTypeText<mivo::DynamicRangeConfig> = "DynamicRangeConfig";
template <>
inline constexpr const char* queuedTypeText<QString> = "const QString&";
template <>
inline constexpr const char* queuedTypeText<QColor> = "const QColor";
template <>
inline constexpr const char* queuedTypeText<std::vector<std::string>> = "std::vector<std::string>";
template <>
inline constexpr const char* queuedTypeText<STResourceSettingsInfo> =
    "const STResourceSettingsInfo&";
template <>
inline constexpr const char* queuedTypeText<STMivoAutoStartSettings> =
    "const STMivoAutoStartSettings&";
template <>
inline constexpr const char* queuedTypeText<STMivoTimedShutdownSettings> =
    "const STMivoTimedShutdownSettings&";
template <>
inline constexpr const char* queuedTypeText<STMivoTimedAutomaticRestartSettings> =
    "const STMivoTimedAutomaticRestartSettings&";
template <>
inline constexpr const char* queuedTypeText<STFileInfoSettings> = "const STFileInfoSettings&";

/// Base of every page's Impl: the common fields, and the verbs in which a page is written.
///
/// GUI thread, but for what is said to run on the runtime thread.
class SettingPageImpl : public QObject
{
    Q_OBJECT

public:
    /// `navigationKey` is the section's untranslated name.
    SettingPageImpl(ISettingBox* page, const QString& navigationKey);
    ~SettingPageImpl() override;

    MivoSettings* sharedSettings = nullptr;
    IZRRuntime* zrRuntime = nullptr;
    ISettingBox* owner;
    QString titleText;
    int priorityIndex = -1;

    /// Binds to the store: connects all that is followed, then calls initSettings().
    void setSettings(MivoSettings* settings, const CallSite& site = "setSettings");

    /// Disconnects all that is followed; without a store, nothing. The store stays known.
    void unsetSettings(const CallSite& site = "unsetSettings");

    /// Like unsetSettings(), but leaves no connection behind even where the runtime refuses or has
    /// stopped, and lets a forwarding method that still runs end: for the end of the page.
    void releaseStore();

    /// Sets every registered text again, in the order of registration.
    void translateLanguage();

    /// False, and the null-store warning under the function of `site`, without a store. Also for
    /// the argument of a page's setSettings() that may be null.
    bool hasStore(const CallSite& site) const { return isStore(sharedSettings, site); }
    static bool isStore(const MivoSettings* settings, const CallSite& site);

    /// False, and `warning` under the function of `site`, without a runtime: for pages that check.
    bool hasRuntime(const CallSite& site, const char* warning) const;

    /// Registers a text: `set` gets the translation of `key` now, and again whenever it differs
    /// after a change of language. An `initial` text takes the place of the first translation.
    void text(const QString& key, std::function<void(const QString&)> set,
              const QString& initial = {});

    /// The same for a label; the control next to it becomes its buddy and is named after it.
    void text(const QString& key, QLabel* label, QWidget* buddy = nullptr,
              const QString& initial = {});
    void text(const QString& key, QAbstractButton* button, const QString& initial = {});

    /// The same for the items of a combo box, from the first on; those that are missing are added.
    void itemTexts(QComboBox* combo, const std::vector<const char*>& keys);

protected:
    /// Reads every value with fetch(); runs at the end of setSettings().
    virtual void initSettings() = 0;

    /// To be called first in initSettings(): hasStore(), and asks the runtime whether the values
    /// that are fetched from here on are shown.
    bool startFetching(const CallSite& site = "initSettings");

    /// Reads one value from the store, which must be there.
    template <typename Getter>
    auto read(Getter getter, const CallSite& site = "initSettings")
    {
        return callInRuntime(zrRuntime, site.file, site.line, site.function, getter,
                             sharedSettings);
    }

    /// Reads one value and queues it to the slot of that name. While the runtime's UI is not
    /// synchronised the value is read and dropped; kept on purpose, so that the runtime sees the
    /// same calls.
    template <typename Getter>
    void fetch(Getter getter, const char* slot, const CallSite& site = "initSettings")
    {
        const auto value = read(getter, site);
        if (m_showFetched) {
            queue(slot, value);
        }
    }

    /// Whether initSettings() is to show what it read by read(); as startFetching() found it.
    bool showsFetched() const { return m_showFetched; }

    /// Writes a value, or several at once, to the store; without one, the null-store warning.
    template <typename Setter, typename... Values>
    void submit(const CallSite& site, Setter setter, const Values&... values)
    {
        if (hasStore(site)) {
            callInRuntime(zrRuntime, site.file, site.line, site.function, setter, sharedSettings,
                          values...);
        }
    }

    /// The same for the state of a check box.
    template <typename Setter>
    void submitCheck(const CallSite& site, Setter setter, int state)
    {
        submit(site, setter, state == Qt::Checked);
    }

    /// Has `work` done on the runtime thread, for what is more than one call of the store.
    template <typename Work>
    auto inRuntime(const CallSite& site, Work work)
    {
        return callInRuntime(zrRuntime, site.file, site.line, site.function, std::move(work));
    }

    /// Has `forward` called on the runtime thread for every change that the store announces while
    /// the page is bound. `forward` may only queue().
    template <typename Impl, typename Signal, typename... Value>
    void follow(Signal IMivoSettings::*signal, void (Impl::*forward)(Value...))
    {
        m_followed.push_back([this, signal, forward](MivoSettings& store) {
            return (store.*signal).connect(forward, self<Impl>());
        });
    }

    /// The same for the signals of a service, which `connectTo` connects to self() on the runtime
    /// thread.
    void follow(std::function<sigslot::connection()> connectTo)
    {
        m_followed.push_back(
            [connectTo = std::move(connectTo)](MivoSettings&) { return connectTo(); });
    }

    /// What a signal is connected to, so that the page does not end while it is called.
    template <typename Impl>
    std::weak_ptr<Impl> self() const
    {
        return std::static_pointer_cast<Impl>(m_self);
    }

    /// Calls the slot of that name with `values` from the event loop. Any thread.
    template <typename... T>
    void queue(const char* slot, const T&... values)
    {
        (registerQueued<T>(), ...);
        QMetaObject::invokeMethod(this, slot, Qt::QueuedConnection,
                                  QGenericArgument(queuedTypeText<T>, &values)...);
    }

    /// The same for a slot of an object that lives as long as this one, with a type text that is
    /// not the usual one.
    template <typename T>
    static void queueTo(QObject* target, const char* slot, const T& value, const char* typeText)
    {
        registerQueued<T>();
        QMetaObject::invokeMethod(target, slot, Qt::QueuedConnection,
                                  QGenericArgument(typeText, &value));
    }

    /// The first form, for a part of a page that has texts of its own.
    auto textRegistrar()
    {
        return [this](const char* key, std::function<void(const QString&)> set) {
            text(QString::fromLatin1(key), std::move(set));
        };
    }

    /// Registers the place among the texts where the section's name is translated and announced.
    void navigationText(const QString& key);

private:
    /// Before the first journey of a type.
    template <typename T>
    static void registerQueued()
    {
        static_assert(queuedTypeText<T> != nullptr, "a type that is queued needs its text");
        qMetaTypeId<T>();
    }

    struct Text
    {
        QString key;
        std::function<void(const QString&)> set; // null: the section's name
        QString shown;
    };

    std::shared_ptr<SettingPageImpl> m_self{this, [](SettingPageImpl*) {}}; // owns nothing
    std::vector<std::function<sigslot::connection(MivoSettings&)>> m_followed;
    std::vector<sigslot::scoped_connection>
        m_connections; // runtime thread, while the GUI thread waits
    std::vector<Text> m_texts;
    bool m_showFetched = false;
};

} // namespace mivo::settings
