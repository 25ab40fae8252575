// printf-style formatting of the module's messages into wide strings.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace veltarn::host {

// One argument of format(): a whole number, a real or a text.
class FormatArg {
public:
    enum class Kind { kInteger, kReal, kText };

    FormatArg(int v) : kind_(Kind::kInteger), integer_(v) {}
    FormatArg(unsigned v) : kind_(Kind::kInteger), integer_(v) {}
    FormatArg(long v) : kind_(Kind::kInteger), integer_(v) {}
    FormatArg(unsigned long v) : kind_(Kind::kInteger), integer_(static_cast<long long>(v)) {}
    FormatArg(long long v) : kind_(Kind::kInteger), integer_(v) {}
    FormatArg(double v) : kind_(Kind::kReal), real_(v) {}
    FormatArg(const wchar_t* v) : kind_(Kind::kText), text_(v ? v : L"") {}
    FormatArg(const std::wstring& v) : kind_(Kind::kText), text_(v) {}
    FormatArg(std::wstring_view v) : kind_(Kind::kText), text_(v) {}

    Kind kind() const { return kind_; }
    long long integer() const { return integer_; }
    double real() const { return real_; }
    std::wstring_view text() const { return text_; }

private:
    Kind kind_;
    long long integer_ = 0;
    double real_ = 0;
    std::wstring_view text_;
};

// Formats as printf does: "%i" and "%d" (with "l", "ll", "h" length letters accepted), "%u",
// "%x", "%X", "%o", "%c", "%s" (a wide text), "%f" and "%lf" ("%.12lf" and other precisions),
// "%e", "%g", "%a", with flags, width and precision ("*" takes an integer argument), and "%%".
// Numbers come out exactly as C's printf writes them in the "C" locale. An argument of another
// kind than its directive wants is converted (a real under "%i" is truncated, a number under
// "%s" is written as "%lld" or "%f" would). A directive with no argument left, or one that is
// not well formed, is copied to the output as it stands; extra arguments are ignored.
std::wstring formatArgs(std::wstring_view format, std::initializer_list<FormatArg> args);

template <class... Args>
std::wstring format(std::wstring_view text, const Args&... args) {
    return formatArgs(text, {FormatArg(args)...});
}

}  // namespace veltarn::host
