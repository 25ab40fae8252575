#include "cad/dxf/NumberText.h"
#include <gtest/gtest.h>
using namespace veltarn::dxf;
TEST(NumberText, placeholder) { EXPECT_EQ(formatReal(0.1), "0.1"); }
