#include "mivosettingswidgets/shortcutmgr.h"

#include "kit/borrowed.h"
#include "mivohostapi/peripherals.h"
#include "mivosettingswidgets/shortcutfile.h"
#include "mivosettingswidgets/shortcuttable.h"
#include "mivosettingswidgets/storeaccess.h"
#include "mivosettingswidgets/texts.h"
#include "shortcuts/peripheralmailbox.h"
#include "shortcuts/shortcutcovers.h"
#include "zrcutils/nocachefile.h"

#include <mivowidgets/shortcutcover.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QPointer>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <utility>

namespace mivo::settings {

using mivo::peripheralcontrol::DmxPeripheral;
using mivo::peripheralcontrol::MidiPeripheral;
using mivo::peripheralcontrol::OscPeripheral;
using mivo::peripheralcontrol::Peripheral;
using mivo::peripheralcontrol::SDeviceBindInfo;
using mivo::peripheralcontrol::SMIDIDevInfo;
using mivo::widgets::ShortCutCover;
using mivo::widgets::TipDialog;

namespace {

constexpr std::array deviceKinds{PeripheralMidi, PeripheralDmx, PeripheralOsc};

/// A binding of type ShortCutOfPath that a device has made.
struct PendingBinding
{
    EnumPeripheralShortCutType kind;
    EnumShortCutType type;
    std::string oprKey;
    std::string keyValue;
};

/// As which a service knows an action. That of a path is told as it is reported, so that the host
/// gets one name for it from all; to OSC the path is the address.
std::string nameFor(EnumPeripheralShortCutType kind, int type, const std::string& path)
{
    return type == ShortCutOfPath && kind != PeripheralOsc ? reportedPath(path) : path;
}

bool matches(const STShortCutItem& item, EnumShortCutType type, const std::string& path)
{
    return item.type == type && item.path == path;
}

/// The content of a file, or none where there is no file that can be opened.
std::optional<std::string> contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return {};
    }
    std::string content(std::filesystem::file_size(path), '\0');
    file.read(content.data(), static_cast<std::streamsize>(content.size()));
    content.resize(static_cast<std::size_t>(file.gcount()));
    return content;
}

/// Renames a file that is about to be replaced, to a name that is free. Returns that name, or
/// nothing where the file is gone by now.
std::filesystem::path putAside(const std::filesystem::path& file)
{
    const auto bad = file.u8string() + ".bad";
    auto aside = std::filesystem::u8path(bad);
    for (int n = 2; std::filesystem::exists(std::filesystem::symlink_status(aside)); ++n) {
        aside = std::filesystem::u8path(bad + '-' + std::to_string(n));
    }
    if (!std::filesystem::exists(std::filesystem::symlink_status(file))) {
        return {};
    }
    std::filesystem::rename(file, aside);
    return aside;
}

std::filesystem::path shortCutFile()
{
    return std::filesystem::u8path(shortCutFilePath().toStdString());
}

} // namespace

class ShortCutMgr::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(ShortCutMgr* manager)
        : mailbox(std::make_shared<PeripheralMailbox>(
            this, [this](const ControlMessage& message) { emitMessage(message); })),
          m_manager(manager)
    {}
    ~Impl() override;

    Borrowed<MidiPeripheral> midi;
    Borrowed<OscPeripheral> osc;
    Borrowed<DmxPeripheral> dmx;
    STLinkShortCutInfo table;
    ShortCutCovers covers;
    EnumPeripheralShortCutType currentKind = PeripheralKeyboard;
    std::string currentPath;
    std::vector<PendingBinding> pendingBindings;
    bool projectFileLoadComplete = false;

    PeripheralMailbox::Pointer mailbox;

    void load();
    void save();
    enum class Write { no, yes };
    void clearKeys(Write write);
    void clearPeripheral(EnumPeripheralShortCutType kind);
    void rebind(EnumPeripheralShortCutType kind, const SDeviceBindInfo& info);
    void showPendingTexts() const;
    void showBindings(EnumPeripheralShortCutType kind, const QList<ShortCutCover*>& shown) const;
    void open(bool show, EnumPeripheralShortCutType kind);
    void reportEmptiness();
    bool isEmpty() const
    {
        return table.indexShortCutList.empty() && table.pathShortCutList.empty();
    }

    Peripheral* service(EnumPeripheralShortCutType kind) const;
    template <typename Service>
    bool use(Borrowed<Service>& borrowed, Service* service, EnumPeripheralShortCutType kind);

public slots:
    void addShortCutsItem(EnumShortCutType type, const std::string& path,
                          const std::string& shortCutStr, ShortCutModuleType moduleType);
    void delShortCutsItem(EnumShortCutType type, const std::string& path,
                          ShortCutModuleType moduleType);
    bool existShortCutsItem(EnumShortCutType type, const std::string& path,
                            const std::string& shortCutStr);
    bool systemShortCutRepeat(const QString& text);
    void bindShortCutAndCover(const QList<ShortCutCover*>& coverList);
    void disBindShortCutAndCover(const QList<ShortCutCover*>& coverList);
    void onSaveShortCutInfoList(bool isSave);
    void delProgramCoverPtr(ShortCutCover* cover);
    void setPeripheralBind(int index, const std::string& strOprkey);
    void delPeripheralBind(int index, const std::string& strOprkey);
    void setOscBindData(EnumPeripheralShortCutType enCurType);
    void onSetShortCoverVisible(bool flag);
    void addPeripheralBind(const SDeviceBindInfo& bindDesc);
    bool hasPeripheralBinded(EnumPeripheralShortCutType kind) const;
    QString getBindedShortCutKeyName(int oprKey, const std::string& strOprKey) const;
    void reripheralBind(int nOprKey, std::string strOprKey, std::string strKeyValue,
                        bool bBindSuccess, EnumPeripheralShortCutType enType);

private slots:
    void deliverWaiting()
    {
        const auto kept = mailbox; // this may end meanwhile
        kept->deliverWaiting();
    }

private:
    bool removeItem(EnumShortCutType type, const std::string& path, ShortCutModuleType module);
    /// The first entry that holds the text, or null.
    const STShortCutItem* holderOf(const std::string& shortCutStr) const;
    static bool confirmMove();
    void learnNext(const ShortCutCover* cover);
    template <typename Predicate>
    void dropPending(Predicate isDropped)
    {
        pendingBindings.erase(
            std::remove_if(pendingBindings.begin(), pendingBindings.end(), isDropped),
            pendingBindings.end());
    }
    /// Puts a binding in the place of those that were pending for its action or its control.
    void remember(EnumPeripheralShortCutType kind, const SDeviceBindInfo& info);
    void emitMessage(const ControlMessage& message);

    ShortCutMgr* m_manager;
    bool m_fileIsUnreadable = false;
    std::optional<EnumPeripheralShortCutType> m_opened; // for which kind the covers are open
};

ShortCutMgr::Impl::~Impl()
{
    mailbox->close();
}

// --- The file ---

void ShortCutMgr::Impl::load()
{
    table.indexShortCutList.clear();
    table.pathShortCutList.clear();
    m_fileIsUnreadable = false;
    const CallSite site("loadShortCutInfoList");
    try {
        const auto path = shortCutFile();
        m_fileIsUnreadable = std::filesystem::exists(path);
        const auto content = contentOf(path);
        if (!content) {
            return; // a first run
        }
        table.shortCutInfoList = parseShortCuts(*content);
        m_fileIsUnreadable = false;
    } catch (const std::filesystem::filesystem_error& error) {
        logAt(spdlog::level::err, site, "filesystem_error error msg: {}", error.what());
        return;
    } catch (const std::exception& error) {
        logAt(spdlog::level::err, site, "std::exception error msg: {}", error.what());
        return;
    }
    for (const STShortCutItem& item : table.shortCutInfoList) {
        (item.type == ShortCutOfPath ? table.pathShortCutList : table.indexShortCutList)
            .push_back(item);
    }
}

void ShortCutMgr::Impl::save()
{
    auto items = table.indexShortCutList;
    items.insert(items.end(), table.pathShortCutList.begin(), table.pathShortCutList.end());
    const CallSite site("saveShortCutInfoList");
    std::filesystem::path aside;
    try {
        const auto path = shortCutFile();
        if (m_fileIsUnreadable) {
            aside = putAside(path);
            m_fileIsUnreadable = false;
        }
        NoCacheFile::saveToFile(path.u8string(), formatShortCuts(items));
    } catch (const std::filesystem::filesystem_error& error) {
        logAt(spdlog::level::err, site, "filesystem_error error msg: {}", error.what());
    } catch (const std::exception& error) {
        logAt(spdlog::level::err, site, "std::exception error msg: {}", error.what());
    }
    table.shortCutInfoList = std::move(items);
    if (!aside.empty()) {
        emit m_manager->signalShortCutFilePutAside(aside.u8string());
    }
    emit m_manager->signalShortCutSave(table);
}

void ShortCutMgr::Impl::onSaveShortCutInfoList(bool isSave)
{
    if (isSave) {
        save();
    }
}

// --- Keys ---

void ShortCutMgr::Impl::reportEmptiness()
{
    emit m_manager->signalClearShortCutState(isEmpty());
}

bool ShortCutMgr::Impl::removeItem(EnumShortCutType type, const std::string& path,
                                   ShortCutModuleType module)
{
    auto& list = module != ShortCutModulePath ? table.indexShortCutList : table.pathShortCutList;
    const auto found = std::find_if(list.begin(), list.end(), [&](const STShortCutItem& item) {
        return matches(item, type, path);
    });
    if (found == list.end()) {
        return false;
    }
    list.erase(found);
    return true;
}

void ShortCutMgr::Impl::addShortCutsItem(EnumShortCutType type, const std::string& path,
                                         const std::string& shortCutStr,
                                         ShortCutModuleType moduleType)
{
    while (removeItem(type, path, moduleType)) {
    }
    (moduleType == ShortCutModuleIndex ? table.indexShortCutList : table.pathShortCutList)
        .push_back({type, path, shortCutStr});
    save();
    emit m_manager->signalClearShortCutState(false);
    emit m_manager->signalShortCutStrChanged(type, path, shortCutStr);
}

void ShortCutMgr::Impl::delShortCutsItem(EnumShortCutType type, const std::string& path,
                                         ShortCutModuleType moduleType)
{
    if (removeItem(type, path, moduleType)) {
        save();
        emit m_manager->signalShortCutStrChanged(type, path, std::string());
    } else if (isEmpty()) {
        emit m_manager->signalClearShortCutState(true);
    }
}

bool ShortCutMgr::Impl::confirmMove()
{
    return TipDialog::ask(QApplication::activeWindow(), TipDialog::question,
                          text(QStringLiteral("ConfirmCoverExistShortCut")),
                          text(QStringLiteral("Cancel")), text(QStringLiteral("OK")))
           == TipDialog::accepted;
}

bool ShortCutMgr::Impl::existShortCutsItem(EnumShortCutType type, const std::string& path,
                                           const std::string& shortCutStr)
{
    const STShortCutItem* holder = holderOf(shortCutStr);
    if (holder == nullptr) {
        return false;
    }
    if (matches(*holder, type, path)) {
        return true;
    }
    // While the question is open the table may change, this may go, and so may the cover that asks,
    // with its path.
    const STShortCutItem asking{type, path, shortCutStr};
    const QPointer<Impl> self(this);
    const bool isConfirmed = confirmMove();
    if (!self || !isConfirmed || covers.of(asking.type, asking.path) == nullptr) {
        return true;
    }
    // A file may hold a text more than once.
    while (const STShortCutItem* found = holderOf(asking.shortCutStr)) {
        const STShortCutItem old = *found;
        if (!removeItem(old.type, old.path,
                        old.type == ShortCutOfPath ? ShortCutModulePath : ShortCutModuleIndex)) {
            break;
        }
        if (ShortCutCover* cover = covers.of(old.type, old.path)) {
            cover->shortCutStrChanged(QString());
        }
        emit m_manager->signalShortCutStrChanged(old.type, old.path, std::string());
        if (!self) {
            return true;
        }
    }
    return false;
}

const STShortCutItem* ShortCutMgr::Impl::holderOf(const std::string& shortCutStr) const
{
    for (const auto* items : {&table.indexShortCutList, &table.pathShortCutList}) {
        const auto found = std::find_if(items->begin(), items->end(), [&](const auto& item) {
            return item.shortCutStr == shortCutStr;
        });
        if (found != items->end()) {
            return &*found;
        }
    }
    return nullptr;
}

bool ShortCutMgr::Impl::systemShortCutRepeat(const QString& text)
{
    if (!isReservedKeySequence(text)) {
        return false;
    }
    TipDialog::ask(QApplication::activeWindow(), TipDialog::warning,
                   settings::text(QStringLiteral("SystemShortCutWithRepeat")), QString(),
                   settings::text(QStringLiteral("OK")));
    return true;
}

void ShortCutMgr::Impl::clearKeys(Write write)
{
    const auto before = std::exchange(table, {}).shortCutInfoList;
    covers.forEach([](ShortCutCover& cover) { cover.shortCutStrChanged(QString()); });
    if (write == Write::yes) {
        save();
    }
    for (const STShortCutItem& item : before) {
        emit m_manager->signalShortCutStrChanged(item.type, item.path, std::string());
    }
    emit m_manager->signalClearShortCutState(true);
}

// --- Covers ---

void ShortCutMgr::Impl::bindShortCutAndCover(const QList<ShortCutCover*>& coverList)
{
    QList<ShortCutCover*> bound;
    for (ShortCutCover* cover : coverList) {
        if (cover == nullptr || covers.contains(cover)) {
            continue;
        }
        connect(cover, &ShortCutCover::signalDelShortCutsItem, this, &Impl::delShortCutsItem);
        connect(cover, &ShortCutCover::signalExistShortCutsItem, this, &Impl::existShortCutsItem);
        connect(cover, &ShortCutCover::signalAddShortCutsItem, this, &Impl::addShortCutsItem);
        connect(cover, &ShortCutCover::signalCheckRepeat, this, &Impl::systemShortCutRepeat);
        connect(cover, &ShortCutCover::signalCoverEsc, m_manager,
                &ShortCutMgr::signalCloseShortByEsc);
        connect(cover, &ShortCutCover::signalKeyEventComplete, m_manager,
                &ShortCutMgr::signalKeyEventCompleted);
        connect(m_manager, &ShortCutMgr::signalCloseShortByEsc, cover,
                &ShortCutCover::setShortCoverClearFocus);
        connect(cover, &ShortCutCover::signalSetPeripheralBind, this, &Impl::setPeripheralBind);
        connect(cover, &ShortCutCover::signalDelPeripheralBind, this, &Impl::delPeripheralBind);
        connect(cover, &QObject::destroyed, this, [this, cover] { delProgramCoverPtr(cover); });
        covers.insert(cover);
        bound.append(cover);
    }
    for (const auto kind : deviceKinds) {
        showBindings(kind, bound);
    }
}

void ShortCutMgr::Impl::disBindShortCutAndCover(const QList<ShortCutCover*>& coverList)
{
    for (ShortCutCover* cover : coverList) {
        if (covers.contains(cover)) {
            cover->disconnect(this);
            cover->disconnect(m_manager);
            m_manager->disconnect(cover);
            delProgramCoverPtr(cover);
        }
    }
}

void ShortCutMgr::Impl::delProgramCoverPtr(ShortCutCover* cover)
{
    covers.remove(cover);
}

void ShortCutMgr::Impl::open(bool show, EnumPeripheralShortCutType kind)
{
    currentKind = kind;
    covers.forEach([show, kind](ShortCutCover& cover) {
        cover.acceptEventState(!show);
        cover.setShortCoverVisible(show, kind);
    });
    const auto opened = show ? std::optional(kind) : std::nullopt;
    const auto before = std::exchange(m_opened, opened);
    if (before == opened) {
        return; // the host may be answering the signal
    }
    for (const auto each : deviceKinds) {
        if (Peripheral* asked = service(each)) {
            asked->stopLearning(); // a cover that hides hands the focus to one that asks
        }
    }
    emit m_manager->signalOpenShortCover(show, kind);
    if (show) {
        emit m_manager->signalShowMonitorWidget(kind);
    }
}

void ShortCutMgr::Impl::onSetShortCoverVisible(bool flag)
{
    m_manager->slotShowAllShortCutCover(flag, currentKind);
}

// --- Controls of devices ---

Peripheral* ShortCutMgr::Impl::service(EnumPeripheralShortCutType kind) const
{
    switch (kind) {
    case PeripheralMidi:
        return midi.get();
    case PeripheralDmx:
        return dmx.get();
    case PeripheralOsc:
        return osc.get();
    default:
        return nullptr;
    }
}

template <typename Service>
bool ShortCutMgr::Impl::use(Borrowed<Service>& borrowed, Service* service,
                            EnumPeripheralShortCutType kind)
{
    if (service == nullptr) {
        return false;
    }
    borrowed.reset(service);
    // On any thread, also while this ends.
    borrowed.follow(
        service->controlMessage,
        [mailbox = mailbox, kind](int action, const std::string& path, const std::string& value) {
            mailbox->receive({kind, action, path, value});
        });
    if (kind != PeripheralOsc) {
        borrowed.follow(service->bindResult, [mailbox = mailbox, kind](const SDeviceBindInfo& info,
                                                                       bool isBound) {
            mailbox->withOwner([&](QObject& impl) {
                QMetaObject::invokeMethod(&impl, "reripheralBind", Qt::QueuedConnection,
                                          Q_ARG(int, info.type), Q_ARG(std::string, info.oprKey),
                                          Q_ARG(std::string, info.keyValue), Q_ARG(bool, isBound),
                                          Q_ARG(EnumPeripheralShortCutType, kind));
            });
        });
    }
    showBindings(kind, covers.all());
    return true;
}

void ShortCutMgr::Impl::showBindings(EnumPeripheralShortCutType kind,
                                     const QList<ShortCutCover*>& shown) const
{
    if (const Peripheral* asked = service(kind); asked != nullptr && !shown.isEmpty()) {
        ShortCutCovers::showBindings(kind, asked->bindings(), shown);
    }
}

void ShortCutMgr::Impl::emitMessage(const ControlMessage& message)
{
    const bool isRewritten =
        message.kind == PeripheralOsc && message.action == ShortCutOfPath && !message.path.empty();
    const QPointer<ShortCutMgr> manager(m_manager); // what the message leads to may end it
    emit manager->signalPeripheralsControl(
        message.action, isRewritten ? reportedPath(message.path) : message.path, message.value);
    if (manager && message.kind != PeripheralMidi) {
        emit manager->signalUpdateDeviceStatus(message.kind, true);
    }
}

void ShortCutMgr::Impl::setPeripheralBind(int index, const std::string& strOprkey)
{
    // Asked for by a cover, of the kind for which the covers are open.
    currentPath = strOprkey;
    if (Peripheral* asked = service(currentKind)) {
        asked->learn(index, nameFor(currentKind, index, strOprkey));
    }
}

void ShortCutMgr::Impl::learnNext(const ShortCutCover* cover)
{
    if (cover != nullptr && cover->hasFocus() && m_opened == currentKind) {
        setPeripheralBind(cover->getShortCutIndex(), cover->getPeripheralShortCutPath());
    }
}

void ShortCutMgr::Impl::delPeripheralBind(int index, const std::string& strOprkey)
{
    Peripheral* asked = service(currentKind);
    if (asked == nullptr) {
        return;
    }
    const std::string name = nameFor(currentKind, index, strOprkey);
    asked->unbind(index, name);
    dropPending([&](const PendingBinding& pending) {
        return pending.kind == currentKind && pending.oprKey == name;
    });
    if (ShortCutCover* cover = covers.of(index, strOprkey)) {
        showBindings(currentKind, {cover}); // a service may have bindings that cannot be cleared
    }
    emit m_manager->signalUpdateClearPeripheralsState(currentKind,
                                                      hasPeripheralBinded(currentKind));
}

void ShortCutMgr::Impl::addPeripheralBind(const SDeviceBindInfo& bindDesc)
{
    if (Peripheral* asked = service(currentKind)) {
        asked->bind({bindDesc.type, nameFor(currentKind, bindDesc.type, bindDesc.oprKey),
                     bindDesc.keyValue});
    }
}

bool ShortCutMgr::Impl::hasPeripheralBinded(EnumPeripheralShortCutType kind) const
{
    return covers.isAnyBound(kind);
}

QString ShortCutMgr::Impl::getBindedShortCutKeyName(int oprKey, const std::string& strOprKey) const
{
    const ShortCutCover* cover = covers.of(oprKey, strOprKey);
    return cover == nullptr ? QString() : cover->keyText(currentKind);
}

void ShortCutMgr::Impl::setOscBindData(EnumPeripheralShortCutType enCurType)
{
    showBindings(enCurType, covers.all());
}

void ShortCutMgr::Impl::reripheralBind(int nOprKey, std::string strOprKey, std::string strKeyValue,
                                       bool bBindSuccess, EnumPeripheralShortCutType enType)
{
    const QString key = QString::fromStdString(strKeyValue);
    ShortCutCover* cover = covers.of(nOprKey, strOprKey);
    if (bBindSuccess) {
        if (cover != nullptr) {
            cover->updateShortCutCoverKey(enType, key);
        }
        remember(enType, {nOprKey, nameFor(enType, nOprKey, strOprKey), strKeyValue});
        learnNext(cover);
        emit m_manager->signalUpdateClearPeripheralsState(enType, true);
        return;
    }
    currentPath = strOprKey;
    if (cover != nullptr && cover->keyText(enType) == key) {
        learnNext(cover);
        return; // it holds the key itself
    }
    const QPointer<Impl> self(this); // it may end while the question is open
    if (confirmMove() && self) {
        rebind(enType, {nOprKey, std::move(strOprKey), std::move(strKeyValue)});
    }
}

void ShortCutMgr::Impl::rebind(EnumPeripheralShortCutType kind, const SDeviceBindInfo& info)
{
    const QString key = QString::fromStdString(info.keyValue);
    const std::string name = nameFor(kind, info.type, info.oprKey);
    if (kind == PeripheralMidi || kind == PeripheralDmx) {
        Peripheral* asked = service(kind);
        if (asked == nullptr) {
            return;
        }
        asked->bind({info.type, name, info.keyValue});
    }
    covers.forEach([&](ShortCutCover& cover) {
        if (cover.keyText(kind) == key) {
            cover.updateShortCutCoverKey(kind, QString());
        }
    });
    if (ShortCutCover* cover = covers.of(info.type, info.oprKey)) {
        cover->updateShortCutCoverKey(kind, key);
    }
    remember(kind, {info.type, name, info.keyValue});
    emit m_manager->signalUpdateClearPeripheralsState(kind, hasPeripheralBinded(kind));
}

void ShortCutMgr::Impl::remember(EnumPeripheralShortCutType kind, const SDeviceBindInfo& info)
{
    dropPending([&](const PendingBinding& pending) {
        return pending.kind == kind
               && (pending.keyValue == info.keyValue || pending.oprKey == info.oprKey);
    });
    if (info.type == ShortCutOfPath && kind != PeripheralOsc) {
        pendingBindings.push_back({kind, ShortCutOfPath, info.oprKey, info.keyValue});
    }
}

void ShortCutMgr::Impl::clearPeripheral(EnumPeripheralShortCutType kind)
{
    Peripheral* asked = service(kind);
    if (asked == nullptr) {
        return;
    }
    for (const SDeviceBindInfo& info : asked->bindings()) {
        asked->unbind(info.type, info.oprKey);
    }
    dropPending([kind](const PendingBinding& pending) { return pending.kind == kind; });
    showBindings(kind, covers.all());
    emit m_manager->signalUpdateClearPeripheralsState(kind, hasPeripheralBinded(kind));
}

void ShortCutMgr::Impl::showPendingTexts() const
{
    const auto byPath = covers.byReportedPath();
    for (const PendingBinding& pending : pendingBindings) {
        const auto cover = byPath.find(pending.oprKey);
        if (cover != byPath.end() && pending.kind != PeripheralOsc) {
            cover->second->updateShortCutCoverKey(pending.kind,
                                                  QString::fromStdString(pending.keyValue));
        }
    }
}

// --- The manager ---

ShortCutMgr::ShortCutMgr() : m_impl(std::make_unique<Impl>(this))
{
    qRegisterMetaType<EnumPeripheralShortCutType>("EnumPeripheralShortCutType");
    qRegisterMetaType<std::string>();
}

ShortCutMgr::~ShortCutMgr() = default;

void ShortCutMgr::loadShortCutInfoList()
{
    m_impl->load();
}

void ShortCutMgr::saveShortCutInfoList()
{
    m_impl->save();
}

STLinkShortCutInfo ShortCutMgr::linkShortCutInfo() const
{
    return m_impl->table;
}

void ShortCutMgr::shortCutInfoSave(const STLinkShortCutInfo& info)
{
    STLinkShortCutInfo wanted = info; // it may be what linkShortCutInfo() is made of
    // As slotClearShortCut() does, but the file has no moment without keys.
    m_impl->clearKeys(Impl::Write::no);
    m_impl->table = std::move(wanted);
    m_impl->save();
    m_impl->load();
    setAllShortCutStr();
}

void ShortCutMgr::setAllShortCutStr()
{
    m_impl->covers.pushTexts(m_impl->table);
    m_impl->reportEmptiness();
    m_impl->covers.takeTexts(m_impl->table);
    m_impl->save();
}

void ShortCutMgr::setProgramShortCutInfo()
{
    m_impl->covers.takeTexts(m_impl->table);
}

void ShortCutMgr::setBindShortCutAndCover(const QList<ShortCutCover*>& covers)
{
    m_impl->bindShortCutAndCover(covers);
}

void ShortCutMgr::setDisbindShortCutAndCover(const QList<ShortCutCover*>& covers) const
{
    m_impl->disBindShortCutAndCover(covers);
}

void ShortCutMgr::delShortCutCover(ShortCutCover* cover)
{
    m_impl->disBindShortCutAndCover({cover});
}

void ShortCutMgr::delShortCutCoverList(const QList<ShortCutCover*>& covers)
{
    m_impl->disBindShortCutAndCover(covers);
}

void ShortCutMgr::rebindPeripheral(EnumPeripheralShortCutType kind, int type,
                                   const std::string& oprKey, const std::string& keyValue)
{
    m_impl->rebind(kind, {type, oprKey, keyValue});
}

void ShortCutMgr::updatePeripheralKeyName() const
{
    m_impl->showPendingTexts();
}

void ShortCutMgr::setMidiMgr(MidiPeripheral* midi)
{
    if (m_impl->use(m_impl->midi, midi, PeripheralMidi)) {
        m_impl->midi.follow(midi->devicesChanged, [this](const std::vector<SMIDIDevInfo>& devices) {
            emit signalUpdateDeviceStatus(PeripheralMidi, !devices.empty());
        });
    }
}

void ShortCutMgr::setDmxMgr(DmxPeripheral* dmx)
{
    m_impl->use(m_impl->dmx, dmx, PeripheralDmx);
}

void ShortCutMgr::setOscMgr(OscPeripheral* osc)
{
    const auto report = [this](const mivo::peripheralcontrol::SAddOSCInfo& info) {
        emit signalUpdateOscUrl("osc.udp://" + QSysInfo::machineHostName().toStdString() + ':'
                                + std::to_string(info.port) + '/');
    };
    if (m_impl->use(m_impl->osc, osc, PeripheralOsc)) {
        m_impl->osc.follow(osc->infoChanged, report);
        report(osc->info());
    }
}

bool ShortCutMgr::getProjectFileLoadComplete() const
{
    return m_impl->projectFileLoadComplete;
}

void ShortCutMgr::setProjectFileLoadComplete(bool complete)
{
    m_impl->projectFileLoadComplete = complete;
}

void ShortCutMgr::slotClearShortCut(bool clear, EnumPeripheralShortCutType kind)
{
    if (!clear) {
        return;
    }
    if (kind == PeripheralKeyboard) {
        m_impl->clearKeys(Impl::Write::yes);
    } else {
        m_impl->clearPeripheral(kind);
    }
}

void ShortCutMgr::slotShowAllShortCutCover(bool show, EnumPeripheralShortCutType kind) const
{
    m_impl->open(show, kind);
}

void ShortCutMgr::slotLockScreenChanged(bool locked)
{
    for (const auto kind : deviceKinds) {
        if (Peripheral* asked = m_impl->service(kind)) {
            asked->setLocked(locked);
        }
    }
}

} // namespace mivo::settings

#include "shortcutmgr.moc"
