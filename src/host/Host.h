// The one object through which the module reaches every service of the CAD program.
#pragma once

#include <memory>
#include <string>

#include "host/CommandStack.h"
#include "host/Database.h"
#include "host/Dialogs.h"
#include "host/Documents.h"
#include "host/Editor.h"
#include "host/Environment.h"
#include "host/Palettes.h"
#include "host/SystemVariables.h"

namespace veltarn::host {

// The module gets one Host when it is loaded and keeps it until it is unloaded; every service it
// hands out lives as long as the Host.
class Host {
public:
    virtual ~Host() = default;

    virtual Documents& documents() = 0;
    virtual Editor& editor() = 0;
    virtual CommandStack& commandStack() = 0;
    virtual SystemVariables& systemVariables() = 0;
    virtual Environment& environment() = 0;
    virtual Dialogs& dialogs() = 0;
    virtual Palettes& palettes() = 0;

    // The drawing that new objects go to: the current document's, unless a command has set
    // another one for its duration. Null when no drawing is open.
    virtual Database* workingDatabase() = 0;

    // Reads a drawing file into a side database, not shown and not current, for copying records
    // out of it. Null when the file cannot be read or is not a drawing this host reads.
    virtual std::unique_ptr<Database> readDrawing(const std::wstring& path) = 0;
};

}  // namespace veltarn::host
