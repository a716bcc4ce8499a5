#include "mivosettingswidgets/undosettingbox.h"

#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/spineditbox.h>

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

namespace mivo::settings {

using mivo::widgets::SpinEditBox;

class UndoSettingBox::Impl : public SettingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(UndoSettingBox* page);

    void onUndoStepChanged(int step) { queue("setUndoStep", step); }

public slots:
    void slotUndoStepChanged();
    void setUndoStep(int step) { showValue(m_stepEdit, step); }

protected:
    void initSettings() override;

private:
    void layOut();

    QLabel* m_stepLabel = new QLabel(owner);
    SpinEditBox* m_stepEdit = new SpinEditBox(owner);
    QLabel* m_tipIcon = new QLabel(owner);
    QLabel* m_tipText = new QLabel(owner);
};

UndoSettingBox::Impl::Impl(UndoSettingBox* page) : SettingPageImpl(page, "GeneralSettings")
{
    m_stepEdit->setRange(1, 500);
    m_stepEdit->setValue(50);
    layOut();

    addTitle("UndoRedo");
    addText("UndoSteps", m_stepLabel, m_stepEdit);
    addNavigationText("GeneralSettings");
    addText("RestartTakeEffect", m_tipText);

    connect(m_stepEdit, &SpinEditBox::editingFinished, this, &Impl::slotUndoStepChanged);
    follow(&IMivoSettings::undoStepChanged, &Impl::onUndoStepChanged);
}

void UndoSettingBox::Impl::layOut()
{
    owner->setObjectName(QStringLiteral("generalSettingGroupBox"));
    setUsualWidth(m_stepEdit, 72);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_stepLabel);
    row->addSpacing(8);
    row->addWidget(m_stepEdit);
    row->addSpacing(8);
    addTip(row, m_tipIcon, m_tipText);
    row->addStretch();

    auto* column = new QVBoxLayout(owner);
    column->addLayout(row);
    column->setContentsMargins(30, 20, 0, 16);
}

void UndoSettingBox::Impl::initSettings()
{
    if (startFetching()) {
        fetch(&IMivoSettings::getUndoStep, "setUndoStep");
    }
}

void UndoSettingBox::Impl::slotUndoStepChanged()
{
    submit(&IMivoSettings::setUndoStep, static_cast<int>(m_stepEdit->value()));
}

UndoSettingBox::UndoSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

UndoSettingBox::~UndoSettingBox() = default;

} // namespace mivo::settings

#include "undosettingbox.moc"
