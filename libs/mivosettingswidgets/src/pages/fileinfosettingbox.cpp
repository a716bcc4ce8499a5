#include "mivosettingswidgets/fileinfosettingbox.h"

#include "folders/folderrow.h"
#include "folders/folderselection.h"
#include "mivosettingswidgets/controls.h"
#include "mivosettingswidgets/settingpageimpl.h"

#include <mivowidgets/alertlabel.h>
#include <mivowidgets/combobox.h>
#include <mivowidgets/editbox.h>
#include <mivowidgets/pushbutton.h>

#include <QtCore/QPointer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

namespace mivo::settings {

using mivo::widgets::ComboBox;
using mivo::widgets::PushButton;

class FileInfoSettingBox::Impl : public CheckingPageImpl
{
    Q_OBJECT

public:
    explicit Impl(FileInfoSettingBox* page);

    // Runtime thread.
    void onStoredTimeTypeChanged(int type) { queue("setPlayLogStorageTimeType", type); }
    void onStoredPlayLogPathChanged(const std::string& path)
    {
        queue("setPlayLogPathStr", QString::fromStdString(path));
    }
    void onStoredCachePathChanged(const std::string& path)
    {
        queue("setCachePathStr", QString::fromStdString(path));
    }
    void onStoredSharePathChanged(const std::string& path)
    {
        queue("setSharePathStr", QString::fromStdString(path));
    }

public slots:
    void setPlayLogStorageTimeType(int type) { showValue(m_timeType, type); }
    void setPlayLogPathStr(const QString& path) { m_playLog->setPath(path); }
    void setCachePathStr(const QString& path) { m_cache->setPath(path); }
    void setSharePathStr(const QString& path) { m_share->setPath(path); }
    void setFileInfoSettings(const STFileInfoSettings& info);
    void onPlayLogStorageTimeComboBoxIndexChanged(int index);
    bool onPlayLogPathChanged(const QString& path)
    {
        return submit(&IMivoSettings::setPlayLogPath, path.toStdString());
    }
    bool onCacheChanged(const QString& path)
    {
        return submit(&IMivoSettings::setCachePath, path.toStdString());
    }
    bool onShareChanged(const QString& path)
    {
        return submit(&IMivoSettings::setSharePath, path.toStdString());
    }

protected:
    void initSettings() override;

private:
    FolderRow* addFolder(const char* captionKey, const char* tipName, const char* subFolder,
                         bool (Impl::*changed)(const QString& path));

    QLabel* m_timeTypeLabel = new QLabel(owner);
    ComboBox* m_timeType = new ComboBox(owner);
    QVBoxLayout* m_column = new QVBoxLayout(owner);
    FolderRow* m_playLog = nullptr;
    FolderRow* m_cache = nullptr;
    FolderRow* m_share = nullptr;
};

namespace {

constexpr int captionWidth = 120;

} // namespace

FileInfoSettingBox::Impl::Impl(FileInfoSettingBox* page) : CheckingPageImpl(page, "GeneralSettings")
{
    page->setObjectName(QStringLiteral("FileInfoSettingGroupBox"));
    setUsualWidth(m_timeTypeLabel, captionWidth);
    m_timeType->setObjectName(QStringLiteral("playLogStorageTime"));
    setUsualWidth(m_timeType, 100);
    for (int type = PlayLogPermanent; type <= PlayLogTwelveMonths; ++type) {
        m_timeType->addItem(QString(), type);
    }
    m_column->setContentsMargins(30, 20, 0, 16);
    m_column->setSpacing(12);
    m_column->addLayout(rowOf({m_timeTypeLabel, m_timeType}));

    addTitle("FileInfoGroup");
    addText("PlayLogStorageTime", m_timeTypeLabel, m_timeType);
    addItemTexts(m_timeType,
                 {"PermanentDefault", "OneMonth", "ThreeMonths", "SixMonths", "TwelveMonths"});
    m_playLog = addFolder("LogPath", "logSpaceTips", "/playlog", &Impl::onPlayLogPathChanged);
    m_cache = addFolder("CachePath", "cacheSpaceTips", "/cache", &Impl::onCacheChanged);
    m_share =
        addFolder("SharePath", "shareFolderSpaceTips", "/sharedfolder", &Impl::onShareChanged);
    addNavigationText("GeneralSettings");

    connect(m_timeType, qOverload<int>(&ComboBox::currentIndexChanged), this,
            &Impl::onPlayLogStorageTimeComboBoxIndexChanged);
    follow(&IMivoSettings::playLogStorageTimeTypeChanged, &Impl::onStoredTimeTypeChanged);
    follow(&IMivoSettings::playLogPathChanged, &Impl::onStoredPlayLogPathChanged);
    follow(&IMivoSettings::cachePathChanged, &Impl::onStoredCachePathChanged);
    follow(&IMivoSettings::sharePathChanged, &Impl::onStoredSharePathChanged);
}

FolderRow* FileInfoSettingBox::Impl::addFolder(const char* captionKey, const char* tipName,
                                               const char* subFolder,
                                               bool (Impl::*changed)(const QString& path))
{
    auto* tip = new mivo::widgets::AlertLabel(owner);
    tip->setObjectName(QString::fromLatin1(tipName));
    auto* row = new FolderRow(owner, tip);
    row->setParent(this);
    setUsualWidth(row->caption, captionWidth);
    m_column->addLayout(row->layout);
    row->addTexts(captionKey, textRegistrar());
    addText("NoSpace", tip);

    auto* page = static_cast<FileInfoSettingBox*>(owner);
    connect(row, &FolderRow::spaceChecked, page, &FileInfoSettingBox::notifySpaceUseup);
    connect(row->browse, &PushButton::clicked, this, [this, row, subFolder, changed] {
        row->choose(fileInfoFolderRules, subFolder,
                    [this, changed](const QString& path) { return (this->*changed)(path); });
    });
    return row;
}

void FileInfoSettingBox::Impl::initSettings()
{
    if (startFetching()) {
        fetch(&IMivoSettings::getFileInfoSettings, "setFileInfoSettings");
    }
}

void FileInfoSettingBox::Impl::setFileInfoSettings(const STFileInfoSettings& info)
{
    const QPointer<Impl> self(this); // the host is told of the space, and may take the page away
    setPlayLogStorageTimeType(info.playLogStorageTimeType);
    for (const auto& [row, path] : {std::pair(m_playLog, info.playLogPath),
                                    {m_cache, info.cachePath},
                                    {m_share, info.sharePath}}) {
        if (self) {
            row->setPath(QString::fromStdString(path));
        }
    }
}

void FileInfoSettingBox::Impl::onPlayLogStorageTimeComboBoxIndexChanged(int index)
{
    submit(&IMivoSettings::setPlayLogStorageTimeType, m_timeType->itemData(index).toInt());
}

FileInfoSettingBox::FileInfoSettingBox(QWidget* parent) : SettingPage(parent)
{
    setImpl(std::make_unique<Impl>(this));
}

FileInfoSettingBox::~FileInfoSettingBox() = default;

} // namespace mivo::settings

#include "fileinfosettingbox.moc"
