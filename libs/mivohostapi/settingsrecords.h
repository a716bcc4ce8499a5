#pragma once

#include <QtCore/QMetaType>

#include <ostream>

// Records of the settings store: values, equal when all their fields are. Their defaults are what a
// first run shows.

/// Kinds of resources that have no length of their own.
enum EnumResourceKind { ResourcePicture = 1, ResourcePowerPoint = 3, ResourceOSD = 32 };

/// How long a resource of one kind plays.
struct STResourceSettingsInfo
{
    int resourceType = ResourcePicture; ///< an EnumResourceKind
    int duration = 5000;                ///< milliseconds

    friend bool operator==(const STResourceSettingsInfo& a, const STResourceSettingsInfo& b)
    {
        return a.resourceType == b.resourceType && a.duration == b.duration;
    }
    friend std::ostream& operator<<(std::ostream& out, const STResourceSettingsInfo& info)
    {
        return out << "kind " << info.resourceType << ": " << info.duration << " ms";
    }
};
Q_DECLARE_METATYPE(STResourceSettingsInfo)
