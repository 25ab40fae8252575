// An xrecord: a chain of typed values stored in the drawing for an application.
#pragma once

#include "host/DbObject.h"
#include "host/ResultBuffer.h"

namespace veltarn::host {

class DbXrecord : public DbObject {
public:
    // The whole chain in stored order.
    virtual ResultBuffer data() const = 0;
    // Replaces the whole chain. Needs a write open; false otherwise, and when a value does not fit
    // its group code (a text under an integer code), in which case nothing changes.
    virtual bool setData(const ResultBuffer& chain) = 0;
};

}  // namespace veltarn::host
