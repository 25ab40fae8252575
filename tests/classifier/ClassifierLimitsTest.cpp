// The reader on inputs whose cost once grew faster than their size: macros that double at each
// level.
#include "classifier/ClassifierReader.h"

#include "cad/editor/SystemVariableTable.h"
#include "classifier/MacroTable.h"
#include "host/Utf8.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace veltarn {
namespace {

namespace fs = std::filesystem;

// Macros m0 .. m`levels`: each level's value is the next level's reference twice.
MacroTable doubling(int levels, const std::wstring& last) {
    MacroTable macros;
    for (int i = 0; i < levels; ++i) {
        const std::wstring next = L"$(m" + std::to_wstring(i + 1) + L")";
        macros.set(MacroTable::referenceOf(L"m" + std::to_wstring(i)), next + next);
    }
    macros.set(MacroTable::referenceOf(L"m" + std::to_wstring(levels)), last);
    return macros;
}

TEST(MacroLimits, DoublingMacrosExpandInFullWithinTheLimitAndNotBeyond) {
    const std::optional<std::wstring> twenty = doubling(20, L"ab$(none)").expand(L"<$(M0)>");
    ASSERT_TRUE(twenty);
    ASSERT_EQ(twenty->size(), 2 + (std::size_t{1} << 20) * 9);
    EXPECT_EQ(twenty->substr(0, 20), L"<ab$(none)ab$(none)a");
    EXPECT_EQ(twenty->substr(twenty->size() - 10), L"ab$(none)>");

    EXPECT_FALSE(doubling(24, L"abcd").expand(L"$(m0)")) << "64 Mi characters is past the limit";
    EXPECT_FALSE(doubling(30, L"").expand(L"$(m0)")) << "a billion replacements that write nothing are too";
    EXPECT_EQ(doubling(3, L"x").expand(L"$(m0"), L"$(m0") << "a reference without its end stays as it is";
}

}  // namespace
}  // namespace veltarn
