#include "mivosettingswidgets/stagesettingbox.h"

#include "kit/standardmetatypes.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/colordialog.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>
#include <mivowidgets/spineditbox.h>

#include <QtCore/QRegularExpression>
#include <QtGui/QRegExpValidator>
#include <QtWidgets/QButtonGroup>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <array>
#include <functional>
#include <utility>

namespace mivo::settings {

using mivo::widgets::ColorDialog;
using mivo::widgets::EditBox;
using mivo::widgets::PushButton;
using mivo::widgets::SpinEditBox;

namespace {

using Presets = std::array<const char*, 10>;

constexpr Presets canvasPresets{"#000000", "#1E2C36", "#05121B", "#003248", "#004F23",
                                "#320048", "#5C5821", "#D1C0A5", "#959595", "#FFFFFF"};
/// Also the palette that the border of a checked swatch is taken from.
constexpr Presets outputPresets{"#FFFFFF", "#049BA1", "#C91617", "#C67326", "#BCB62B",
                                "#1FB449", "#7F33DF", "#458CEE", "#FF6523", "#0030FF"};
constexpr int checkedBorder = 7; // index into outputPresets

enum Channel { red, green, blue };
constexpr std::array channelNames{"R", "G", "B"};
constexpr int swatchSize = 20;

/// The colour that a person typed: three or six hexadecimal digits, with or without "#".
QColor typedColor(const QString& text)
{
    static const QRegularExpression digits(
        QStringLiteral("\\A#?([0-9A-Fa-f]{3}|[0-9A-Fa-f]{6})\\z"));
    const auto match = digits.match(text);
    return match.hasMatch() ? QColor('#' + match.captured(1)) : QColor();
}

/// Refuses what cannot stand in a colour's name. A field that is left empty shows `shown` again.
class ColorValidator : public QRegExpValidator
{
public:
    ColorValidator(std::function<QString()> shown, QObject* parent)
        : QRegExpValidator(QRegExp(QStringLiteral("^[0-9a-zA-Z#]+$")), parent),
          m_shown(std::move(shown))
    {}

    void fixup(QString& text) const override { text = m_shown(); }

private:
    std::function<QString()> m_shown;
};

PushButton* swatch(const QString& objectName, QWidget* parent)
{
    auto* button = new PushButton(parent);
    button->setObjectName(objectName);
    button->setFixedSize(swatchSize, swatchSize);
    return button;
}

} // namespace

class StageSettingBox::Impl : public CheckingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(StageSettingBox* page);

    void setSettings(MivoSettings* settings) override
    {
        if (isStore(settings) && hasRuntime("StageSettingBox::setSettings zrRuntime is nullptr!")) {
            SettingPageImpl::setSettings(settings);
        }
    }

    // Store to slot, on the runtime thread.
    void onCanvasColorChanged(const std::string& color)
    {
        queue("setColor", QColor(QString::fromStdString(color)));
    }
    void onOutputColorChanged(const std::string& color)
    {
        queue("setOutputColor", QColor(QString::fromStdString(color)));
    }

public slots:
    void updateColor(int index) { choose(m_canvas, m_canvas.preset(index)); }
    void openColorDialog() { openDialog(m_canvas); }
    void onRedChanged() { m_canvas.refresh(); }
    void onGreenChanged() { m_canvas.refresh(); }
    void onBlueChanged() { m_canvas.refresh(); }
    void pickColor(const QColor& color) { m_canvas.pick(color); }
    void updateTextColor(int index) { choose(m_output, m_output.preset(index)); }
    void openTextColorDialog() { openDialog(m_output); }
    void onTextRedChanged() { m_output.refresh(); }
    void onTextGreenChanged() { m_output.refresh(); }
    void onTextBlueChanged() { m_output.refresh(); }
    void pickTextColor(const QColor& color) { m_output.pick(color); }
    void setColor(const QColor& color) { m_canvas.show(color); }
    void setOutputColor(const QColor& color) { m_output.show(color); }

protected:
    void initSettings() override;

private:
    /// One of the two colours and its controls; what differs between them stands first.
    struct ColorRow
    {
        const Presets& presets;
        int headingWidth; // 0: as wide as its text
        const char* headingKey;
        const char* initialHeading;
        const char* initialColor;
        void (Impl::*notify)(const QString& color);
        void (Impl::*choosePreset)(int id);
        void (Impl::*openDialog)();
        std::array<void (Impl::*)(), 3> onChannelChanged;

        /// An invalid colour changes nothing.
        void pick(const QColor& color);
        /// The same for the store's colour.
        void show(const QColor& color);
        /// Shows the colour of the channel boxes in the other controls.
        void refresh();
        QString color() const;
        QColor preset(int id) const { return {presets.at(static_cast<std::size_t>(id))}; }

        QLabel* heading = nullptr;
        QLabel* presetsLabel = nullptr;
        QButtonGroup* swatches = nullptr;
        QLabel* customLabel = nullptr;
        PushButton* picker = nullptr;
        PushButton* dialogButton = nullptr;
        EditBox* hexEdit = nullptr;
        std::array<SpinEditBox*, 3> channels{};
        QList<QWidget*> controls{}; // described by the heading
        QString reported{};         // what the store is known to hold
    };

    QHBoxLayout* presetsRow(ColorRow& row);
    QHBoxLayout* customRow(ColorRow& row);
    void addTexts();
    void connectRow(ColorRow& row);

    void choose(ColorRow& row, const QColor& color);
    void openDialog(ColorRow& row);
    void finishHexEdit(ColorRow& row);
    void report(ColorRow& row);
    void reportIfChanged(ColorRow& row);
    void notifyChangeColor(const QString& color);
    void notifyChangeTextColor(const QString& color);

    ColorRow m_canvas{canvasPresets,
                      0,
                      "CanvesSetting",
                      "Canvas Color",
                      "#000000",
                      &Impl::notifyChangeColor,
                      &Impl::updateColor,
                      &Impl::openColorDialog,
                      {&Impl::onRedChanged, &Impl::onGreenChanged, &Impl::onBlueChanged}};
    ColorRow m_output{
        outputPresets,
        45,
        "TextColor",
        "Output:",
        "#FFFFFF",
        &Impl::notifyChangeTextColor,
        &Impl::updateTextColor,
        &Impl::openTextColorDialog,
        {&Impl::onTextRedChanged, &Impl::onTextGreenChanged, &Impl::onTextBlueChanged}};
};

StageSettingBox::Impl::Impl(StageSettingBox* page) : CheckingPageImpl(page, "GeneralSettings")
{
    owner->setObjectName(QStringLiteral("StageSettingGroupBox"));
    auto* column = new QVBoxLayout(owner);
    column->setSpacing(12);
    column->setContentsMargins(30, 20, 0, 16);
    int rowHeights = 0;
    for (ColorRow* row : {&m_canvas, &m_output}) {
        row->heading = new QLabel(owner);
        column->addWidget(row->heading);
        column->addLayout(presetsRow(*row));
        column->addLayout(customRow(*row));
        row->pick(QColor(row->initialColor));
        row->reported = row->color();
        connectRow(*row);
        rowHeights += row->heading->sizeHint().height() + swatchSize
                      + row->channels[red]->sizeHint().height();
    }
    // Plus the margins, the spacings between the six rows, and the title.
    setUsualHeight(owner, rowHeights + 122);
    addTexts();

    follow(&IMivoSettings::canvasColorChanged, &Impl::onCanvasColorChanged);
    follow(&IMivoSettings::outputColorChanged, &Impl::onOutputColorChanged);
}

QHBoxLayout* StageSettingBox::Impl::presetsRow(ColorRow& row)
{
    if (row.headingWidth != 0) {
        setUsualWidth(row.heading, row.headingWidth);
    }
    row.heading->setObjectName(QStringLiteral("sectionHeading"));
    row.presetsLabel = new QLabel(owner);
    setUsualWidth(row.presetsLabel, 45);
    row.swatches = new QButtonGroup(owner);
    QList<QWidget*> buttons;
    for (std::size_t id = 0; id < row.presets.size(); ++id) {
        const auto preset = QString::fromLatin1(row.presets[id]);
        PushButton* button = swatch({}, owner);
        button->setCheckable(true);
        // No blank before the border's colour; kept on purpose.
        button->setStyleSheet("QPushButton{background-color:" + preset
                              + ";border: none;}QPushButton:checked {border: 1px solid"
                              + QLatin1String(outputPresets[checkedBorder]) + "; }");
        button->setAccessibleName(preset);
        button->setToolTip(preset);
        row.swatches->addButton(button, static_cast<int>(id));
        buttons.append(button);
    }
    row.controls = buttons;
    auto* swatches = rowOf(buttons);
    swatches->setSpacing(0);
    auto* layout = spacedRow({{row.presetsLabel, 10}});
    layout->addLayout(swatches);
    return layout;
}

QHBoxLayout* StageSettingBox::Impl::customRow(ColorRow& row)
{
    row.customLabel = new QLabel(owner);
    setUsualWidth(row.customLabel, 88);
    row.customLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    row.picker = swatch(QStringLiteral("colorPicker"), owner);
    row.dialogButton = swatch(QStringLiteral("imageBtn"), owner);
    row.hexEdit = new EditBox(owner);
    row.controls += {row.picker, row.dialogButton, row.hexEdit};
    row.hexEdit->setObjectName(QStringLiteral("lineEdit"));
    row.hexEdit->setProperty("style", QStringLiteral("color"));
    setUsualWidth(row.hexEdit, 72);
    row.hexEdit->setValidator(new ColorValidator([&row] { return row.color(); }, row.hexEdit));
    auto* layout = spacedRow(
        {{row.customLabel, 0}, {row.picker, 4}, {row.dialogButton, 16}, {row.hexEdit, 0}});
    for (const Channel channel : {red, green, blue}) {
        auto* label = new QLabel(QString::fromLatin1(channelNames[channel]), owner);
        auto* box = new SpinEditBox(owner);
        setUsualWidth(box, 58);
        box->setAlignment(Qt::AlignLeft);
        box->setRange(0, 255);
        box->setAccessibleName(label->text());
        label->setBuddy(box);
        row.channels[channel] = box;
        row.controls.append(box);
        layout->addSpacing(16);
        layout->addWidget(label);
        layout->addSpacing(4);
        layout->addWidget(box);
    }
    layout->addStretch();
    return layout;
}

void StageSettingBox::Impl::addTexts()
{
    addTitle("General");
    for (ColorRow* row : {&m_canvas, &m_output}) {
        addText("PresetsColor", row->presetsLabel, nullptr, "Presets:");
        const auto describe = [row](const QString& name) {
            row->heading->setText(name);
            for (QWidget* control : qAsConst(row->controls)) {
                control->setAccessibleDescription(name);
            }
        };
        addText(row->headingKey, describe, row->initialHeading);
    }
    addNavigationText("GeneralSettings");
    for (ColorRow* row : {&m_canvas, &m_output}) {
        addText("CustomColor", row->customLabel, row->hexEdit, "custom:");
        addText("SelectColor", [row](const QString& name) {
            for (PushButton* button : {row->picker, row->dialogButton}) {
                button->setAccessibleName(name);
                button->setToolTip(name);
            }
        });
    }
}

void StageSettingBox::Impl::connectRow(ColorRow& row)
{
    connect(row.swatches, &QButtonGroup::idClicked, this, row.choosePreset);
    connect(row.picker, &PushButton::clicked, this, row.openDialog);
    connect(row.dialogButton, &PushButton::clicked, this, row.openDialog);
    connect(row.hexEdit, &EditBox::editingFinished, this, [this, &row] { finishHexEdit(row); });
    for (const Channel channel : {red, green, blue}) {
        // Shown at each step, but reported when the edit is finished.
        SpinEditBox* box = row.channels[channel];
        connect(box, qOverload<double>(&SpinEditBox::valueChanged), this,
                row.onChannelChanged[channel]);
        connect(box, &SpinEditBox::editingFinished, this, [this, &row] { reportIfChanged(row); });
    }
}

void StageSettingBox::Impl::ColorRow::pick(const QColor& color)
{
    if (!color.isValid()) {
        return;
    }
    const std::array values{color.red(), color.green(), color.blue()};
    for (const Channel channel : {red, green, blue}) {
        showValue(channels[channel], values[channel]);
    }
    refresh();
}

void StageSettingBox::Impl::ColorRow::show(const QColor& color)
{
    pick(color);
    if (color.isValid()) {
        reported = this->color();
    }
}

QString StageSettingBox::Impl::ColorRow::color() const
{
    const auto value = [this](Channel channel) {
        return static_cast<int>(channels[channel]->value());
    };
    return QColor(value(red), value(green), value(blue)).name();
}

void StageSettingBox::Impl::ColorRow::refresh()
{
    const QString shown = color();
    hexEdit->setText(shown);
    const QString style = QStringLiteral("QPushButton{background-color:%1;}").arg(shown);
    if (picker->styleSheet() != style) { // setting one is slow, even the same one
        picker->setStyleSheet(style);
    }
    for (std::size_t id = 0; id < presets.size(); ++id) {
        if (shown.compare(QLatin1String(presets[id]), Qt::CaseInsensitive) == 0) {
            swatches->button(static_cast<int>(id))->setChecked(true);
            return;
        }
    }
    if (QAbstractButton* checked = swatches->checkedButton()) {
        swatches->setExclusive(false); // an exclusive group keeps one button checked
        checked->setChecked(false);
        swatches->setExclusive(true);
    }
}

void StageSettingBox::Impl::initSettings()
{
    if (!startFetching()) {
        return;
    }
    const auto canvas = read(&IMivoSettings::getCanvasColor);
    const auto output = read(&IMivoSettings::getOutputColor);
    if (showsFetched()) {
        onCanvasColorChanged(canvas);
        onOutputColorChanged(output);
    }
}

void StageSettingBox::Impl::choose(ColorRow& row, const QColor& color)
{
    row.pick(color);
    report(row);
}

void StageSettingBox::Impl::openDialog(ColorRow& row)
{
    auto* dialog = new ColorDialog(owner);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setTexts(
        settings::text(QStringLiteral("SelectColor")), settings::text(QStringLiteral("Determine")),
        settings::text(QStringLiteral("Cancel")), settings::text(QStringLiteral("PickScreenColor")),
        settings::text(QStringLiteral("NoScreenPicture")));
    dialog->setCurrentColor(QColor(row.color()));
    connect(dialog, &ColorDialog::currentColorChanged, this,
            [&row](const QColor& color) { row.pick(color); });
    connect(dialog, &ColorDialog::accepted, this,
            [this, &row, dialog] { choose(row, dialog->currentColor()); });
    connect(dialog, &ColorDialog::rejected, this, [&row] { row.pick(QColor(row.reported)); });
    dialog->open();
}

void StageSettingBox::Impl::finishHexEdit(ColorRow& row)
{
    row.pick(typedColor(row.hexEdit->text()));
    row.refresh(); // replaces a text that is no colour
    reportIfChanged(row);
}

void StageSettingBox::Impl::reportIfChanged(ColorRow& row)
{
    if (row.color() != row.reported) {
        report(row);
    }
}

void StageSettingBox::Impl::report(ColorRow& row)
{
    row.reported = row.color();
    (this->*row.notify)(row.reported);
}

void StageSettingBox::Impl::notifyChangeColor(const QString& color)
{
    submit(&IMivoSettings::setCanvasColor, color.toStdString());
}

void StageSettingBox::Impl::notifyChangeTextColor(const QString& color)
{
    submit(&IMivoSettings::setOutputColor, color.toStdString());
}

StageSettingBox::StageSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

StageSettingBox::~StageSettingBox() = default;

} // namespace mivo::settings

#include "stagesettingbox.moc"
