// The support folders of a user of the workbench: the user's own, which pattern imports may append
// to, and the one shipped with the workbench, which is never written.
#pragma once

#include "cad/dxf/Result.h"

#include <filesystem>
#include <string>

namespace veltarn::support {

// The workbench's own support folder: $VELTARN_SUPPORT_DIR when set, else the folder the build
// was made from.
std::filesystem::path shippedSupportFolder();

// $XDG_CONFIG_HOME/veltarn/support, else $HOME/.config/veltarn/support.
std::filesystem::path defaultUserSupportFolder();

// Makes `userFolder` when missing and copies into it each file of `shippedFolder` it lacks (files
// already there are the user's and are kept). Returns the support path of a new user, the user's
// folder first: "<userFolder>;<shippedFolder>". Fails when the folder cannot be made or a file
// cannot be copied.
dxf::Result<std::string> prepareUserSupportFolder(const std::filesystem::path& userFolder,
                                                  const std::filesystem::path& shippedFolder);

}  // namespace veltarn::support
