#include "shortcuts/shortcutmgrimpl.h"

#include "mivosettingswidgets/shortcuttable.h"
#include "mivosettingswidgets/texts.h"

#include <mivowidgets/shortcutcover.h>
#include <mivowidgets/tipdialog.h>

#include <QtCore/QPointer>
#include <QtWidgets/QApplication>

#include <map>
#include <string_view>
#include <utility>

namespace mivo::settings {

using mivo::peripheralcontrol::SDeviceBindInfo;
using mivo::widgets::ShortCutCover;
using mivo::widgets::TipDialog;

namespace {

/// The keys of actions, which type and path tell apart. Borrowed from the entries.
using KeyTexts = std::map<std::pair<EnumShortCutType, std::string_view>, std::string_view>;

KeyTexts keyTextsOf(const std::vector<STShortCutItem>& items)
{
    KeyTexts texts;
    for (const STShortCutItem& item : items) {
        texts[{item.type, item.path}] = item.shortCutStr;
    }
    return texts;
}

} // namespace

ShortCutMgr::Impl::Impl(ShortCutMgr* manager)
    : devices(this, [this](const ControlMessage& message) { emitMessage(message); }),
      m_manager(manager)
{
    // Another cover with the focus asks to learn by itself. While another application is in front,
    // as one that plays a controller, the cover is waited for.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*old*/, QWidget* focused) {
        if (focused != nullptr && qobject_cast<ShortCutCover*>(focused) == nullptr) {
            stopLearning();
        }
    });
}

// --- Keys ---

void ShortCutMgr::Impl::save()
{
    const std::string aside = keys.save();
    if (!aside.empty()) {
        emit m_manager->signalShortCutFilePutAside(aside);
    }
    emit m_manager->signalShortCutSave(keys.lists());
}

void ShortCutMgr::Impl::takeTexts()
{
    if (!covers.isAsPushed(keys.state())) {
        keys.edit([this](STLinkShortCutInfo& lists) { return covers.takeTexts(lists); });
    }
}

void ShortCutMgr::Impl::onSaveShortCutInfoList(bool isSave)
{
    if (isSave) {
        save();
    }
}

void ShortCutMgr::Impl::addShortCutsItem(EnumShortCutType type, const std::string& path,
                                         const std::string& shortCutStr,
                                         ShortCutModuleType moduleType)
{
    keys.put(type, path, shortCutStr, moduleType);
    save();
    emit m_manager->signalClearShortCutState(false);
    emit m_manager->signalShortCutStrChanged(type, path, shortCutStr);
}

void ShortCutMgr::Impl::delShortCutsItem(EnumShortCutType type, const std::string& path,
                                         ShortCutModuleType moduleType)
{
    if (keys.remove(type, path, moduleType)) {
        save();
        emit m_manager->signalShortCutStrChanged(type, path, std::string());
    } else if (keys.isEmpty()) {
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
    const STShortCutItem* holder = keys.holderOf(shortCutStr);
    if (holder == nullptr) {
        return false;
    }
    if (KeyTable::matches(*holder, type, path)) {
        return true;
    }
    // While the question is open the table may change, and this or the cover that asks (with its
    // path) may be destroyed.
    const STShortCutItem asking{type, path, shortCutStr};
    const QPointer<Impl> self(this);
    const bool isConfirmed = confirmMove();
    if (!self || !isConfirmed || covers.of(asking.type, asking.path) == nullptr) {
        return true;
    }
    // A file may hold a text more than once.
    const auto old = keys.takeHoldersOf(asking.shortCutStr);
    for (const STShortCutItem& item : old) {
        if (ShortCutCover* cover = covers.of(item.type, item.path)) {
            cover->shortCutStrChanged(QString());
        }
        emit m_manager->signalShortCutStrChanged(item.type, item.path, std::string());
        if (!self) {
            return true;
        }
    }
    return false;
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

std::vector<STShortCutItem> ShortCutMgr::Impl::takeKeys()
{
    auto before = keys.exchange({}).shortCutInfoList;
    covers.forEach([](ShortCutCover& cover) { cover.shortCutStrChanged(QString()); });
    return before;
}

void ShortCutMgr::Impl::clearKeys()
{
    const auto before = takeKeys();
    save();
    emit m_manager->signalClearShortCutState(true);
    tellChanges(before, {});
}

void ShortCutMgr::Impl::tellChanges(const std::vector<STShortCutItem>& before,
                                    const std::vector<STShortCutItem>& after)
{
    const KeyTexts old = keyTextsOf(before);
    const KeyTexts now = keyTextsOf(after);
    const QPointer<Impl> self(this); // a slot may end it
    for (const auto& [action, keys] : old) {
        if (self && now.count(action) == 0) {
            emit m_manager->signalShortCutStrChanged(action.first, std::string(action.second), {});
        }
    }
    for (const auto& [action, keys] : now) {
        const auto other = old.find(action);
        if (self && (other == old.end() || other->second != keys)) {
            emit m_manager->signalShortCutStrChanged(action.first, std::string(action.second),
                                                     std::string(keys));
        }
    }
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
    if (cover == m_learner) {
        stopLearning();
    }
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
    devices.stopLearning(); // hiding a cover gives the focus to the next one, which asks to learn
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

void ShortCutMgr::Impl::showBindings(EnumPeripheralShortCutType kind,
                                     const QList<ShortCutCover*>& shown) const
{
    if (devices.service(kind) != nullptr && !shown.isEmpty()) {
        ShortCutCovers::showBindings(kind, devices.bindings(kind), shown);
    }
}

void ShortCutMgr::Impl::emitMessage(const ControlMessage& message)
{
    if (devices.isLocked()) {
        return; // it was on its way already
    }
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
    m_learner = covers.of(index, strOprkey);
    devices.learn(currentKind, index, strOprkey);
}

void ShortCutMgr::Impl::stopLearning()
{
    if (std::exchange(m_learner, nullptr) != nullptr) {
        devices.stopLearning();
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
    if (devices.service(currentKind) == nullptr) {
        return;
    }
    devices.unbind(currentKind, index, strOprkey);
    if (ShortCutCover* cover = covers.of(index, strOprkey)) {
        showBindings(currentKind, {cover}); // a service may have bindings that cannot be cleared
    }
    emit m_manager->signalUpdateClearPeripheralsState(currentKind,
                                                      hasPeripheralBinded(currentKind));
}

void ShortCutMgr::Impl::addPeripheralBind(const SDeviceBindInfo& bindDesc)
{
    devices.bind(currentKind, bindDesc);
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
        devices.remember(enType, {nOprKey, strOprKey, strKeyValue});
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
    if (!devices.bind(kind, info)) {
        return;
    }
    covers.forEach([&](ShortCutCover& cover) {
        if (cover.keyText(kind) == key) {
            cover.updateShortCutCoverKey(kind, QString());
        }
    });
    if (ShortCutCover* cover = covers.of(info.type, info.oprKey)) {
        cover->updateShortCutCoverKey(kind, key);
    }
    emit m_manager->signalUpdateClearPeripheralsState(kind, hasPeripheralBinded(kind));
}

void ShortCutMgr::Impl::clearPeripheral(EnumPeripheralShortCutType kind)
{
    if (devices.service(kind) == nullptr) {
        return;
    }
    devices.clear(kind);
    showBindings(kind, covers.all());
    emit m_manager->signalUpdateClearPeripheralsState(kind, hasPeripheralBinded(kind));
}

void ShortCutMgr::Impl::showPendingTexts() const
{
    const auto byPath = covers.byReportedPath();
    for (const PendingBinding& pending : devices.pending()) {
        const auto cover = byPath.find(pending.oprKey);
        if (cover != byPath.end() && pending.kind != PeripheralOsc) {
            cover->second->updateShortCutCoverKey(pending.kind,
                                                  QString::fromStdString(pending.keyValue));
        }
    }
}

} // namespace mivo::settings
