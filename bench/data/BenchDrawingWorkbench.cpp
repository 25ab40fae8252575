// The benchmark's drawing: a new workbench drawing, opened through the same view of the seam as
// the object-data tests use.
#include "BenchDrawing.h"

#include "TestDrawing.h"

namespace veltarn::bench {

namespace {

class Workbench : public BenchDrawing {
public:
    Workbench() : drawing_(test::TestDrawing::createNew()) {}
    host::Database& db() override { return drawing_->db(); }

private:
    std::unique_ptr<test::TestDrawing> drawing_;
};

}  // namespace

std::unique_ptr<BenchDrawing> BenchDrawing::createNew() { return std::make_unique<Workbench>(); }

}  // namespace veltarn::bench
