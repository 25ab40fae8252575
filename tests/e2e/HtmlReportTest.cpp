// The page veltarn check writes for people, as people see it: opened in a real browser (headless
// Chromium), its screenshot compared with the golden one within a tolerance, and every finding of
// the machine-readable report shown on it. VELTARN_UPDATE_GOLDEN=1 rewrites the golden screenshot.
#include <unistd.h>

#include <regex>
#include <sstream>

#include "CheckReport.h"
#include "ProgramRun.h"

namespace {

using namespace veltarn::e2e;
namespace testtools = veltarn::testtools;

const fs::path kCases = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/cases";
const fs::path kGolden = fs::path(VELTARN_SOURCE_DIR) / "tests/e2e/bulk";

// The rows of the page's findings tables, their cells as the text they show.
std::vector<veltarn::app::CheckFinding> findingsOnPage(const std::string& page) {
    static const std::regex row("<tr class=\"finding\">((?:<td>[^<]*</td>){8})</tr>");
    static const std::regex cell("<td>([^<]*)</td>");
    std::vector<veltarn::app::CheckFinding> findings;
    for (std::sregex_iterator r(page.begin(), page.end(), row), end; r != end; ++r) {
        const std::string cells = (*r)[1];
        std::vector<std::string> texts;
        for (std::sregex_iterator c(cells.begin(), cells.end(), cell); c != end; ++c) {
            std::string text = (*c)[1];
            for (const auto& [from, to] : {std::pair<std::string, std::string>{"&lt;", "<"}, {"&gt;", ">"},
                                           {"&quot;", "\""}, {"&#39;", "'"}, {"&amp;", "&"}})
                replaceAll(text, from, to);
            texts.push_back(text);
        }
        findings.push_back({texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6], texts[7]});
    }
    return findings;
}

class HtmlReport : public ::testing::Test {
protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = fs::temp_directory_path() / ("veltarn_html_" + std::to_string(::getpid()) + "_" + info->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        fs::copy_file(kCases / "selection.in.dxf", dir_ / "selection.dxf");
        fs::copy_file(kCases / "selection.classes.txt", dir_ / "selection.classes.txt");
    }
    void TearDown() override { fs::remove_all(dir_); }

    ShellRun veltarn(const std::string& arguments) {
        return runShell("cd " + quote(dir_.string()) + " && XDG_CONFIG_HOME=config " + quote(kProgram.string()) + " " +
                        arguments + " </dev/null 2>&1");
    }
    std::vector<veltarn::app::CheckFinding> jsonLines(const std::string& name) {
        auto read = veltarn::app::readJsonLinesReport(readFile(dir_ / name), name);
        EXPECT_TRUE(read.ok()) << (read.ok() ? "" : read.message());
        return read.ok() ? read.value() : std::vector<veltarn::app::CheckFinding>{};
    }

    fs::path dir_;
};

// The page and a merged page show the findings of the JSON Lines report, row for row, and each
// red outline of the plan links to the findings of its object.
TEST_F(HtmlReport, ThePageShowsEveryFindingAndLinksThePlanToThem) {
    const ShellRun run = veltarn("check --classifier selection.classes.txt --report out.jsonl --report out.html "
                                 "selection.dxf selection.dxf");
    ASSERT_EQ(run.exitCode, 1) << run.out;
    const std::string page = readFile(dir_ / "out.html");
    const auto expected = jsonLines("out.jsonl");
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(findingsOnPage(page), expected);

    static const std::regex link("<a href=\"#(d[0-9]+-[0-9A-F]+)\">");
    std::set<std::string> linked;
    for (std::sregex_iterator l(page.begin(), page.end(), link), end; l != end; ++l) linked.insert((*l)[1]);
    std::set<std::string> withFindings;
    for (const auto& finding : expected)
        if (!finding.handle.empty()) withFindings.insert("d1-" + finding.handle);
    for (const std::string& anchor : std::set<std::string>(withFindings)) withFindings.insert("d2" + anchor.substr(2));
    EXPECT_EQ(linked, withFindings) << "every object with findings is red and links to them, and no other";
    for (const std::string& anchor : linked) EXPECT_NE(page.find("<tbody id=\"" + anchor + "\">"), std::string::npos) << anchor;

    ASSERT_EQ(veltarn("check --classifier selection.classes.txt --shard 1/2 --report a.jsonl selection.dxf selection.dxf")
                  .exitCode, 1);
    ASSERT_EQ(veltarn("check --classifier selection.classes.txt --shard 2/2 --report b.jsonl selection.dxf selection.dxf")
                  .exitCode, 1);
    const ShellRun merged = veltarn("report --merge merged.html b.jsonl a.jsonl");
    ASSERT_EQ(merged.exitCode, 0) << merged.out;
    EXPECT_EQ(findingsOnPage(readFile(dir_ / "merged.html")), expected);
}

// Headless Chromium opens the page: the summary and the plan with its faulty objects in red, as
// the golden screenshot has them, within a tolerance for font smoothing.
TEST_F(HtmlReport, ChromiumShowsTheSummaryAndThePlan) {
    ASSERT_EQ(veltarn("check --classifier selection.classes.txt --report out.html selection.dxf").exitCode, 1);
    const ShellRun shot = runShell(
        "cd " + quote(dir_.string()) +
        " && chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --force-device-scale-factor=1"
        " --user-data-dir=profile --window-size=1000,760 --screenshot=shot.png file://" +
        quote((dir_ / "out.html").string()) + " 2>&1");
    ASSERT_EQ(shot.exitCode, 0) << "chromium (Debian package chromium) could not take the screenshot:\n" << shot.out;
    ASSERT_TRUE(fs::exists(dir_ / "shot.png")) << shot.out;
    const fs::path golden = kGolden / "selection-report.png";
    if (updating()) fs::copy_file(dir_ / "shot.png", golden, fs::copy_options::overwrite_existing);

    std::string compared;
    const int code = testtools::runPython(quote((testtools::toolsDir() / "compare_png.py").string()) + " " +
                                              quote((dir_ / "shot.png").string()) + " " + quote(golden.string()) +
                                              " --diff " + quote((dir_ / "diff.png").string()),
                                          &compared);
    const fs::path diff = fs::temp_directory_path() / "veltarn-html-report-diff.png";
    EXPECT_EQ(code, 0) << compared << "the differing pixels are in " << diff;
    std::istringstream figures(compared);
    std::string word;
    long red = 0;
    while (figures >> word)
        if (word == "red") figures >> red;
    EXPECT_GT(red, 20) << "the faulty objects are drawn in red: " << compared;
    if (code != 0 && fs::exists(dir_ / "diff.png")) fs::copy_file(dir_ / "diff.png", diff, fs::copy_options::overwrite_existing);
}

}  // namespace
