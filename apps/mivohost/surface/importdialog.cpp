#include "surface/importdialog.h"

#include "base/hosttext.h"
#include "surface/settingstexts.h"

#include <mivosettingswidgets/controls.h>

#include <QtCore/QLocale>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace mivohost {

namespace {

enum ChangeColumn { nameColumn, beforeColumn, afterColumn };
constexpr int keyRole = Qt::UserRole;
constexpr int valueRole = Qt::UserRole + 1;

QLabel* label(const QString& text)
{
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QTreeWidget* list(const char* name, const QStringList& headings, QLabel* heading)
{
    auto* tree = new QTreeWidget;
    tree->setObjectName(QString::fromLatin1(name));
    tree->setHeaderLabels(headings);
    tree->header()->setSectionResizeMode(QHeaderView::Stretch);
    tree->setSelectionMode(QAbstractItemView::SingleSelection);
    heading->setBuddy(tree);
    tree->setAccessibleName(heading->text()); // Qt relates no views to labels
    return tree;
}

QTreeWidgetItem* row(QTreeWidgetItem* parent, const QStringList& texts)
{
    auto* item = new QTreeWidgetItem(parent, texts);
    for (int column = 0; column < texts.size(); ++column) {
        item->setToolTip(column,
                         mivo::settings::tipOf(texts[column])); // it may be longer than its column
    }
    return item;
}

} // namespace

ImportDialog::ImportDialog(const SettingsFile& file, const SettingsFile::Plan& plan,
                           QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(hostText("ImportSettingsTitle"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    const auto& origin = file.origin();
    auto* source =
        label(hostText("SettingsOrigin")
                  .arg(origin.machine,
                       QLocale().toString(origin.date.toLocalTime(), QLocale::ShortFormat),
                       origin.programVersion));
    const bool hasOwn =
        std::any_of(plan.changes.begin(), plan.changes.end(), [](const auto& change) {
            return change.scope == SettingsFile::Scope::machine;
        });
    auto* heading = label(hostText(plan.changes.empty() ? "SettingsSame"
                                   : hasOwn             ? "SettingsToImportNotOwn"
                                                        : "SettingsToImport"));
    m_changes =
        list("importChanges",
             {hostText("SettingName"), hostText("SettingNow"), hostText("SettingInFile")}, heading);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_accept = buttons->button(QDialogButtonBox::Ok);
    m_accept->setText(hostText("ImportSettingsTitle"));
    buttons->button(QDialogButtonBox::Cancel)->setText(hostText("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_changes, &QTreeWidget::itemChanged, this,
            [this] { m_accept->setEnabled(!chosen().empty()); });
    addChanges(plan.changes);
    m_accept->setEnabled(!chosen().empty());

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 16, 20, 16);
    column->setSpacing(10);
    column->addWidget(source);
    source->setVisible(!origin.machine.isEmpty());
    column->addWidget(heading);
    column->addWidget(m_changes, 3);
    m_changes->setVisible(!plan.changes.empty());
    if (!plan.refused.empty()) {
        auto* refusedHeading = label(hostText("SettingsRefused"));
        auto* refused = list("importRefused", {hostText("SettingName"), hostText("SettingReason")},
                             refusedHeading);
        refused->setRootIsDecorated(false);
        for (const auto& each : plan.refused) {
            row(refused->invisibleRootItem(), {each.name, refusedText(each)});
        }
        column->addWidget(refusedHeading);
        column->addWidget(refused, 1);
    }
    column->addWidget(buttons);
    resize(820, plan.changes.empty() ? 320 : 600);
    m_changes->setFocus();
}

void ImportDialog::addChanges(const std::vector<SettingsFile::Change>& changes)
{
    for (const SettingsFile::Section section : SettingsFile::sections()) {
        QTreeWidgetItem* group = nullptr;
        for (const auto& change : changes) {
            if (change.section != section) {
                continue;
            }
            if (group == nullptr) {
                group = row(m_changes->invisibleRootItem(), {sectionText(section)});
                group->setFlags(group->flags() | Qt::ItemIsAutoTristate);
            }
            auto* item = row(group, {settingText(change.key), valueText(change.key, change.before),
                                     valueText(change.key, change.after)});
            item->setData(nameColumn, keyRole, static_cast<int>(change.key));
            item->setData(nameColumn, valueRole, change.after);
            item->setCheckState(nameColumn, change.scope == SettingsFile::Scope::machine
                                                ? Qt::Unchecked
                                                : Qt::Checked);
        }
    }
    m_changes->expandAll();
    m_changes->setCurrentItem(m_changes->topLevelItem(0));
}

std::map<SettingsFile::Key, QVariant> ImportDialog::chosen() const
{
    std::map<SettingsFile::Key, QVariant> values;
    for (QTreeWidgetItemIterator item(m_changes); *item != nullptr; ++item) {
        const QVariant key = (*item)->data(nameColumn, keyRole);
        if (key.isValid() && (*item)->checkState(nameColumn) == Qt::Checked) {
            values[static_cast<SettingsFile::Key>(key.toInt())] =
                (*item)->data(nameColumn, valueRole);
        }
    }
    return values;
}

} // namespace mivohost
