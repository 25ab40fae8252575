// Multileaders: geometry read as another reader sees it, written back with only what changed, broken
// groups refused, new ones that another reader opens and audits clean.
#include "TestSupport.h"

#include "cad/db/EntityProperties.h"
#include "cad/db/kinds/Multileader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <set>

namespace veltarn::db {
namespace {

using Content = Multileader::Content;

std::string num(double v) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", v);
    return text;
}
std::string pt(const Point3& p) { return num(p.x) + "," + num(p.y) + "," + num(p.z); }

// The value in the form dump_multileaders.py prints, without its "own" line.
std::string describe(Handle handle, const Multileader& m) {
    std::string kind = m.content == Content::Mtext ? "mtext" : m.content == Content::Block ? "block" : "none";
    std::string out = formatHandle(handle) + " " + kind + " scale=" + num(m.scale) + " base=" + pt(m.basePoint) +
                      " height=" + num(m.textHeight) + " arrow=" + num(m.arrowSize) + " gap=" + num(m.landingGap) +
                      " plane=" + pt(m.planeOrigin) + "\n";
    if (m.content == Content::Mtext)
        out += "text \"" + m.text + "\" at=" + pt(m.textLocation) + " direction=" + pt(m.textDirection) + " rotation=" +
               num(std::atan2(m.textDirection.y, m.textDirection.x)) + " attachment=" + std::to_string(m.textAttachment) + "\n";
    if (m.content == Content::Block)
        out += "block " + formatHandle(m.block) + " at=" + pt(m.blockPosition) + " scale=" + pt(m.blockScale) +
               " rotation=" + num(m.blockRotation) + "\n";
    for (const Multileader::Leader& leader : m.leaders) {
        out += "leader " + std::to_string(leader.index) + " at=" + pt(leader.connection) + " dogleg=" +
               pt(leader.doglegDirection) + " " + num(leader.doglegLength) + "\n";
        for (const Multileader::Line& line : leader.lines) {
            out += "line " + std::to_string(line.index);
            for (const Point3& p : line.vertices) out += " " + pt(p);
            out += "\n";
        }
    }
    return out;
}

}  // namespace

// Failures show the value as the dump does.
void PrintTo(const Multileader& m, std::ostream* os) {
    Multileader both = m;
    both.content = Content::Mtext;
    *os << "\n" << describe(0, m) << describe(0, both).substr(describe(0, both).find("\ntext")) << "block " << formatHandle(m.block)
        << " at=" << pt(m.blockPosition) << " scale=" << pt(m.blockScale) << " rotation=" << num(m.blockRotation) << "\n";
}

namespace {

// What the independent reader sees, per handle: the description and the "own" line apart.
struct Seen {
    std::map<std::string, std::string> geometry, own;
};

Seen dump(const std::filesystem::path& file) {
    std::string out;
    EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/dump_multileaders.py '" + file.string() + "'", &out), 0) << out;
    Seen seen;
    std::string handle;
    for (std::size_t at = 0; at < out.size();) {
        std::size_t end = out.find('\n', at);
        if (end == std::string::npos) end = out.size();
        std::string line = out.substr(at, end - at);
        at = end + 1;
        if (line.rfind("own ", 0) == 0) {
            seen.own[handle] = line;
        } else {
            if (line.find(" scale=") != std::string::npos && line.rfind("block ", 0) != 0) handle = line.substr(0, line.find(' '));
            seen.geometry[handle] += line + "\n";
        }
    }
    return seen;
}

std::filesystem::path fixture(const std::string& version) {
    auto dir = std::filesystem::path(VELTARN_BINARY_DIR) / "test-scratch" / "db-generated";
    std::filesystem::create_directories(dir);
    auto file = dir / ("multileaders-" + version + ".dxf");
    if (!std::filesystem::exists(file)) {  // written aside first: a failed run leaves no half file behind
        std::string out;
        auto partial = dir / (file.filename().string() + ".part");
        EXPECT_EQ(test::runPython(std::string(VELTARN_SOURCE_DIR) + "/tests/cad/db/data/make_multileaders.py '" + partial.string() + "' " + version, &out), 0) << out;
        std::filesystem::rename(partial, file);
    }
    return file;
}

std::vector<Handle> multileaders(const Database& db) {
    std::vector<Handle> out;
    for (Handle entity : db.entitiesOf(db.modelSpace()))
        if (db.typeName(entity) == "MULTILEADER") out.push_back(entity);
    return out;
}

std::size_t differingTags(const TagList& a, const TagList& b) {
    if (a.size() != b.size()) return static_cast<std::size_t>(-1);
    std::size_t n = 0;
    for (std::size_t i = 0; i < a.size(); ++i) n += !(a[i] == b[i]);
    return n;
}

TEST(Multileader, ReadsWhatTheIndependentWriterWroteAndChangesOnlyWhatItIsAsked) {
    for (std::string version : {"R2007", "R2010", "R2018"}) {
        SCOPED_TRACE(version);
        auto file = fixture(version);
        Database db = test::loadOrFail(file);
        Seen seen = dump(file);
        std::vector<Handle> handles = multileaders(db);
        ASSERT_EQ(handles.size(), 3u);
        for (Handle h : handles) {
            TagList tags = db.tags(h);
            auto value = multileader(tags);
            ASSERT_TRUE(value.ok()) << value.message();
            EXPECT_EQ(describe(h, *value), seen.geometry[formatHandle(h)]);

            TagList renamed = tags;  // the other spelling reads the same
            renamed[0].value = "MLEADER";
            ASSERT_TRUE(multileader(renamed).ok());
            EXPECT_EQ(*multileader(renamed), *value);

            // One value changed: one tag (or point) changes, everything else stays as it was.
            TagList changed = tags;
            Multileader edit = *value;
            edit.leaders.at(0).lines.at(0).vertices.at(0).y += 1;
            ASSERT_TRUE(setMultileader(changed, edit).ok());
            EXPECT_EQ(differingTags(tags, changed), 1u);
            edit = *value;
            edit.scale = 2;  // the context's and the entity's copy
            ASSERT_TRUE(setMultileader(changed = tags, edit).ok());
            EXPECT_EQ(differingTags(tags, changed), 2u);
            if (value->content == Content::Mtext) {
                edit = *value;
                edit.text = "changed";
                ASSERT_TRUE(setMultileader(changed = tags, edit).ok());
                EXPECT_EQ(differingTags(tags, changed), 1u);
            }
            // Unchanged, the tags come back as they were.
            ASSERT_TRUE(setMultileader(changed = tags, *value).ok());
            EXPECT_EQ(changed, tags);
        }
    }
}

// The value without the other content kind's values, which are not written.
Multileader contentOnly(Multileader m) {
    Multileader defaults;
    if (m.content != Content::Mtext) {
        m.text = defaults.text;
        m.textLocation = defaults.textLocation;
        m.textDirection = defaults.textDirection;
        m.textAttachment = defaults.textAttachment;
    }
    if (m.content != Content::Block) {
        m.block = defaults.block;
        m.blockPosition = defaults.blockPosition;
        m.blockScale = defaults.blockScale;
        m.blockRotation = defaults.blockRotation;
    }
    return m;
}

// A leader to add: index and line indices -1, the dogleg pointing left.
Multileader::Leader newLeader(const Point3& connection, const std::vector<std::vector<Point3>>& lines) {
    Multileader::Leader leader;
    leader.connection = connection;
    leader.doglegDirection = {-1, 0, 0};
    leader.doglegLength = 6;
    for (const auto& vertices : lines) leader.lines.push_back({vertices, -1});
    return leader;
}

// Writes each value into its multileader, saves, and checks that the tags read back as asked (new
// leaders and lines numbered afresh, indices unique) and that the independent reader sees the same.
void expectWritten(Database& db, std::map<Handle, Multileader> asked, const std::string& name) {
    for (auto& [handle, value] : asked) {
        ObjectWriter writer = db.openForWrite(handle);
        auto written = setMultileader(writer.tags(), value);
        ASSERT_TRUE(written.ok()) << written.message();
    }
    auto dir = test::scratchDir(name);
    ASSERT_TRUE(db.save(dir / "out.dxf").ok());
    EXPECT_EQ(test::audit(dir / "out.dxf"), "");
    Seen seen = dump(dir / "out.dxf");
    Database back = test::loadOrFail(dir / "out.dxf");
    for (auto& [handle, want] : asked) {
        SCOPED_TRACE(formatHandle(handle));
        auto got = multileader(back.tags(handle));
        ASSERT_TRUE(got.ok()) << got.message();
        ASSERT_EQ(got->leaders.size(), want.leaders.size());
        std::set<int> leaderIndices;
        for (std::size_t i = 0; i < want.leaders.size(); ++i) {
            Multileader::Leader& leader = want.leaders[i];
            if (leader.index < 0) leader.index = got->leaders[i].index;
            leaderIndices.insert(got->leaders[i].index);
            ASSERT_EQ(got->leaders[i].lines.size(), leader.lines.size());
            std::set<int> lineIndices;
            for (std::size_t j = 0; j < leader.lines.size(); ++j) {
                if (leader.lines[j].index < 0) leader.lines[j].index = got->leaders[i].lines[j].index;
                lineIndices.insert(got->leaders[i].lines[j].index);
            }
            EXPECT_EQ(lineIndices.size(), leader.lines.size());
        }
        EXPECT_EQ(leaderIndices.size(), want.leaders.size());
        EXPECT_EQ(*got, contentOnly(want));
        EXPECT_EQ(seen.geometry[formatHandle(handle)], describe(handle, want));
        std::string own = seen.own[formatHandle(handle)];
        int type = want.content == Content::Mtext ? 2 : want.content == Content::Block ? 1 : 0;
        EXPECT_NE(own.find("type=" + std::to_string(type) + " scale=" + num(want.scale) + " arrow=" + num(want.arrowSize)), std::string::npos) << own;
        if (want.content == Content::Block) {
            EXPECT_NE(own.find("block=" + formatHandle(want.block) + " block_scale=" + pt(want.blockScale)), std::string::npos) << own;
        }
    }
}

TEST(Multileader, LeadersLinesAndContentChangedAsAskedAreWhatTheIndependentReaderSees) {
    {
        Database db = test::loadOrFail(fixture("R2018"));
        std::vector<Handle> h = multileaders(db);
        ASSERT_EQ(h.size(), 3u);
        // Text, vertices and lines of the MTEXT one; a line removed, a line and a leader added; all moved.
        Multileader text = *multileader(db.tags(h[0]));
        text.text = "new\\Ptext Ωß";
        text.textHeight = 2.5;
        text.textDirection = {0, 1, 0};
        text.leaders.at(0).lines.at(0).vertices = {{0, 0, 0}, {1, 1, 0}, {2, 1, 0}, {3, 5, 1}};
        text.leaders.at(0).lines.erase(text.leaders[0].lines.begin() + 1);
        text.leaders.at(1).lines.push_back({{{45, 0, 0}}, -1});
        text.leaders.push_back(newLeader({30, -5, 0}, {{{40, -10, 0}}, {{41, -12, 0}, {45, -15, 0}}}));
        moveMultileader(text, {100, 50, 0});
        // The block one: another block, placed anew; its leader replaced by a new one.
        Multileader block = *multileader(db.tags(h[1]));
        block.block = db.findBlock("C");
        block.blockPosition = {60, 20, 0};
        block.blockScale = {3, 3, 3};
        block.blockRotation = 1;
        block.leaders.at(0) = newLeader({41, 5, 0}, {{{70, 30, 0}, {65, 25, 0}}});
        // The last MTEXT one becomes a block.
        Multileader converted = *multileader(db.tags(h[2]));
        converted.content = Content::Block;
        converted.block = db.findBlock("B");
        converted.blockPosition = {-10, -10, 0};
        expectWritten(db, {{h[0], text}, {h[1], block}, {h[2], converted}}, "multileader-edits");
    }
    {
        Database db = test::loadOrFail(fixture("R2010"));
        std::vector<Handle> h = multileaders(db);
        ASSERT_EQ(h.size(), 3u);
        // Leaders removed: the first of the MTEXT one (the second keeps its index), all of the last.
        Multileader text = *multileader(db.tags(h[0]));
        text.leaders.erase(text.leaders.begin());
        Multileader bare = *multileader(db.tags(h[2]));
        bare.leaders.clear();
        bare.content = Content::None;
        // The block one becomes text.
        Multileader converted = *multileader(db.tags(h[1]));
        converted.content = Content::Mtext;
        converted.text = "was a block";
        converted.textLocation = {50, 10, 0};
        expectWritten(db, {{h[0], text}, {h[1], converted}, {h[2], bare}}, "multileader-removals");
        // Leaders added where there were none take the defaults.
        Multileader again = *multileader(db.tags(h[2]));
        again.content = Content::Mtext;
        again.text = "back";
        again.leaders = {newLeader({-30, 0, 0}, {{{-40, -5, 0}}})};
        expectWritten(db, {{h[2], again}}, "multileader-from-nothing");
    }
}

// A change every readable multileader takes: scale, a move, one more vertex.
void expectChangeTaken(TagList tags, const Multileader& read) {
    Multileader want = read;
    want.scale = 3;
    moveMultileader(want, {1, 2, 3});
    if (!want.leaders.empty() && !want.leaders[0].lines.empty()) want.leaders[0].lines[0].vertices.push_back({7, 7, 0});
    auto written = setMultileader(tags, want);
    ASSERT_TRUE(written.ok()) << written.message();
    auto got = multileader(tags);
    ASSERT_TRUE(got.ok()) << got.message();
    EXPECT_EQ(*got, contentOnly(want));
}

TEST(Multileader, DamagedTagsAreRefusedWithoutChangeOrStillTakeAChange) {
    Database db = Database::createNew();
    auto made = newMultileader(db, {10, 10, 0}, 2, "x", {{0, 0, 0}, {2, 3, 0}});
    ASSERT_TRUE(made.ok()) << made.message();
    const TagList good = *made;
    auto at = [&](int code, std::string_view value = {}) {
        std::size_t i = value.empty() ? good.find(code) : good.find(code, value);
        EXPECT_NE(i, TagList::npos) << code;
        return i;
    };
    struct Case {
        const char* fault;
        std::function<void(TagList&)> damage;
    };
    std::vector<Case> cases{
        {"context not closed", [&](TagList& t) { t.erase(at(301)); }},
        {"leader open at tag 301", [&](TagList& t) { t.erase(at(303)); }},
        {"leader line open at tag 303", [&](TagList& t) { t.erase(at(305)); }},
        {"leader line not closed", [&](TagList& t) { t.erase(at(305), t.size() - at(305)); }},
        {"unexpected tag 305", [&](TagList& t) { t.insert(at(300) + 1, 305, "}"); }},
        {"leader open at tag 302", [&](TagList& t) { t.insert(at(302) + 1, 302, "LEADER{"); }},
        {"tag 10 holds \"1,5\", not a number", [&](TagList& t) { t[at(304, "LEADER_LINE{") + 1].value = "1,5"; }},
        {"not a handle", [&](TagList& t) { t[at(296)].value = "1"; t.insert(at(296) + 1, 341, "zz"); }},
        {"out of order", [&](TagList& t) { t.insert(at(300) + 1, 110, "0"); }},
        {"300 tag is not CONTEXT_DATA{", [&](TagList& t) { t[at(300)].value = "CONTEXT{"; }},
        {"no CONTEXT_DATA group", [&](TagList& t) { t.erase(at(300)); }},
        {"no AcDbMLeader subclass", [&](TagList& t) { t[at(100, "AcDbMLeader")].value = "AcDbOther"; }},
        {"not a multileader: LEADER", [&](TagList& t) { t[0].value = "LEADER"; }},
    };
    Multileader some;
    some.content = Content::Mtext;
    some.text = "y";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        TagList broken = good;
        c.damage(broken);
        auto read = multileader(broken);
        ASSERT_FALSE(read.ok());
        EXPECT_NE(read.message().find(c.fault), std::string::npos) << read.message();
        TagList kept = broken;
        EXPECT_FALSE(setMultileader(kept, some).ok());
        EXPECT_EQ(kept, broken);
    }

    // Values that cannot be written are refused before anything changes.
    Multileader value = *multileader(good);
    for (auto spoil : std::vector<std::function<void(Multileader&)>>{
             [](Multileader& m) { m.text = "two\nlines"; },
             [](Multileader& m) { m.leaders[0].lines[0].vertices[0].x = std::nan(""); },
             [](Multileader& m) { m.content = Content::Block; }}) {
        Multileader bad = value;
        spoil(bad);
        TagList kept = good;
        EXPECT_FALSE(setMultileader(kept, bad).ok());
        EXPECT_EQ(kept, good);
    }

    // Indices that repeat still match each group once: the second leader changes, the first stays.
    Multileader two = value;
    two.leaders.push_back(newLeader({-5, 0, 0}, {{{-9, -9, 0}}}));
    TagList twins = good;
    ASSERT_TRUE(setMultileader(twins, two).ok());
    for (std::size_t i = 0; i < twins.size(); ++i)
        if (twins[i].code == 302) twins[twins.find(90, i)].value = "0";
    two = *multileader(twins);
    ASSERT_EQ(two.leaders.at(1).index, 0);
    two.leaders[1].connection.x = -6;
    expectChangeTaken(twins, two);

    // Any tag missing, any value garbled, the list cut anywhere: a failure or a multileader that
    // takes a change; never a crash.
    for (std::size_t i = 1; i < good.size(); ++i) {
        SCOPED_TRACE(i);
        TagList missing = good, garbled = good, cut;
        missing.erase(i);
        garbled[i].value = "}";
        for (std::size_t j = 0; j < i; ++j) cut.add(good[j].code, good[j].value);
        for (const TagList* tags : {&missing, &garbled, &cut})
            if (auto read = multileader(*tags)) expectChangeTaken(*tags, *read);
    }
}

TEST(Multileader, NewMultileadersAreWhatWasAskedAndAuditClean) {
    Database db = Database::createNew();
    std::vector<Point3> vertices{{0, 0, 0}, {4, 6, 0}};
    auto made = newMultileader(db, {10, 10, 0}, 2.5, "Label\\PΩß", vertices);
    ASSERT_TRUE(made.ok()) << made.message();
    auto handle = db.appendEntity(db.modelSpace(), *made);
    ASSERT_TRUE(handle.ok()) << handle.message();
    auto value = multileader(db.tags(*handle));
    ASSERT_TRUE(value.ok()) << value.message();
    EXPECT_EQ(value->content, Content::Mtext);
    EXPECT_EQ(value->text, "Label\\PΩß");
    EXPECT_EQ(value->textHeight, 2.5);
    ASSERT_EQ(value->leaders.size(), 1u);
    EXPECT_EQ(value->leaders[0].lines.at(0).vertices, vertices);
    // The dogleg ends where the landing gap before the text's first line begins.
    const Multileader::Leader& leader = value->leaders[0];
    EXPECT_EQ(leader.connection.x + leader.doglegLength * leader.doglegDirection.x + value->landingGap, 10);
    EXPECT_EQ(leader.connection.y, 10 - 2.5 / 2);
    // Its style is its own pointer after the context, not the text style's inside the context.
    EXPECT_EQ(mleaderStyle(db, db.tags(*handle)), "Standard");
    TagList restyled = db.tags(*handle);
    ASSERT_TRUE(setMleaderStyle(db, restyled, "standard"));
    EXPECT_EQ(restyled, db.tags(*handle));
    EXPECT_FALSE(newMultileader(db, {}, 1, "no leader", {}).ok());
    EXPECT_FALSE(newMultileader(db, {}, 1, "a\nb", vertices).ok());

    auto dir = test::scratchDir("multileader-new");
    ASSERT_TRUE(db.save(dir / "new.dxf").ok());
    EXPECT_EQ(test::audit(dir / "new.dxf"), "");
    Seen seen = dump(dir / "new.dxf");
    EXPECT_EQ(seen.geometry[formatHandle(*handle)], describe(*handle, *value));
    EXPECT_NE(seen.own[formatHandle(*handle)].find("render=INSERT1,LINE3,MTEXT1"), std::string::npos) << seen.own[formatHandle(*handle)];

    // Older drawings get the tags of their version; R12 cannot hold one.
    for (std::string version : {"R2000", "R2007", "R2010"}) {
        SCOPED_TRACE(version);
        Database old = test::loadOrFail(test::generated("basic-" + version + ".dxf", "12 --version " + version));
        auto tags = newMultileader(old, {5, 5, 0}, 0, "old", vertices);
        ASSERT_TRUE(tags.ok()) << tags.message();
        ASSERT_TRUE(old.appendEntity(old.modelSpace(), *tags).ok());
        ASSERT_TRUE(old.save(dir / (version + ".dxf")).ok());
        EXPECT_EQ(test::audit(dir / (version + ".dxf")), "");
        EXPECT_NE(dump(dir / (version + ".dxf")).geometry.size(), 0u);
    }
    Database r12 = test::loadOrFail(test::generated("basic-R12.dxf", "12 --version R12"));
    EXPECT_FALSE(newMultileader(r12, {}, 1, "x", vertices).ok());
}

}  // namespace
}  // namespace veltarn::db
