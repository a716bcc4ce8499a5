#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>

#include <map>

/// The resolutions that presentations are offered in, "width*height", by the keys under which
/// stores keep the choice. Any thread.
inline const std::map<int, QString>& pptResolutions()
{
    static const std::map<int, QString> resolutions{
        {1, QStringLiteral("1920*1080")},  {2, QStringLiteral("800*600")},
        {3, QStringLiteral("1024*768")},   {4, QStringLiteral("1152*864")},
        {5, QStringLiteral("1280*720")},   {6, QStringLiteral("1280*768")},
        {7, QStringLiteral("1280*800")},   {8, QStringLiteral("1280*960")},
        {9, QStringLiteral("1280*1024")},  {10, QStringLiteral("1360*768")},
        {11, QStringLiteral("1364*1024")}, {12, QStringLiteral("1366*768")},
        {13, QStringLiteral("1364*768")}, // behind the wider one; kept on purpose
        {14, QStringLiteral("1366*800")},  {15, QStringLiteral("1400*1050")},
        {16, QStringLiteral("1440*900")},  {17, QStringLiteral("1600*900")},
        {18, QStringLiteral("1600*1200")}, {19, QStringLiteral("1680*1050")},
        {20, QStringLiteral("1792*1280")}, {21, QStringLiteral("1920*1200")},
        {22, QStringLiteral("2048*1080")}, {23, QStringLiteral("2048*1152")},
        {24, QStringLiteral("2304*1152")}, {25, QStringLiteral("2560*1080")},
        {26, QStringLiteral("2560*1400")}, {27, QStringLiteral("2560*1600")},
        {28, QStringLiteral("3840*1080")}, {29, QStringLiteral("3840*2160")}};
    return resolutions;
}

/// The pixels of the resolution with that key; an invalid size where there is none.
inline QSize pptResolution(int key)
{
    const auto found = pptResolutions().find(key);
    if (found == pptResolutions().end()) {
        return {};
    }
    const QString& text = found->second;
    const int separator = text.indexOf(QLatin1Char('*'));
    return {text.leftRef(separator).toInt(), text.midRef(separator + 1).toInt()};
}
