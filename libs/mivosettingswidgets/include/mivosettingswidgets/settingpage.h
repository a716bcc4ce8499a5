#pragma once

#include "mivosettingswidgets/isettingbox.h"

#include <memory>

class MivoSettings;

namespace mivo::settings {

class SettingPageImpl;

/// What all pages have in common: the operations of ISettingBox that never differ.
///
/// A page made of it derives its private `Impl` from SettingPageImpl and hands it to setImpl() in
/// its constructor. A page that is destroyed while it is bound drops its subscriptions first.
///
/// A page says what is particular to it; otherwise setSettings() and unsetSettings() do what is
/// said here.
class MIVOSETTINGSWIDGETS_EXPORT SettingPage : public ISettingBox
{
    Q_OBJECT

public:
    ~SettingPage() override;

    void setTitleText(const QString& text) override;
    QString titleText() override;
    void setPriorityIndex(int index) override;
    int priorityIndex() const override;
    void translateLanguage() override;
    void switchLanguage(const QString& language) override;
    void loadLanguageFiles(const std::vector<QString>& files) const override;
    void setZRRuntime(IZRRuntime* runtime) override;

    /// Binds the page to the store, follows it and shows what it holds. Neither `settings` nor the
    /// runtime may be null. A second call without unsetSettings() follows twice.
    void setSettings(MivoSettings* settings);

    /// Stops following the store, which stays known: edits are written still. Without a store,
    /// nothing.
    void unsetSettings() const;

protected:
    explicit SettingPage(QWidget* parent);

    void setImpl(std::unique_ptr<SettingPageImpl> impl);

    template <typename Impl>
    Impl& impl() const
    {
        return static_cast<Impl&>(*m_impl);
    }

private:
    std::unique_ptr<SettingPageImpl> m_impl;
};

} // namespace mivo::settings
