#include "HtmlReport.h"

#include <algorithm>
#include <map>
#include <set>

#include "HtmlText.h"

namespace veltarn::app {
namespace {

constexpr const char* kStyle = R"(
body{font:14px/1.4 "DejaVu Sans",sans-serif;margin:24px;color:#222;background:#fff}
h1{font-size:20px;margin:0 0 4px}h2{font-size:16px;margin:28px 0 8px}
p.lead{margin:0 0 16px;color:#555}
table{border-collapse:collapse;margin:8px 0}
th,td{border:1px solid #ccc;padding:3px 8px;text-align:left;vertical-align:top}
th{background:#eee}
table.summary td.n{text-align:right;font-variant-numeric:tabular-nums}
table.summary tr.total td{font-weight:bold;background:#f6f6f6}
td.bad{color:#b00;font-weight:bold}td.good{color:#070}
span.kind{display:inline-block;margin-right:10px;white-space:nowrap}
svg.plan{border:1px solid #ccc;background:#fcfcfc;display:block;margin:8px 0}
svg.plan path{fill:none;stroke-linecap:round;stroke-linejoin:round;vector-effect:non-scaling-stroke}
svg.plan g.bad path{stroke:#e00000;stroke-width:2}
svg.plan a:hover path{stroke:#000}
table.findings{font-size:12px}
tbody:target td{background:#fff3b0}
)";

std::string cell(const std::string& text, const char* cls = nullptr) {
    return std::string("<td") + (cls ? std::string(" class=\"") + cls + "\"" : "") + ">" + htmlEscaped(text) + "</td>";
}

std::string number(int n, bool counted) { return counted ? std::to_string(n) : "-"; }

std::string kindsCell(const FindingKinds& kinds) {
    std::vector<std::pair<std::string, int>> ordered(kinds.begin(), kinds.end());
    // The commonest first: what to talk to the contractor about.
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    std::string out = "<td>";
    for (const auto& [code, count] : ordered)
        out += "<span class=\"kind\">" + htmlEscaped(code) + " " + std::to_string(count) + "</span>";
    return out + "</td>";
}

std::string summaryRow(const std::string& nameCell, const DrawingTally& t, bool counted, const FindingKinds& kinds,
                       const char* rowClass) {
    std::string row = std::string("<tr") + (rowClass ? std::string(" class=\"") + rowClass + "\"" : "") + ">" + nameCell;
    if (!t.read) return row + "<td class=\"bad\" colspan=\"7\">unreadable</td>" + kindsCell(kinds) + "</tr>\n";
    const bool objects = counted, checked = counted && t.checked;
    row += "<td class=\"n\">" + number(t.objects, objects) + "</td>";
    row += "<td class=\"n good\">" + number(t.valid, checked) + "</td>";
    row += std::string("<td class=\"n") + (checked && t.faulty ? " bad" : "") + "\">" + number(t.faulty, checked) + "</td>";
    row += "<td class=\"n\">" + number(t.unclassified, checked) + "</td>";
    row += "<td class=\"n\">" + number(t.foreign, checked) + "</td>";
    row += "<td class=\"n\">" + std::to_string(t.audit) + "</td>";
    return row + kindsCell(kinds) + "</tr>\n";
}

}  // namespace

std::string findingsAnchor(std::size_t drawingIndex, const std::string& handle) {
    return "d" + std::to_string(drawingIndex + 1) + "-" + handle;
}

FindingKinds findingKinds(std::span<const CheckFinding> findings) {
    FindingKinds kinds;
    for (const CheckFinding& finding : findings) ++kinds[finding.code];
    return kinds;
}

std::string htmlPageStart(const std::string& heading, const std::vector<HtmlDrawing>& drawings) {
    FindingKinds allKinds;
    DrawingTally total;
    bool allCounted = true;
    std::size_t findings = 0;
    for (const HtmlDrawing& drawing : drawings) {
        for (const auto& [code, count] : drawing.kinds) allKinds[code] += count;
        const DrawingTally& t = drawing.tally;
        allCounted = allCounted && drawing.counted;
        findings += drawing.findings;
        total.objects += t.objects, total.valid += t.valid, total.faulty += t.faulty;
        total.unclassified += t.unclassified, total.foreign += t.foreign, total.audit += t.audit;
    }
    total.read = total.checked = true;

    std::string page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                       htmlEscaped(heading) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n";
    page += "<h1>" + htmlEscaped(heading) + "</h1>\n";
    page += "<p class=\"lead\">" + std::to_string(drawings.size()) + (drawings.size() == 1 ? " drawing, " : " drawings, ") +
            (allCounted ? std::to_string(total.objects) + " objects, " : std::string()) + std::to_string(findings) +
            (findings == 1 ? " finding" : " findings") + "</p>\n";
    page += "<table class=\"summary\">\n<thead><tr><th>drawing</th><th>objects</th><th>valid</th><th>faulty</th>"
            "<th>unclassified</th><th>foreign</th><th>audit</th><th>findings by kind</th></tr></thead>\n<tbody>\n";
    for (std::size_t i = 0; i < drawings.size(); ++i)
        page += summaryRow("<td><a href=\"#d" + std::to_string(i + 1) + "\">" + htmlEscaped(drawings[i].tally.drawing) +
                               "</a></td>",
                           drawings[i].tally, drawings[i].counted, drawings[i].kinds, nullptr);
    page += summaryRow("<td>total</td>", total, allCounted, allKinds, "total");
    return page + "</tbody>\n</table>\n";
}

std::string htmlDrawingSection(std::size_t index, const HtmlDrawing& drawing, std::span<const CheckFinding> findings) {
    std::string page = "<section id=\"d" + std::to_string(index + 1) + "\">\n<h2>" + htmlEscaped(drawing.tally.drawing) + "</h2>\n";
    page += drawing.planSvg.empty() ? "" : drawing.planSvg + "\n";
    if (findings.empty()) return page + "<p>No findings.</p>\n</section>\n";
    page += "<table class=\"findings\">\n<thead><tr><th>drawing</th><th>handle</th><th>type</th><th>layer</th>"
            "<th>class</th><th>code</th><th>message</th><th>expected</th></tr></thead>\n";
    // One body per object, the link target of its red outline; its first body when it has
    // findings in two places (an audit finding before its own).
    std::set<std::string> anchored;
    const std::string* open = nullptr;
    for (const CheckFinding& f : findings) {
        if (!open || *open != f.handle) {
            if (open) page += "</tbody>\n";
            const bool anchor = !f.handle.empty() && anchored.insert(f.handle).second;
            page += anchor ? "<tbody id=\"" + htmlEscaped(findingsAnchor(index, f.handle)) + "\">\n" : "<tbody>\n";
            open = &f.handle;
        }
        page += "<tr class=\"finding\">" + cell(f.drawing) + cell(f.handle) + cell(f.type) + cell(f.layer) +
                cell(f.className) + cell(f.code) + cell(f.message) + cell(f.expected) + "</tr>\n";
    }
    return page + "</tbody>\n</table>\n</section>\n";
}

std::string htmlPageEnd() { return "</body>\n</html>\n"; }

std::string htmlReport(const std::string& heading, std::vector<HtmlDrawing> drawings,
                       const std::vector<CheckFinding>& findings) {
    std::vector<std::span<const CheckFinding>> spans;
    std::size_t next = 0;
    for (HtmlDrawing& drawing : drawings) {
        const std::size_t count = std::min(drawing.findings, findings.size() - next);
        spans.push_back(std::span<const CheckFinding>(findings).subspan(next, count));
        next += count;
        drawing.kinds = findingKinds(spans.back());
    }
    std::string page = htmlPageStart(heading, drawings);
    for (std::size_t i = 0; i < drawings.size(); ++i) page += htmlDrawingSection(i, drawings[i], spans[i]);
    return page + htmlPageEnd();
}

}  // namespace veltarn::app
