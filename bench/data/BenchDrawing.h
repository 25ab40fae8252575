// A new, empty workbench drawing seen through the seam, for the object-data benchmark.
#pragma once

#include "host/Database.h"

#include <memory>

namespace veltarn::bench {

class BenchDrawing {
public:
    virtual ~BenchDrawing() = default;
    static std::unique_ptr<BenchDrawing> createNew();
    virtual host::Database& db() = 0;
};

}  // namespace veltarn::bench
