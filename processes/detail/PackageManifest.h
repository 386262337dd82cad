#pragma once

// The string and XML side of a packaged application's logo: the logo's
// path in the application manifest, and the indirect resource string that
// the shell resolves into the logo file for the system's scale and theme.

#include "../../foundation/ZKString.h"

namespace zk64::detail {

// The "Square44x44Logo" attribute of the first "uap:VisualElements" under
// the first "Application" under the first "Applications" under the root
// element of the manifest at `path`, whatever the root is called. Empty
// when the file cannot be loaded, an element or the attribute is missing.
ZKString ManifestLogo(char const* path);

// "@{fullName?ms-resource://packageName/Files/logo}", with every backslash
// of the logo turned into a forward slash. An empty logo leaves nothing
// behind the last slash.
ZKString LogoResourceString(ZKString const& fullName, ZKString const& packageName, ZKString const& logo);

}  // namespace zk64::detail
