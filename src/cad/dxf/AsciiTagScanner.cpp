#include "cad/dxf/TagScanners.h"

#include "cad/dxf/NumberText.h"
#include "cad/dxf/TextCodec.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace veltarn::dxf {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Parses a group-code line: optional spaces, an optional minus, digits, optional spaces.
bool parseGroupCode(const char* begin, const char* end, int& code) {
    while (begin < end && (*begin == ' ' || *begin == '\t')) ++begin;
    while (end > begin && (end[-1] == ' ' || end[-1] == '\t' || end[-1] == '\r')) --end;
    bool negative = begin < end && *begin == '-';
    if (negative) ++begin;
    if (begin == end || end - begin > 5) return false;
    int value = 0;
    for (; begin < end; ++begin) {
        if (*begin < '0' || *begin > '9') return false;
        value = value * 10 + (*begin - '0');
    }
    if (value > (negative ? 32768 : 32767)) return false;  // the range of the 16-bit codes of binary DXF
    code = negative ? -value : value;
    return true;
}

// The group-code line most writers write, read in one pass: spaces, an optional minus, up to five
// digits, spaces and the line end. Returns that line end, or nullptr for any other line, which
// parseGroupCode then reads (or refuses).
const char* readPlainGroupCode(const char* p, const char* end, int& code) {
    while (p < end && *p == ' ') ++p;
    bool negative = p < end && *p == '-';
    if (negative) ++p;
    int value = 0, digits = 0;
    for (; p < end && digits < 5 && *p >= '0' && *p <= '9'; ++p, ++digits) value = value * 10 + (*p - '0');
    while (p < end && (*p == ' ' || *p == '\r')) ++p;
    if (digits == 0 || p == end || *p != '\n' || value > (negative ? 32768 : 32767)) return nullptr;
    code = negative ? -value : value;
    return p;
}

// Counts the line ends eight bytes at a time: a plain byte loop is not vectorised at -O2, and this
// pass over the whole file sizes a tag vector.
std::size_t countLineEnds(std::string_view bytes) {
    constexpr std::uint64_t kOnes = 0x0101010101010101u, kLow7 = 0x7F7F7F7F7F7F7F7Fu;
    std::size_t count = 0, i = 0;
    while (i + 8 <= bytes.size()) {
        // Per-byte counters, summed before any of them can pass 255.
        std::uint64_t counters = 0;
        for (int round = 0; round < 31 && i + 8 <= bytes.size(); ++round, i += 8) {
            std::uint64_t word;
            std::memcpy(&word, bytes.data() + i, 8);
            std::uint64_t x = word ^ (kOnes * '\n');    // a zero byte where a line end was
            std::uint64_t t = ((x & kLow7) + kLow7) | x;  // high bit clear exactly at those zero bytes
            counters += (~t & ~kLow7) >> 7;
        }
        count += static_cast<std::size_t>((counters * kOnes) >> 56);
    }
    for (; i < bytes.size(); ++i) count += bytes[i] == '\n';
    return count;
}

// The line end at or after `from`, or nullptr. Most DXF lines are a few bytes long: looking at
// eight bytes at a time finds their end sooner than a call to memchr, which takes over for long lines.
const char* findLineEnd(const char* from, const char* end) {
    constexpr std::uint64_t kOnes = 0x0101010101010101u, kHigh = 0x8080808080808080u;
    for (int round = 0; round < 4 && end - from >= 8; ++round, from += 8) {
        std::uint64_t word;
        std::memcpy(&word, from, 8);
        std::uint64_t x = word ^ (kOnes * '\n');  // a zero byte where a line end is
        // The lowest set bit marks the first zero byte, the first in the file on the little-endian
        // platforms we build for (bits above it may be false alarms).
        if (std::uint64_t found = (x - kOnes) & ~x & kHigh) return from + (std::countr_zero(found) >> 3);
    }
    return from < end ? static_cast<const char*>(std::memchr(from, '\n', static_cast<std::size_t>(end - from))) : nullptr;
}

bool onlySpace(std::string_view rest) {
    return std::all_of(rest.begin(), rest.end(), [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

}  // namespace

std::string quoteForMessage(std::string_view text) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out = "\"";
    std::size_t shown = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (++shown > 40) {
            out += "...";
            break;
        }
        auto c = static_cast<unsigned char>(text[i]);
        std::size_t length = validUtf8Length(text.substr(i));
        if (length == 0 || c < 0x20 || c == 0x7F) {  // control bytes and bytes that are no UTF-8 text
            out += "\\x";
            out += kDigits[c >> 4];
            out += kDigits[c & 15];
            ++i;
        } else {
            out.append(text.substr(i, length));
            i += length;
        }
    }
    return out + "\"";
}

std::size_t AsciiTagScanner::capacityFor(std::string_view bytes) {
    // A tag takes two lines and at least three bytes, which bounds what a file of empty lines can reserve.
    return std::min(countLineEnds(bytes) / 2, bytes.size() / 3) + 1;
}

Result<void> AsciiTagScanner::scan(TagFile& file, TagWindow& out) {
    const std::string& bytes = file.bytes_;
    const char* data = bytes.data();
    const std::size_t size = bytes.size();
    std::size_t pos = bytes.compare(0, 3, kByteOrderMark) == 0 ? 3 : 0;
    std::size_t tagBegin = 0;  // the byte-order mark goes with the first tag

    const char* firstEnd = static_cast<const char*>(std::memchr(data + pos, '\n', size - pos));
    file.crlf_ = firstEnd && firstEnd > data + pos && firstEnd[-1] == '\r';

    std::size_t line = 1;
    while (pos < size) {
        const char* codeBegin = data + pos;
        int code = 0;
        const char* codeEnd = readPlainGroupCode(codeBegin, data + size, code);
        if (!codeEnd) {
            codeEnd = findLineEnd(codeBegin, data + size);
            const char* codeLineEnd = codeEnd ? codeEnd : data + size;
            if (!parseGroupCode(codeBegin, codeLineEnd, code)) {
                // Blank lines after the last tag are what some editors leave behind: not an error.
                if (onlySpace(std::string_view(codeBegin, static_cast<std::size_t>(data + size - codeBegin)))) break;
                return makeError(file.name_ + ":" + std::to_string(line) + ": expected a group code, found " +
                                 quoteForMessage(std::string_view(codeBegin, static_cast<std::size_t>(codeLineEnd - codeBegin))));
            }
        }
        std::size_t valuePos = codeEnd ? static_cast<std::size_t>(codeEnd - data) + 1 : size;
        // A group code on the last line has no value: the file has an odd number of lines.
        if (valuePos >= size)
            return makeError(file.name_ + ":" + std::to_string(line + 1) + ": expected the value of group code " +
                             std::to_string(code) + ", found the end of the file");
        const char* valueEnd = findLineEnd(data + valuePos, data + size);
        std::size_t valueLineEnd = valueEnd ? static_cast<std::size_t>(valueEnd - data) : size;
        std::size_t length = valueLineEnd - valuePos;
        if (length > 0 && data[valuePos + length - 1] == '\r') --length;

        pos = valueEnd ? valueLineEnd + 1 : size;
        out.push(ScannedTag{static_cast<std::uint32_t>(tagBegin), static_cast<std::uint32_t>(valuePos), static_cast<std::uint32_t>(length),
                            static_cast<std::uint32_t>(pos), static_cast<std::int16_t>(code)});
        tagBegin = pos;
        line += 2;
        if (code == 0 && trimSpaces(std::string_view(data + valuePos, length)) == "EOF") return {};
    }
    file.missingEof_ = true;
    return {};
}

}  // namespace veltarn::dxf
