#include "mivosettingswidgets/settingsdialog.h"

#include "dialog/settingssearch.h"
#include "mivosettingswidgets/isettingbox.h"
#include "mivosettingswidgets/settingwidget.h"
#include "mivosettingswidgets/storeaccess.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/pushbutton.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QRegularExpression>
#include <QtGui/QPainter>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStyleOption>

namespace mivo::settings {

using mivo::widgets::PushButton;

namespace {

QString withoutWhitespace(QString text)
{
    static const QRegularExpression whitespace(QStringLiteral("\\s"),
                                               QRegularExpression::UseUnicodePropertiesOption);
    return text.remove(whitespace);
}

/// A section of the dialog. While it is hidden, its size hint is not computed from its pages, since
/// that would polish every control; the dialog has a fixed size anyway.
class Section : public SettingWidget
{
public:
    using SettingWidget::SettingWidget;

    QSize sizeHint() const override { return minimumSizeHint(); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        return event->type() == QEvent::LayoutRequest && !isVisible()
                   ? false
                   : SettingWidget::eventFilter(object, event);
    }

protected:
    void showEvent(QShowEvent* event) override
    {
        SettingWidget::showEvent(event);
        QEvent measure(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(this, &measure);
    }
};

} // namespace

class SettingsDialog::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(SettingsDialog* dialog);

    PushButton* makeButton(const QString& objectName, QWidget* parent, int id);
    int indexOf(const QString& objectName) const;

    SettingsDialog* owner;
    QSize buttonSize = QSize(128, 32);
    QVBoxLayout* navigation = nullptr;
    QButtonGroup* buttons = nullptr;
    PushButton* firstButton = nullptr;
    QStackedWidget* sections = nullptr;
    std::unique_ptr<SettingsSearch> search; // null without a search

public slots:
    void buttonGroupClickedSlot(int id);
    void updateSettingsButtonTextSlot(const QString& titleText);
};

SettingsDialog::Impl::Impl(SettingsDialog* dialog) : owner(dialog)
{
    QWidget* area = owner->dialogWidget();
    auto* panel = new QWidget(area);
    panel->setFixedWidth(buttonSize.width());

    buttons = new QButtonGroup(area);
    firstButton = makeButton(QStringLiteral("GeneralSettings"), panel, 0);
    firstButton->setChecked(true);
    buttons->setExclusive(true);

    navigation = new QVBoxLayout(panel);
    navigation->setContentsMargins(0, 20, 0, 0);
    navigation->addWidget(firstButton);
    navigation->addStretch();
    navigation->setSpacing(4);

    sections = new QStackedWidget(area);
    sections->insertWidget(0, new Section);

    auto* separator = new QWidget(area);
    separator->setProperty("style", QStringLiteral("BG1"));
    separator->setFixedWidth(1);

    auto* row = new QHBoxLayout(area);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(panel);
    row->addWidget(separator);
    row->addWidget(sections);

    connect(buttons, &QButtonGroup::idClicked, this, &Impl::buttonGroupClickedSlot);
}

PushButton* SettingsDialog::Impl::makeButton(const QString& objectName, QWidget* parent, int id)
{
    auto* button = new PushButton(parent);
    button->setFixedSize(buttonSize);
    button->setObjectName(objectName);
    button->setProperty("style", QStringLiteral("settingBtn"));
    button->setCheckable(true);
    buttons->addButton(button, id);
    return button;
}

/// The section whose button has that name, or -1.
int SettingsDialog::Impl::indexOf(const QString& objectName) const
{
    const auto all = buttons->buttons();
    for (int i = 0; i < all.size(); ++i) {
        if (all[i]->objectName() == objectName) {
            return i;
        }
    }
    return -1;
}

void SettingsDialog::Impl::buttonGroupClickedSlot(int id)
{
    if (id < 0 || id >= sections->count()) {
        warn("buttonGroupClickedSlot", "id({}) < 0 || id({}) >= stackedWidget count({})!", id, id,
             sections->count());
        return;
    }
    sections->setCurrentIndex(id);
}

void SettingsDialog::Impl::updateSettingsButtonTextSlot(const QString& titleText)
{
    auto* section = qobject_cast<QWidget*>(sender());
    if (sender() == nullptr) {
        warn("updateSettingsButtonTextSlot", "nullptr == obj!");
        return;
    }
    const int index = sections->indexOf(section);
    QLayoutItem* item = navigation->itemAt(index);
    if (auto* button = item ? qobject_cast<PushButton*>(item->widget()) : nullptr) {
        button->setText(titleText);
        section->setAccessibleName(titleText);
        return;
    }
    warn("updateSettingsButtonTextSlot", "settingsBtn is nullptr!,count:{}, find index :{}",
         navigation->count(), index);
}

SettingsDialog::SettingsDialog(QWidget* parent) : Dialog(parent)
{
    setFixedSize(1080, 800);
    m_impl = std::make_unique<Impl>(this);
    translateLanguage();
}

SettingsDialog::~SettingsDialog() = default;

void SettingsDialog::insertSettingBox(ISettingBox* box)
{
    const QString title = box->titleText();
    const QString name = withoutWhitespace(title);
    const int index = m_impl->indexOf(name);
    if (index != -1) {
        auto* section = qobject_cast<SettingWidget*>(m_impl->sections->widget(index));
        if (section == nullptr) {
            warn("addSettingsBox", "The {}nd widget in the stackedWidget is nullputr!", index);
            return;
        }
        section->insertSettingsBox(box, box->priorityIndex());
        return;
    }

    const int last = m_impl->navigation->count() - 1; // the stretch stays behind the buttons
    PushButton* button = m_impl->makeButton(name, dialogWidget(), last);
    button->setText(title);
    m_impl->navigation->insertWidget(last, button);
    setTabOrder(m_impl->buttons->button(last - 1), button);

    auto* section = new Section(dialogWidget());
    m_impl->sections->insertWidget(last, section);
    section->insertSettingsBox(box, box->priorityIndex());
    // Only added sections name their button; the first one is named by translateLanguage().
    connect(section, &SettingWidget::sigTitleTextChanged, m_impl.get(),
            &Impl::updateSettingsButtonTextSlot);
}

void SettingsDialog::setSettingsstyleSheet(const QString& styleSheet)
{
    setStyleSheet(styleSheet);
}

void SettingsDialog::loadLanguageFiles(const std::vector<QString>& files) const
{
    loadIntoTranslator(files);
}

void SettingsDialog::switchLanguage(const QString& language)
{
    SettingWdigetTranslateManager::instance().translator().switchLanguage(language);
    translateLanguage();
}

void SettingsDialog::translateLanguage()
{
    setTitle(text(QStringLiteral("SystemSettings")));
    const QString general = text(QStringLiteral("GeneralSettings"));
    m_impl->firstButton->setText(general);
    m_impl->sections->widget(0)->setAccessibleName(general);
    if (m_impl->search) {
        m_impl->search->translateLanguage();
    }
}

void SettingsDialog::enableSearch()
{
    if (!m_impl->search) {
        m_impl->search = std::make_unique<SettingsSearch>(this, m_impl->navigation, m_impl->buttons,
                                                          m_impl->sections);
    }
}

void SettingsDialog::paintEvent(QPaintEvent* /*event*/)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

} // namespace mivo::settings

#include "settingsdialog.moc"
