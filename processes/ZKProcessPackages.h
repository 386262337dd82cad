#pragma once

// Packaged applications: whether a process belongs to an installed
// application package, the package's identity, and the package's small
// square logo. Every operation has the identifier, handle and name forms of
// ZKProcess.h, with access word 0x8.
//
// A process counts as packaged exactly when its package family name can be
// read. A process without a package gives false (and an empty icon path)
// everywhere.

#include "../foundation/ZKExport.h"
#include "../foundation/ZKString.h"
#include "ZKProcessHandles.h"

// The description of a package; every text converted from UTF-16 to UTF-8.
class ZK_API ProcessPackageInfo {
public:
    struct Version {
        unsigned short revision = 0;
        unsigned short build = 0;
        unsigned short minor = 0;
        unsigned short major = 0;
    };

    unsigned int flags = 0;
    ZKString path;
    ZKString fullName;
    ZKString familyName;
    unsigned int processorArchitecture = 0;
    Version version;
    ZKString name;
    ZKString publisher;
    ZKString resourceId;
    ZKString publisherId;
};

ZK_API bool IsProcessUniversalWindowsPlatform(unsigned long pid);
ZK_API bool IsProcessUniversalWindowsPlatform(ProcessHandle process);
ZK_API bool IsProcessUniversalWindowsPlatform(ZKString const& name);

// The package's full and family names replace `out`. Only "no package"
// gives false: any other answer of the system's length query is taken as a
// length, and the name read with it (possibly empty) counts as found.
ZK_API bool GetProcessPackageFullName(unsigned long pid, ZKString& out);
ZK_API bool GetProcessPackageFullName(ProcessHandle process, ZKString& out);
ZK_API bool GetProcessPackageFullName(ZKString const& name, ZKString& out);
ZK_API bool GetProcessPackageFamilyName(unsigned long pid, ZKString& out);
ZK_API bool GetProcessPackageFamilyName(ProcessHandle process, ZKString& out);
ZK_API bool GetProcessPackageFamilyName(ZKString const& name, ZKString& out);

// Fills `out` from the package's description; false, with `out` unchanged,
// when the process has no package or the description cannot be read.
ZK_API bool GetProcessPackageInfo(unsigned long pid, ProcessPackageInfo& out);
ZK_API bool GetProcessPackageInfo(ProcessHandle process, ProcessPackageInfo& out);
ZK_API bool GetProcessPackageInfo(ZKString const& name, ProcessPackageInfo& out);

// The file of the package's small square logo, as the system resolves it
// for its scale and theme (the file is not checked). The manifest is read
// from the executable's directory; without a logo there the resource string
// is still resolved. Empty for a process without a package and on every
// failure.
ZK_API ZKString GetUniversalWindowsPlatformIconPath(unsigned long pid);
ZK_API ZKString GetUniversalWindowsPlatformIconPath(ProcessHandle process);
ZK_API ZKString GetUniversalWindowsPlatformIconPath(ZKString const& name);
