#include "CheckReport.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

namespace veltarn::app {
namespace {

std::array<const std::string*, 8> columns(const CheckFinding& f) {
    return {&f.drawing, &f.handle, &f.type, &f.layer, &f.className, &f.code, &f.message, &f.expected};
}

constexpr std::array<const char*, 8> kColumnNames = {"drawing", "handle", "type", "layer",
                                                     "class", "code", "message", "expected"};

// UTF-8 passes through; control characters are escaped, as JSON requires.
std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\n': out += "\\n"; break;
            case '\r': out += "\\r"; break;
            case '\t': out += "\\t"; break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                    out += escaped;
                } else {
                    out += c;
                }
        }
    }
    return out + "\"";
}

std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string out = "\"";
    for (const char c : text) out += c == '"' ? std::string("\"\"") : std::string(1, c);
    return out + "\"";
}

}  // namespace

std::optional<ReportFormat> reportFormatOf(const std::string& path) {
    std::string lower = path;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    auto endsWith = [&lower](const std::string& end) {
        return lower.size() > end.size() && lower.compare(lower.size() - end.size(), end.size(), end) == 0;
    };
    if (endsWith(".jsonl")) return ReportFormat::kJsonLines;
    if (endsWith(".csv")) return ReportFormat::kCsv;
    return std::nullopt;
}

std::string jsonLinesReport(const std::vector<CheckFinding>& findings) {
    std::string out;
    for (const CheckFinding& finding : findings) {
        const auto values = columns(finding);
        out += "{";
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i) out += ", ";
            out += jsonString(kColumnNames[i]) + ": " + jsonString(*values[i]);
        }
        out += "}\n";
    }
    return out;
}

std::string csvReport(const std::vector<CheckFinding>& findings) {
    std::string out;
    for (std::size_t i = 0; i < kColumnNames.size(); ++i) out += std::string(i ? "," : "") + kColumnNames[i];
    out += "\r\n";
    for (const CheckFinding& finding : findings) {
        const auto values = columns(finding);
        for (std::size_t i = 0; i < values.size(); ++i) out += (i ? "," : "") + csvField(*values[i]);
        out += "\r\n";
    }
    return out;
}

std::string summaryTable(const std::vector<DrawingTally>& tallies) {
    DrawingTally total;
    total.drawing = "total";
    std::size_t width = std::string("drawing").size();
    for (const DrawingTally& tally : tallies) {
        width = std::max(width, tally.drawing.size());
        total.objects += tally.objects;
        total.valid += tally.valid;
        total.faulty += tally.faulty;
        total.unclassified += tally.unclassified;
        total.foreign += tally.foreign;
        total.audit += tally.audit;
    }
    total.read = total.checked = true;
    auto row = [width](const std::string& name, const std::array<std::string, 6>& cells) {
        std::string line = name + std::string(width - name.size(), ' ');
        for (const std::string& cell : cells) line += std::string(cell.size() < 13 ? 13 - cell.size() : 1, ' ') + cell;
        return line + "\n";
    };
    auto cellsOf = [](const DrawingTally& t) -> std::array<std::string, 6> {
        if (!t.read) return {"unreadable", "-", "-", "-", "-", "-"};
        if (!t.checked) return {std::to_string(t.objects), "-", "-", "-", "-", std::to_string(t.audit)};
        return {std::to_string(t.objects), std::to_string(t.valid), std::to_string(t.faulty),
                std::to_string(t.unclassified), std::to_string(t.foreign), std::to_string(t.audit)};
    };
    std::string out = row("drawing", {"objects", "valid", "faulty", "unclassified", "foreign", "audit"});
    for (const DrawingTally& tally : tallies) out += row(tally.drawing, cellsOf(tally));
    return out + row(total.drawing, cellsOf(total));
}

}  // namespace veltarn::app
