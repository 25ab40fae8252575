#include "CheckReport.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "TextFormats.h"
#include "base/Utf8.h"

namespace veltarn::app {
namespace {

std::array<const std::string*, 8> columns(const CheckFinding& f) {
    return {&f.drawing, &f.handle, &f.type, &f.layer, &f.className, &f.code, &f.message, &f.expected};
}

std::array<std::string*, 8> columns(CheckFinding& f) {
    return {&f.drawing, &f.handle, &f.type, &f.layer, &f.className, &f.code, &f.message, &f.expected};
}

constexpr std::array<const char*, 8> kColumnNames = {"drawing", "handle", "type", "layer",
                                                     "class", "code", "message", "expected"};

using text_formats::csvField;
using text_formats::jsonString;

// One line of a JSON Lines report: a JSON object of strings only, which is all a report holds.
class ReportLineParser {
public:
    explicit ReportLineParser(const std::string& line) : text_(line) {}

    // Empty on success, else what is wrong with the line.
    std::string parse(CheckFinding& finding) {
        const auto fields = columns(finding);
        std::array<bool, 8> seen{};
        skipSpace();
        if (!take('{')) return "a report line is a JSON object";
        skipSpace();
        if (!take('}')) {
            do {
                skipSpace();
                std::string key, value;
                if (!string(key)) return error_.empty() ? "a key is a JSON string" : error_;
                skipSpace();
                if (!take(':')) return "':' expected after \"" + key + "\"";
                skipSpace();
                if (!string(value)) return error_.empty() ? "\"" + key + "\" is not a string" : error_;
                const auto column = std::find(kColumnNames.begin(), kColumnNames.end(), key);
                if (column == kColumnNames.end()) return "unknown key \"" + key + "\"";
                const std::size_t index = column - kColumnNames.begin();
                if (seen[index]) return "\"" + key + "\" given twice";
                seen[index] = true;
                *fields[index] = std::move(value);
                skipSpace();
            } while (take(','));
            if (!take('}')) return "',' or '}' expected";
        }
        skipSpace();
        if (at_ != text_.size()) return "text after the object";
        for (std::size_t i = 0; i < seen.size(); ++i)
            if (!seen[i]) return std::string("no \"") + kColumnNames[i] + "\"";
        return "";
    }

private:
    bool take(char c) {
        if (at_ < text_.size() && text_[at_] == c) return ++at_, true;
        return false;
    }
    void skipSpace() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\r')) ++at_;
    }
    bool hex4(unsigned& code) {
        if (text_.size() - at_ < 4) return false;
        code = 0;
        for (int i = 0; i < 4; ++i) {
            const char c = text_[at_++];
            code <<= 4;
            if (c >= '0' && c <= '9') code |= c - '0';
            else if (c >= 'a' && c <= 'f') code |= c - 'a' + 10;
            else if (c >= 'A' && c <= 'F') code |= c - 'A' + 10;
            else return false;
        }
        return true;
    }
    bool string(std::string& out) {
        if (!take('"')) return false;
        while (at_ < text_.size()) {
            const char c = text_[at_++];
            if (c == '"') return true;
            if (static_cast<unsigned char>(c) < 0x20) return error_ = "a control character inside a string", false;
            if (c != '\\') {
                out += c;
                continue;
            }
            if (at_ >= text_.size()) break;
            switch (const char e = text_[at_++]) {
                case '"': case '\\': case '/': out += e; break;
                case 'b': out += '\b'; break;
                case 'f': out += '\f'; break;
                case 'n': out += '\n'; break;
                case 'r': out += '\r'; break;
                case 't': out += '\t'; break;
                case 'u': {
                    unsigned code = 0, low = 0;
                    if (!hex4(code)) return error_ = "a bad \\u escape", false;
                    if (code >= 0xD800 && code < 0xDC00) {
                        if (!take('\\') || !take('u') || !hex4(low) || low < 0xDC00 || low >= 0xE000)
                            return error_ = "a lone surrogate in a \\u escape", false;
                        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                    } else if (code >= 0xDC00 && code < 0xE000) {
                        return error_ = "a lone surrogate in a \\u escape", false;
                    }
                    appendUtf8(out, static_cast<char32_t>(code));
                    break;
                }
                default: return error_ = std::string("an unknown escape \\") + e, false;
            }
        }
        error_ = "a string that does not end";
        return false;
    }

    const std::string& text_;
    std::size_t at_ = 0;
    std::string error_;
};

}  // namespace

Result<std::vector<CheckFinding>> readJsonLinesReport(const std::string& bytes, const std::string& name) {
    std::vector<CheckFinding> findings;
    std::size_t start = 0;
    for (int number = 1; start < bytes.size(); ++number) {
        std::size_t end = bytes.find('\n', start);
        if (end == std::string::npos) end = bytes.size();
        const std::string line = bytes.substr(start, end - start);
        start = end + 1;
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        CheckFinding finding;
        if (const std::string why = ReportLineParser(line).parse(finding); !why.empty())
            return makeError(name + ":" + std::to_string(number) + ": not a report line: " + why);
        findings.push_back(std::move(finding));
    }
    return findings;
}

std::optional<ReportFormat> reportFormatOf(const std::string& path) {
    if (text_formats::hasExtension(path, ".jsonl")) return ReportFormat::kJsonLines;
    if (text_formats::hasExtension(path, ".csv")) return ReportFormat::kCsv;
    if (text_formats::hasExtension(path, ".html") || text_formats::hasExtension(path, ".htm")) return ReportFormat::kHtml;
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

std::string csvReport(const std::vector<CheckFinding>& findings) { return csvHeader() + csvRows(findings); }

std::string csvHeader() {
    std::string out;
    for (std::size_t i = 0; i < kColumnNames.size(); ++i) out += std::string(i ? "," : "") + kColumnNames[i];
    return out + "\r\n";
}

std::string csvRows(const std::vector<CheckFinding>& findings) {
    std::string out;
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
