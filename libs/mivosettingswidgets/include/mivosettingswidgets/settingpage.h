#pragma once

#include "mivosettingswidgets/isettingbox.h"

#include <memory>

class MivoSettings;

namespace mivo::settings {

class SettingPageImplBase;

/// What all pages have in common: the operations of ISettingBox that never differ.
///
/// A page made of it derives its private `Impl` from StorePageImpl and hands it to setImpl() in its
/// constructor; it adds an operation that gives the Impl its store. A page that is destroyed while
/// it is bound drops its subscriptions first. GUI thread.
class MIVOSETTINGSWIDGETS_EXPORT SettingPageBase : public ISettingBox
{
    Q_OBJECT

public:
    ~SettingPageBase() override;

    void setTitleText(const QString& text) override;
    QString titleText() override;
    void setPriorityIndex(int index) override;
    int priorityIndex() const override;
    void translateLanguage() override;
    void switchLanguage(const QString& language) override;
    void loadLanguageFiles(const std::vector<QString>& files) const override;
    void setZRRuntime(IZRRuntime* runtime) override;

    /// Stops following the store, which stays known: edits are written still. Without a store,
    /// nothing.
    void unsetSettings() const;

protected:
    explicit SettingPageBase(QWidget* parent);

    bool event(QEvent* event) override;

    /// Once, in the constructor of the page.
    void setImpl(std::unique_ptr<SettingPageImplBase> impl);

    /// What setImpl() was given, by its own type.
    template <typename Impl>
    Impl& impl() const
    {
        return static_cast<Impl&>(*m_impl);
    }

private:
    std::unique_ptr<SettingPageImplBase> m_impl;
};

/// A page for the library's own store. Its Impl derives from SettingPageImpl.
///
/// A page says what is particular to it; otherwise setSettings() and unsetSettings() do what is
/// said here.
class MIVOSETTINGSWIDGETS_EXPORT SettingPage : public SettingPageBase
{
    Q_OBJECT

public:
    /// Binds the page to the store, follows it and shows what it holds. Neither `settings` nor the
    /// runtime may be null. A second call without unsetSettings() follows twice.
    void setSettings(MivoSettings* settings);

protected:
    using SettingPageBase::SettingPageBase;
};

} // namespace mivo::settings
