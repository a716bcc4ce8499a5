#pragma once

#include "folders/folderclearing.h"
#include "mivosettingswidgets/export.h"

#include <QtCore/QObject>

#include <functional>
#include <memory>
#include <optional>

class QHBoxLayout;
class QLabel;
class QWidget;

namespace mivo::widgets {
class EditBox;
class PushButton;
} // namespace mivo::widgets

namespace mivo::settings {

struct FolderRules;

/// The row of a folder on a page: caption, path, buttons, free space of the drive, and the tip that
/// warns when that runs out. Clears the folder; choosing another one is the page's. GUI thread.
class MIVOSETTINGSWIDGETS_TEST_EXPORT FolderRow : public QObject
{
    Q_OBJECT

public:
    /// Registers a text as SettingPageImpl::addText() does.
    using RegisterText =
        std::function<void(const char* key, std::function<void(const QString&)> set)>;

    /// What the row depends on, for tests to replace. Both are called on threads of their own.
    struct MIVOSETTINGSWIDGETS_TEST_EXPORT Dependencies
    {
        Dependencies();

        std::function<qint64(const QString& drive)> bytesAvailable; ///< -1 when unknown
        FolderClearing::Clear clear;
    };

    /// Puts `tip`, hidden, at the end of the row; the page sets its text, which is spoken when the
    /// tip appears. The widgets are children of the page.
    FolderRow(QWidget* page, QWidget* tip, Dependencies dependencies = {});
    ~FolderRow() override;

    QLabel* const caption;
    mivo::widgets::EditBox* const edit;
    mivo::widgets::PushButton* const browse;
    mivo::widgets::PushButton* const clear;
    QLabel* const space;
    QHBoxLayout* const layout; ///< the widgets above from left to right; a page may insert more

    /// Registers all texts but the tip's.
    void addTexts(const char* captionKey, const RegisterText& text);

    QString path() const;

    /// Shows the path and the free space of its drive; nothing when the path is shown already.
    void setPath(const QString& path);

    /// Has the person choose another folder by those rules, shows it and hands it to `write`; where
    /// that returns false, the row shows the folder before.
    void choose(const FolderRules& rules, const char* subFolder,
                const std::function<bool(const QString& path)>& write);

    /// Asks for the free space again, and shows it: at once, or when the drive answers. Nothing is
    /// shown for a path without a drive.
    void checkSpace();

signals:
    void pathChanged(const QString& path);

    /// The free space was asked for; `usedUp` is whether the tip is visible now.
    void spaceChecked(bool usedUp);

private:
    void startClearing();
    void endClearing(const QString& folder, const qutils::ClearResult& result);
    void applySpace(std::optional<qint64> gibibytes);
    void showSpace();

    QWidget* m_page;
    QWidget* m_tip;
    Dependencies m_dependencies;
    QString m_spacePrefix;
    std::optional<qint64> m_freeGibibytes;
    std::unique_ptr<qutils::FileTask> m_spaceTask;
    QString m_askedDrive;
    std::unique_ptr<FolderClearing> m_clearing;
};

} // namespace mivo::settings
