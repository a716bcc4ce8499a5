// A page of a host's own, for a setting in a store of its own. ownpage [LANGUAGE], "en" or "zh_cn".

#include <mivohostkit/runtimethread.h>
#include <mivosettingswidgets/controls.h>
#include <mivosettingswidgets/settingpage.h>
#include <mivosettingswidgets/settingpageimpl.h>
#include <mivosettingswidgets/settingsdialog.h>
#include <mivostyle/style.h>
#include <mivowidgets/spineditbox.h>

#include <QtWidgets/QApplication>

/// How many frames a preview shows in a second. Runtime thread.
class PreviewStore
{
public:
    int getRate() const { return m_rate; }
    void setRate(int rate) { rateChanged(m_rate = qBound(1, rate, 60)); } // corrected or not
    sigslot::signal<const int> rateChanged;

private:
    int m_rate = 25;
};

class PreviewPage : public mivo::settings::SettingPageBase
{
public:
    PreviewPage();
    void setStore(PreviewStore* store);
    class Impl;
};

class PreviewPage::Impl : public mivo::settings::StorePageImpl<PreviewStore>
{
    Q_OBJECT

public:
    explicit Impl(PreviewPage* page) : StorePageImpl(page, "GeneralSettings")
    {
        m_rate->setRange(1, 999);
        auto* column = new QVBoxLayout(page);
        column->addLayout(mivo::settings::rowOf({m_label, m_rate}));

        addTitle("Preview");
        addText("Frames per second", m_label, m_rate); // the label's control is named after it
        addNavigationText("GeneralSettings");          // the section that the page stands in

        connect(m_rate, &QDoubleSpinBox::editingFinished, this, &Impl::slotRateChanged);
        follow(&PreviewStore::rateChanged, &Impl::onRateChanged);
    }

    void onRateChanged(int rate) { queue("setRate", rate); } // runtime thread

public Q_SLOTS:
    void setRate(int rate) { mivo::settings::showValue(m_rate, rate); } // store to control
    void slotRateChanged()                                              // control to store
    {
        submit(&PreviewStore::setRate, static_cast<int>(m_rate->value()));
    }

protected:
    void initSettings() override // when the page is bound
    {
        if (startFetching()) {
            fetch(&PreviewStore::getRate, "setRate");
        }
    }

private:
    QLabel* m_label = new QLabel(owner);
    mivo::widgets::SpinEditBox* m_rate = new mivo::widgets::SpinEditBox(owner);
};

PreviewPage::PreviewPage() : SettingPageBase(nullptr)
{
    setImpl(std::make_unique<Impl>(this));
}

void PreviewPage::setStore(PreviewStore* store)
{
    impl<Impl>().setSettings(store);
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    mivo::style::apply(mivo::style::Look::dark);
    mivohost::RuntimeThread runtime;
    PreviewStore store;
    mivo::settings::SettingsDialog dialog;
    dialog.loadLanguageFiles(mivo::style::languageFiles());
    dialog.loadLanguageFiles({application.applicationDirPath() + "/ownpage_zh_cn.qm"});
    auto* page = new PreviewPage;
    page->setZRRuntime(&runtime);
    page->setStore(&store);
    dialog.insertSettingBox(page);
    dialog.switchLanguage(application.arguments().value(1, "en"));
    page->translateLanguage();
    dialog.show();
    return QApplication::exec();
}

#include "main.moc"
