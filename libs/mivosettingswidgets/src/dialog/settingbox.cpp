#include "mivosettingswidgets/settingbox.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

namespace mivo::settings {

class SettingBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(SettingBox* box)
        : owner(box), titleLabel(new QLabel), layout(new QVBoxLayout(box))
    {}

    SettingBox* owner;
    QLabel* titleLabel;
    QVBoxLayout* layout;
    QString className;
    int priorityIndex = 0;
};

SettingBox::SettingBox(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    setObjectName(QStringLiteral("settingBox"));
    m_impl = std::make_unique<Impl>(this);
    m_impl->layout->addSpacing(12);
    m_impl->layout->setContentsMargins(20, 12, 20, 12);
    m_impl->titleLabel->setFixedHeight(20);
    auto* titleRow = new QHBoxLayout;
    titleRow->addWidget(m_impl->titleLabel);
    addItemLayout(titleRow);
}

SettingBox::~SettingBox() = default;

void SettingBox::setTitle(const QString& title)
{
    m_impl->titleLabel->setText(title);
}

void SettingBox::addItemLayout(QHBoxLayout* row)
{
    if (row == nullptr) {
        return;
    }
    row->setContentsMargins(0, 0, 0, 0);
    m_impl->layout->addLayout(row, 0);
    adjustSize();
}

QString SettingBox::className() const
{
    return m_impl->className;
}

void SettingBox::setClassName(const QString& name)
{
    m_impl->className = name;
}

int SettingBox::priorityIndex() const
{
    return m_impl->priorityIndex;
}

void SettingBox::setPriorityIndex(int index)
{
    m_impl->priorityIndex = index;
}

} // namespace mivo::settings

#include "settingbox.moc"
