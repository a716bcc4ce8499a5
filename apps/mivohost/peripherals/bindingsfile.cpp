#include "peripherals/bindingsfile.h"

#include "base/hostlog.h"
#include "base/hosttext.h"
#include "peripherals/peripherals.h"

#include <mivosettingswidgets/shortcutfile.h>
#include <mivosettingswidgets/shortcutmgr.h>
#include <mivosettingswidgets/shortcuttable.h>
#include <mivowidgets/shortcutcover.h>
#include <zrcutils/nocachefile.h>

#include <algorithm>
#include <exception>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>
#include <vector>

namespace mivohost {

using mivo::peripheralcontrol::SDeviceBindInfo;
using mivo::settings::peripheralActions;
using mivo::settings::ShortCutMgr;

namespace {

using Infos = Peripherals::Bindings;

constexpr int mostLogged = 10; // of the bindings of a file that are left out

struct Bindings
{
    STLinkShortCutInfo keys;
    Infos midi;
    Infos dmx;
};

/// A key sequence as it is when it is pressed, whatever the order of its names; empty when it is
/// none, or the application's own.
std::string bindableKeys(const std::string& text)
{
    const QKeySequence sequence = mivo::widgets::keySequenceOf(QString::fromStdString(text));
    if (sequence.isEmpty()) {
        return {};
    }
    constexpr int modifiers = static_cast<int>(Qt::KeyboardModifierMask);
    const QString keys = mivo::widgets::keySequenceText(
        sequence[0] & ~modifiers, Qt::KeyboardModifiers(sequence[0] & modifiers));
    return mivo::settings::isReservedKeySequence(keys) ? std::string() : keys.toStdString();
}

/// Throws std::runtime_error where the text is no shortcut file.
Bindings bindingsOf(const std::string& json)
{
    Bindings bindings;
    int leftOut = 0;
    std::set<std::string> sequences;
    std::set<std::tuple<const Infos*, int, std::string>> actions; // of keys, MIDI or DMX each
    for (STShortCutItem& item : mivo::settings::parseShortCuts(json)) {
        const auto action =
            std::find_if(peripheralActions.begin(), peripheralActions.end(),
                         [&item](const auto& each) { return each.type == item.type; });
        if (action != peripheralActions.end()) {
            item.path = action->path; // the type identifies it; a file may have another path
        }
        Infos* const device = MidiService::isControl(item.shortCutStr)  ? &bindings.midi
                              : DmxService::isControl(item.shortCutStr) ? &bindings.dmx
                                                                        : nullptr;
        const std::string sequence =
            device == nullptr ? bindableKeys(item.shortCutStr) : item.shortCutStr;
        const std::tuple identity(device, static_cast<int>(item.type), item.path);
        if (sequence.empty() || sequences.count(sequence) > 0 || actions.count(identity) > 0) {
            if (++leftOut <= mostLogged) {
                hostLog()->warn("\"{}\" cannot be bound to {}", shortened(item.shortCutStr),
                                shortened(item.path));
            }
            continue;
        }
        sequences.insert(sequence);
        actions.insert(identity);
        if (device != nullptr) {
            // Under the name that the manager of the shortcuts gives it.
            device->push_back(
                {item.type,
                 item.type == ShortCutOfPath ? mivo::settings::reportedPath(item.path) : item.path,
                 sequence});
            continue;
        }
        item.shortCutStr = sequence;
        (item.type == ShortCutOfPath ? bindings.keys.pathShortCutList
                                     : bindings.keys.indexShortCutList)
            .push_back(item);
    }
    if (leftOut > mostLogged) {
        hostLog()->warn("{} more bindings of the file are left out", leftOut - mostLogged);
    }
    return bindings;
}

/// Without `cause`, which is empty then, the store has told it already.
QString notSaved(const std::error_code& cause)
{
    const QString reason = QStringLiteral("the bindings could not be saved; the old ones stay");
    return cause ? QStringLiteral("%1 (%2)").arg(reason, qt_error_string(cause.value())) : reason;
}

} // namespace

std::string exportedBindings(const ShortCutMgr& manager, Peripherals& peripherals)
{
    // All in one list: texts of keys, MIDI controls and DMX channels have different forms.
    auto items = manager.linkShortCutInfo().shortCutInfoList;
    for (const auto& bindings : {peripherals.midi().bindings(), peripherals.dmx().bindings()}) {
        for (const SDeviceBindInfo& info : bindings) {
            items.push_back({static_cast<EnumShortCutType>(info.type), info.oprKey, info.keyValue});
        }
    }
    return mivo::settings::formatShortCuts(items);
}

QString importBindings(const std::string& json, ShortCutMgr& manager, Peripherals& peripherals)
{
    Bindings wanted;
    try {
        wanted = bindingsOf(json);
    } catch (const std::exception& error) {
        hostLog()->warn("no shortcut file: {}", error.what());
        const QString line = QString::fromUtf8(error.what()).section(':', 1, 1).section(' ', 0, 0);
        return hostText("InLine").arg(reasonText(QStringLiteral("not a shortcut file")), line);
    }
    auto keys = wanted.keys.indexShortCutList;
    keys.insert(keys.end(), wanted.keys.pathShortCutList.begin(),
                wanted.keys.pathShortCutList.end());
    // Beside the old file at first, which shows that there is room. What fails after that has the
    // old bindings of devices restored.
    std::error_code problem;
    NoCacheFile::Replacement file(mivo::settings::shortCutFilePath().toStdString(),
                                  mivo::settings::formatShortCuts(keys), problem);
    if (problem) {
        return notSaved(problem);
    }
    const auto midi = peripherals.midi().bindings();
    const auto dmx = peripherals.dmx().bindings();
    peripherals.setBindings(wanted.midi, wanted.dmx);
    if (!peripherals.areBindingsStored() || !file.commit(problem)) {
        peripherals.setBindings(midi, dmx);
        return notSaved(problem);
    }
    manager.shortCutInfoSave(wanted.keys);
    return {};
}

} // namespace mivohost
