#include "host/Format.h"

#include <clocale>
#include <cstdio>
#include <locale.h>
#include <string>
#include <vector>

namespace veltarn::host {
namespace {

// snprintf of one numeric directive in the "C" locale (uselocale is per thread, so the process
// locale and other threads are not touched).
template <class T>
std::string printNumber(const std::string& directive, T value) {
    static locale_t cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    locale_t previous = cLocale ? uselocale(cLocale) : static_cast<locale_t>(0);
    char small[64];
    int length = std::snprintf(small, sizeof small, directive.c_str(), value);
    std::string out;
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof small) {
        out.assign(small, static_cast<std::size_t>(length));
    } else if (length >= 0) {
        std::vector<char> big(static_cast<std::size_t>(length) + 1);
        std::snprintf(big.data(), big.size(), directive.c_str(), value);
        out.assign(big.data(), static_cast<std::size_t>(length));
    }
    if (cLocale) uselocale(previous);
    return out;
}

std::wstring widen(const std::string& ascii) { return std::wstring(ascii.begin(), ascii.end()); }

bool isFlag(wchar_t c) { return c == L'-' || c == L'+' || c == L' ' || c == L'#' || c == L'0'; }
bool isDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

long long asInteger(const FormatArg& arg) {
    switch (arg.kind()) {
        case FormatArg::Kind::kInteger: return arg.integer();
        case FormatArg::Kind::kReal: return static_cast<long long>(arg.real());
        case FormatArg::Kind::kText: return 0;
    }
    return 0;
}

double asReal(const FormatArg& arg) {
    switch (arg.kind()) {
        case FormatArg::Kind::kInteger: return static_cast<double>(arg.integer());
        case FormatArg::Kind::kReal: return arg.real();
        case FormatArg::Kind::kText: return 0;
    }
    return 0;
}

std::wstring asText(const FormatArg& arg) {
    switch (arg.kind()) {
        case FormatArg::Kind::kInteger: return widen(printNumber("%lld", arg.integer()));
        case FormatArg::Kind::kReal: return widen(printNumber("%f", arg.real()));
        case FormatArg::Kind::kText: return std::wstring(arg.text());
    }
    return {};
}

// Pads `text` with spaces to `width`, on the left unless `leftAlign`.
std::wstring pad(std::wstring text, int width, bool leftAlign) {
    if (width > 0 && text.size() < static_cast<std::size_t>(width)) {
        std::wstring fill(static_cast<std::size_t>(width) - text.size(), L' ');
        text = leftAlign ? text + fill : fill + text;
    }
    return text;
}

}  // namespace

std::wstring formatArgs(std::wstring_view format, std::initializer_list<FormatArg> args) {
    std::wstring out;
    out.reserve(format.size() + 16);
    auto next = args.begin();
    std::size_t i = 0;
    while (i < format.size()) {
        if (format[i] != L'%') {
            out += format[i++];
            continue;
        }
        const std::size_t start = i++;
        if (i < format.size() && format[i] == L'%') {
            out += L'%';
            ++i;
            continue;
        }
        std::string flags;
        while (i < format.size() && isFlag(format[i])) flags += static_cast<char>(format[i++]);

        // Width and precision, either digits or "*" (an integer argument); a negative "*" width
        // means left alignment, a negative "*" precision means none, as in printf.
        bool bad = false;
        auto readCount = [&](int& value, bool& given) {
            given = false;
            if (i < format.size() && format[i] == L'*') {
                ++i;
                if (next == args.end()) { bad = true; return; }
                value = static_cast<int>(asInteger(*next++));
                given = true;
                return;
            }
            long long digits = 0;
            while (i < format.size() && isDigit(format[i])) {
                digits = digits * 10 + (format[i++] - L'0');
                if (digits > 100000) digits = 100000;  // a width beyond this is a mistake, not a wish
                given = true;
            }
            value = static_cast<int>(digits);
        };
        int width = 0, precision = -1;
        bool hasWidth = false, hasPrecision = false;
        readCount(width, hasWidth);
        if (width < 0) { flags += '-'; width = -width; }
        if (i < format.size() && format[i] == L'.') {
            ++i;
            readCount(precision, hasPrecision);
            if (!hasPrecision) { precision = 0; hasPrecision = true; }
            if (precision < 0) hasPrecision = false;
        }
        while (i < format.size() && (format[i] == L'l' || format[i] == L'h' || format[i] == L'L' ||
                                     format[i] == L'z' || format[i] == L'j' || format[i] == L't'))
            ++i;
        if (bad || i >= format.size() || next == args.end()) {
            out.append(format.substr(start, (i < format.size() ? i + 1 : i) - start));
            if (i < format.size()) ++i;
            continue;
        }
        const wchar_t conversion = format[i++];
        std::string directive = "%" + flags;
        if (hasWidth) directive += std::to_string(width);
        if (hasPrecision) directive += "." + std::to_string(precision);
        const bool leftAlign = flags.find('-') != std::string::npos;

        switch (conversion) {
            case L'd': case L'i':
                out += widen(printNumber(directive + "lld", asInteger(*next++)));
                break;
            case L'u': case L'x': case L'X': case L'o':
                // Unsigned conversions see the 32-bit pattern, as printf does with an int argument.
                out += widen(printNumber(directive + "ll" + static_cast<char>(conversion),
                                         static_cast<unsigned long long>(static_cast<unsigned>(asInteger(*next++)))));
                break;
            case L'f': case L'F': case L'e': case L'E': case L'g': case L'G': case L'a': case L'A':
                out += widen(printNumber(directive + static_cast<char>(conversion), asReal(*next++)));
                break;
            case L'c':
                out += pad(std::wstring(1, static_cast<wchar_t>(asInteger(*next++))), width, leftAlign);
                break;
            case L's': {
                std::wstring text = asText(*next++);
                if (hasPrecision && text.size() > static_cast<std::size_t>(precision)) text.resize(precision);
                out += pad(std::move(text), width, leftAlign);
                break;
            }
            default:
                // Not a directive printf knows: keep its text, use no argument.
                out.append(format.substr(start, i - start));
                break;
        }
    }
    return out;
}

}  // namespace veltarn::host
