#include "cad/dxf/TextCodec.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <mutex>

namespace veltarn::dxf {
namespace {

struct CodePageName {
    const char* dxf;
    const char* iconv;
};
constexpr CodePageName kCodePages[] = {
    {"ANSI_874", "CP874"},   {"ANSI_932", "CP932"},   {"ANSI_936", "CP936"},
    {"ANSI_949", "CP949"},   {"ANSI_950", "CP950"},   {"ANSI_1250", "CP1250"},
    {"ANSI_1251", "CP1251"}, {"ANSI_1252", "CP1252"}, {"ANSI_1253", "CP1253"},
    {"ANSI_1254", "CP1254"}, {"ANSI_1255", "CP1255"}, {"ANSI_1256", "CP1256"},
    {"ANSI_1257", "CP1257"}, {"ANSI_1258", "CP1258"}, {"ANSI_1361", "CP1361"},
};

// The code pages that the \M+n escape names, by n.
constexpr const char* kMultiByteCodePages[] = {nullptr, "CP932", "CP950", "CP949", "CP1361", "CP936"};

const char* iconvNameOf(std::string_view dxfName) {
    for (const auto& cp : kCodePages)
        if (dxfName == cp.dxf) return cp.iconv;
    return nullptr;
}

std::string upper(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// Four hex digits at `text[pos]`, or -1.
int hex4(std::string_view text, std::size_t pos) {
    if (pos + 4 > text.size()) return -1;
    int value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        int digit = hexValue(text[pos + i]);
        if (digit < 0) return -1;
        value = value << 4 | digit;
    }
    return value;
}

// Converts between one code page and UTF-8, one call at a time (iconv keeps state per handle).
class Converter {
public:
    Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
    ~Converter() {
        if (valid()) iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    bool valid() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

    // Converts `in`; for each sequence it cannot convert, calls onFailure(out, remaining input)
    // which appends a replacement and returns how many input bytes it consumed (at least 1).
    template <class OnFailure>
    void convert(std::string_view in, std::string& out, OnFailure onFailure) {
        std::lock_guard lock(mutex_);
        iconv(handle_, nullptr, nullptr, nullptr, nullptr);
        char* src = const_cast<char*>(in.data());
        std::size_t srcLeft = in.size();
        char buffer[512];
        while (srcLeft > 0) {
            char* dst = buffer;
            std::size_t dstLeft = sizeof buffer;
            std::size_t rc = iconv(handle_, &src, &srcLeft, &dst, &dstLeft);
            out.append(buffer, static_cast<std::size_t>(dst - buffer));
            if (rc == static_cast<std::size_t>(-1) && errno != E2BIG) {
                flush(out);
                std::size_t used = onFailure(out, std::string_view(src, srcLeft));
                src += used;
                srcLeft -= used;
            }
        }
        flush(out);
    }

private:
    // Writes out what the converter holds back and returns it to its initial state. Code pages
    // with combining marks (1255, 1258) hold the last character back to compose it with a mark
    // that may follow: without this, every text would lose its last character.
    void flush(std::string& out) {
        char buffer[64];
        char* dst = buffer;
        std::size_t dstLeft = sizeof buffer;
        iconv(handle_, nullptr, nullptr, &dst, &dstLeft);
        out.append(buffer, static_cast<std::size_t>(dst - buffer));
    }

    iconv_t handle_;
    std::mutex mutex_;
};

// Length of the UTF-8 sequence that starts with `lead`, 1 for a stray byte.
std::size_t utf8Length(unsigned char lead) {
    if (lead >= 0xF0) return 4;
    if (lead >= 0xE0) return 3;
    if (lead >= 0xC0) return 2;
    return 1;
}

char32_t decodeUtf8At(std::string_view text) {
    auto lead = static_cast<unsigned char>(text[0]);
    std::size_t length = std::min(utf8Length(lead), text.size());
    char32_t cp = length == 1 ? lead : lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) cp = cp << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    return cp;
}

void appendEscape(std::string& out, unsigned value) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\U+%04X", value & 0xFFFF);
    out += escape;
}

}  // namespace

std::size_t validUtf8Length(std::string_view in) {
    if (in.empty()) return 0;
    auto byte = [&](std::size_t k) { return static_cast<unsigned char>(in[k]); };
    unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || in.size() < length) return 0;
    for (std::size_t k = 1; k < length; ++k)
        if ((byte(k) & 0xC0) != 0x80) return 0;
    // The second byte's range is narrower after these leads (RFC 3629's table).
    if ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) >= 0xA0) || (lead == 0xF0 && byte(1) < 0x90) ||
        (lead == 0xF4 && byte(1) >= 0x90))
        return 0;
    return length;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        std::size_t length = validUtf8Length(text.substr(i));
        if (length == 0) return false;
        i += length;
    }
    return true;
}

namespace {

// Replaces invalid UTF-8 with U+FFFD so that every decoded text is valid UTF-8.
std::string sanitizeUtf8(std::string_view in) {
    std::string out;
    out.reserve(in.size());
    std::size_t i = 0;
    while (i < in.size()) {
        if (std::size_t length = validUtf8Length(in.substr(i))) {
            out.append(in.substr(i, length));
            i += length;
        } else {
            appendUtf8(out, 0xFFFD);
            ++i;
        }
    }
    return out;
}

// glibc's Johab (1361) reads byte 0x5C as the won sign, as Korea's national variant of ASCII does;
// DXF, like Windows' code page 1361, reads it as the backslash that starts escapes and MTEXT codes.
constexpr std::string_view kWonSign = "\u20A9";

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// True when text[i] starts what decode() reads as an escape: \U+XXXX, or \M+nXXXX with n in 1..5.
bool startsEscape(std::string_view text, std::size_t i) {
    if (text[i] != '\\' || i + 2 >= text.size() || text[i + 2] != '+') return false;
    if (text[i + 1] == 'U') return hex4(text, i + 3) >= 0;
    return text[i + 1] == 'M' && i + 3 < text.size() && text[i + 3] >= '1' && text[i + 3] <= '5' && hex4(text, i + 4) >= 0;
}

// Marks that code pages 1255 and 1258 compose with the letter before them.
bool isCombiningMark(char32_t cp) { return (cp >= 0x300 && cp <= 0x36F) || (cp >= 0x591 && cp <= 0x5C7); }

// \U+XXXX for one character; two of them, a UTF-16 surrogate pair, past U+FFFF.
void appendEscapes(std::string& out, char32_t cp) {
    if (cp >= 0x10000) {
        appendEscape(out, 0xD800 + ((cp - 0x10000) >> 10));
        appendEscape(out, 0xDC00 + ((cp - 0x10000) & 0x3FF));
    } else {
        appendEscape(out, cp);
    }
}

}  // namespace

struct TextCodec::Converters {
    Converters(const char* name)
        : toUtf8("UTF-8", name), fromUtf8(name, "UTF-8"), wonSignIsBackslash(std::string_view(name) == "CP1361") {}
    Converter toUtf8;
    Converter fromUtf8;
    bool wonSignIsBackslash;
};


bool versionIsUtf8(std::string_view acadVersion) {
    return acadVersion.size() == 6 && acadVersion.substr(0, 2) == "AC" && acadVersion >= "AC1021";
}

TextCodec::TextCodec() = default;

TextCodec TextCodec::forFile(std::string_view acadVersion, std::string_view dwgCodePage) {
    TextCodec codec;
    if (versionIsUtf8(acadVersion)) return codec;
    std::string name = upper(dwgCodePage);
    const char* iconvName = iconvNameOf(name);
    if (!iconvName) {
        name = "ANSI_1252";
        iconvName = "CP1252";
    }
    codec.codePage_ = name;
    codec.converters_ = std::make_shared<Converters>(iconvName);
    return codec;
}

bool TextCodec::needsDecoding(std::string_view raw) const {
    for (std::size_t i = 0; i < raw.size(); ++i) {
        auto c = static_cast<unsigned char>(raw[i]);
        if (c == '\\' && i + 2 < raw.size() && (raw[i + 1] == 'U' || raw[i + 1] == 'M') && raw[i + 2] == '+')
            return true;
        if (c >= 0x80) return true;
    }
    return false;
}

std::string TextCodec::decode(std::string_view raw) const {
    // Bytes of the file's encoding to UTF-8 first; escapes are plain ASCII in every code page.
    std::string utf8;
    if (isUtf8()) {
        utf8 = sanitizeUtf8(raw);
    } else {
        utf8.reserve(raw.size() + 8);
        converters_->toUtf8.convert(raw, utf8, [](std::string& out, std::string_view) {
            appendUtf8(out, 0xFFFD);
            return std::size_t{1};
        });
        if (converters_->wonSignIsBackslash) utf8 = replaceAll(std::move(utf8), kWonSign, "\\");
    }
    if (utf8.find('\\') == std::string::npos) return utf8;

    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        if (utf8[i] == '\\' && i + 2 < utf8.size() && utf8[i + 2] == '+') {
            if (utf8[i + 1] == 'U') {
                int unit = hex4(utf8, i + 3);
                if (unit >= 0) {
                    char32_t cp = static_cast<char32_t>(unit);
                    std::size_t consumed = 7;
                    if (unit >= 0xD800 && unit < 0xDC00 && utf8.compare(i + 7, 3, "\\U+") == 0) {
                        int low = hex4(utf8, i + 10);
                        if (low >= 0xDC00 && low < 0xE000) {
                            cp = 0x10000 + ((cp - 0xD800) << 10) + static_cast<char32_t>(low - 0xDC00);
                            consumed = 14;
                        }
                    }
                    if (cp >= 0xD800 && cp < 0xE000) cp = 0xFFFD;  // half a pair is no character
                    appendUtf8(out, cp);
                    i += consumed - 1;
                    continue;
                }
            } else if (utf8[i + 1] == 'M' && i + 3 < utf8.size()) {
                int page = utf8[i + 3] - '0';
                int bytes = hex4(utf8, i + 4);
                if (page >= 1 && page <= 5 && bytes >= 0) {
                    char pair[2] = {static_cast<char>(bytes >> 8), static_cast<char>(bytes & 0xFF)};
                    Converter converter("UTF-8", kMultiByteCodePages[page]);
                    if (converter.valid()) {
                        converter.convert(std::string_view(pair, 2), out, [](std::string& o, std::string_view) {
                            appendUtf8(o, 0xFFFD);
                            return std::size_t{1};
                        });
                        i += 7;
                        continue;
                    }
                }
            }
        }
        out += utf8[i];
    }
    return out;
}

std::string TextCodec::encode(std::string_view utf8, std::string_view escaped) const {
    bool plain = utf8.find('\\') == std::string_view::npos && utf8.find_first_of(escaped) == std::string_view::npos;
    if (plain && isUtf8()) return std::string(utf8);
    if (plain && std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return std::string(utf8);

    std::string out, run;  // `run`: text that goes through the code page's converter
    out.reserve(utf8.size() + 8);
    auto convertRun = [&] {
        if (run.empty()) return;
        if (isUtf8()) {
            out += run;
        } else {
            converters_->fromUtf8.convert(run, out, [](std::string& o, std::string_view rest) {
                if (static_cast<unsigned char>(rest[0]) < 0x80) {
                    o += rest[0];  // ASCII is ASCII in every code page DXF names, whatever iconv says
                    return std::size_t{1};
                }
                // What the code page lacks, and the marks that follow it (see below).
                std::size_t used = 0;
                do {
                    appendEscapes(o, decodeUtf8At(rest.substr(used)));
                    used += std::min(utf8Length(static_cast<unsigned char>(rest[used])), rest.size() - used);
                } while (used < rest.size() && isCombiningMark(decodeUtf8At(rest.substr(used))));
                return used;
            });
        }
        run.clear();
    };
    bool afterEscape = false;
    for (std::size_t i = 0; i < utf8.size();) {
        std::size_t length = std::min(utf8Length(static_cast<unsigned char>(utf8[i])), utf8.size() - i);
        char32_t cp = decodeUtf8At(utf8.substr(i));
        // An escape's last hex digit must not meet a combining mark: code pages 1255 and 1258 would
        // compose the two ("A" and a hook above make "Ả") and break the escape, so such marks are
        // escapes too. A won sign of code page 1361 would read back as a backslash.
        bool escape = (cp < 0x80 && escaped.find(static_cast<char>(cp)) != std::string_view::npos) ||
                      (afterEscape && !isUtf8() && isCombiningMark(cp)) ||
                      (cp == 0x20A9 && converters_ && converters_->wonSignIsBackslash);
        if (startsEscape(utf8, i)) {  // a backslash that would start an escape
            escape = true;
            cp = '\\';
        }
        if (escape) {
            convertRun();
            appendEscapes(out, cp);
        } else {
            run.append(utf8.substr(i, length));
        }
        afterEscape = escape;
        i += length;
    }
    convertRun();
    return out;
}

}  // namespace veltarn::dxf
