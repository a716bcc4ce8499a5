#pragma once

#include "mivohostapi/peripherals.h"
#include "mivohostapi/settingsrecords.h"
#include "mivohostapi/shortcuttypes.h"
#include "mivohostapi/soundcardrecords.h"
#include "mivoqutils/post.h"
#include "mivosettingswidgets/export.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QMetaObject>
#include <QtCore/QMetaType>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace mivo::widgets {
class SpinEditBox;
}

namespace mivo::settings {

/// The type text under which a value travels through a call queued by slot name. A page with a type
/// of its own specialises it.
template <typename T>
constexpr const char* queuedTypeText = nullptr;

template <>
inline constexpr const char* queuedTypeText<int> = "const int";
template <>
inline constexpr const char* queuedTypeText<bool> = "const bool";
template <>
inline constexpr const char* queuedTypeText<double> = "const double";
template <>
inline constexpr const char* queuedTypeText<std::uint16_t> = "const uint16_t";
template <>
inline constexpr const char* queuedTypeText<std::string> = "std::string";
template <>
inline constexpr const char* queuedTypeText<std::vector<std::string>> = "std::vector<std::string>";
template <>
inline constexpr const char* queuedTypeText<QString> = "const QString&";
template <>
inline constexpr const char* queuedTypeText<QColor> = "const QColor";
template <>
inline constexpr const char* queuedTypeText<mivo::widgets::SpinEditBox*> = "SpinEditBox*";
template <>
inline constexpr const char* queuedTypeText<mivo::DynamicRangeConfig> = "DynamicRangeConfig";
template <>
inline constexpr const char* queuedTypeText<mivo::peripheralcontrol::SAddDMXInfo> = "SAddDMXInfo";
template <>
inline constexpr const char* queuedTypeText<mivo::peripheralcontrol::SAddOSCInfo> = "SAddOSCInfo";
template <>
inline constexpr const char* queuedTypeText<STResourceSettingsInfo> =
    "const STResourceSettingsInfo&";
template <>
inline constexpr const char* queuedTypeText<STMivoAutoStartSettings> =
    "const STMivoAutoStartSettings&";
template <>
inline constexpr const char* queuedTypeText<STMivoTimedShutdownSettings> =
    "const STMivoTimedShutdownSettings&";
template <>
inline constexpr const char* queuedTypeText<STMivoTimedAutomaticRestartSettings> =
    "const STMivoTimedAutomaticRestartSettings&";
template <>
inline constexpr const char* queuedTypeText<STFileInfoSettings> = "const STFileInfoSettings&";
template <>
inline constexpr const char* queuedTypeText<STAllDeviceSoundCardMappings> =
    "const STAllDeviceSoundCardMappings&";
template <>
inline constexpr const char* queuedTypeText<velorn::mediadispatch::STSoundCardMappingInfo> =
    "const STSoundCardMappingInfo&";
template <>
inline constexpr const char* queuedTypeText<mivo::STSoundCardChangeInfo> =
    "const STSoundCardChangeInfo&";
template <>
inline constexpr const char* queuedTypeText<STLocalSoundCardList> = "const STLocalSoundCardList&";
template <>
inline constexpr const char* queuedTypeText<STSoundCardMismatchInfo> =
    "const STSoundCardMismatchInfo&";
template <>
inline constexpr const char* queuedTypeText<STDeviceSoundCardVisibleInfo> =
    "const STDeviceSoundCardVisibleInfo&";

/// The type text in the form in which Qt compares it, which saves it a second search for each call;
/// registers the type under it first. Any thread.
template <typename T>
const char* queuedTypeName()
{
    static_assert(queuedTypeText<T> != nullptr, "a type that is queued needs its text");
    static const QByteArray name = [] {
        qRegisterMetaType<T>(queuedTypeText<T>);
        return QMetaObject::normalizedType(queuedTypeText<T>);
    }();
    return name.constData();
}

/// The types of all arguments, as they stand in a signature; always the same object. Any thread.
template <typename... T>
const QByteArray& queuedParameters()
{
    static const QByteArray parameters =
        '(' + QByteArrayList({queuedTypeName<T>()...}).join(',') + ')';
    return parameters;
}

/// The index of a class's slot by its name and the queuedParameters(), as of indexOfMethod(): -1
/// where there is none. What was found is kept, so the library that holds the class stays loaded.
/// Any thread.
MIVOSETTINGSWIDGETS_EXPORT int indexOfSlot(const QMetaObject* type, const char* name,
                                           const QByteArray& parameters);

/// Calls the slot of that name with `values` from the event loop; Qt warns of one that there is
/// not. Any thread.
template <typename... T>
void queueCall(QObject* receiver, const char* slot, const T&... values)
{
    const int index = indexOfSlot(receiver->metaObject(), slot, queuedParameters<T...>());
    if (index == -1) {
        QMetaObject::invokeMethod(receiver, slot, Qt::QueuedConnection,
                                  QGenericArgument(queuedTypeName<T>(), &values)...);
        return;
    }
    // What Qt itself does for a slot by its name, without looking up the slot and its types again.
    qutils::post(receiver, [receiver, index, kept = std::make_tuple(values...)] {
        const auto call = [receiver, index](const T&... each) {
            void* arguments[] = {nullptr, const_cast<void*>(static_cast<const void*>(&each))...};
            QMetaObject::metacall(receiver, QMetaObject::InvokeMetaMethod, index, arguments);
        };
        std::apply(call, kept);
    });
}

} // namespace mivo::settings
