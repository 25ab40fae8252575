#include "TestSupport.h"

#include "ScratchFiles.h"

#include <gtest/gtest.h>


namespace veltarn::db::test {

std::filesystem::path scratchDir(const std::string& name) { return testtools::scratchDir("db", name); }

std::filesystem::path madeByScript(const std::string& script) {
    return testtools::madeOnce(script + ".dxf", std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/" + script, script);
}

std::string withoutSeed(const Database& db) {
    std::string text = db.toText().value();
    std::size_t at = text.find("$HANDSEED");
    if (at == std::string::npos) return text;
    std::size_t value = text.find("\n", text.find("\n", at) + 1);  // past the variable and the code lines
    return text.erase(value + 1, text.find("\n", value + 1) - value);
}

Database loadOrFail(const std::filesystem::path& file) {
    auto db = Database::load(file);
    if (!db) {
        ADD_FAILURE() << db.message();
        return Database::createNew();
    }
    return std::move(db).value();
}

Database parseOrFail(const std::string& text) {
    auto db = Database::parse(text, "test.dxf");
    if (!db) {
        ADD_FAILURE() << db.message();
        return Database::createNew();
    }
    return std::move(db).value();
}

}  // namespace veltarn::db::test
