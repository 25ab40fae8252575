#include "classifier/PropertyWords.h"

#include <utility>

namespace veltarn {

namespace {

// The display names are the words with capitals; matching is against their lower-case form,
// which is plain ASCII.
bool sameWord(std::wstring_view name, std::wstring_view lowerWord) {
    if (name.size() != lowerWord.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        wchar_t c = name[i];
        if (c >= L'A' && c <= L'Z') c = c - L'A' + L'a';
        if (c != lowerWord[i]) return false;
    }
    return true;
}

constexpr std::pair<TextJustification, std::wstring_view> kTextJustifications[] = {
    {TextJustification::Left, L"Left"},
    {TextJustification::Center, L"Center"},
    {TextJustification::Right, L"Right"},
    {TextJustification::Aligned, L"Aligned"},
    {TextJustification::Middle, L"Middle"},
    {TextJustification::Fit, L"Fit"},
    {TextJustification::TopLeft, L"TopLeft"},
    {TextJustification::TopCenter, L"TopCenter"},
    {TextJustification::TopRight, L"TopRight"},
    {TextJustification::MiddleLeft, L"MiddleLeft"},
    {TextJustification::MiddleCenter, L"MiddleCenter"},
    {TextJustification::MiddleRight, L"MiddleRight"},
    {TextJustification::BottomLeft, L"BottomLeft"},
    {TextJustification::BottomCenter, L"BottomCenter"},
    {TextJustification::BottomRight, L"BottomRight"},
};

constexpr std::pair<MTextAttachment, std::wstring_view> kAttachments[] = {
    {MTextAttachment::TopLeft, L"TopLeft"},
    {MTextAttachment::TopCenter, L"TopCenter"},
    {MTextAttachment::TopRight, L"TopRight"},
    {MTextAttachment::MiddleLeft, L"MiddleLeft"},
    {MTextAttachment::MiddleCenter, L"MiddleCenter"},
    {MTextAttachment::MiddleRight, L"MiddleRight"},
    {MTextAttachment::BottomLeft, L"BottomLeft"},
    {MTextAttachment::BottomCenter, L"BottomCenter"},
    {MTextAttachment::BottomRight, L"BottomRight"},
    {MTextAttachment::BaseLeft, L"BaseLeft"},
    {MTextAttachment::BaseCenter, L"BaseCenter"},
    {MTextAttachment::BaseRight, L"BaseRight"},
    {MTextAttachment::BaseAlign, L"BaseAlign"},
    {MTextAttachment::BottomAlign, L"BottomAlign"},
    {MTextAttachment::MiddleAlign, L"MiddleAlign"},
    {MTextAttachment::TopAlign, L"TopAlign"},
    {MTextAttachment::BaseFit, L"BaseFit"},
    {MTextAttachment::BottomFit, L"BottomFit"},
    {MTextAttachment::MiddleFit, L"MiddleFit"},
    {MTextAttachment::TopFit, L"TopFit"},
    {MTextAttachment::BaseMid, L"BaseMid"},
    {MTextAttachment::BottomMid, L"BottomMid"},
    {MTextAttachment::MiddleMid, L"MiddleMid"},
    {MTextAttachment::TopMid, L"TopMid"},
};

template <class Code, std::size_t N>
std::optional<Code> fromWord(const std::pair<Code, std::wstring_view> (&table)[N], std::wstring_view word) {
    for (const auto& [code, name] : table) {
        if (sameWord(name, word)) return code;
    }
    return std::nullopt;
}

template <class Code, std::size_t N>
std::wstring_view nameOf(const std::pair<Code, std::wstring_view> (&table)[N], Code code) {
    for (const auto& [c, name] : table) {
        if (c == code) return name;
    }
    return {};
}

}  // namespace

std::optional<TextJustification> textJustificationFromWord(std::wstring_view lowerWord) {
    return fromWord(kTextJustifications, lowerWord);
}

std::wstring_view textJustificationName(TextJustification justification) {
    return nameOf(kTextJustifications, justification);
}

std::optional<MTextAttachment> attachmentFromWord(std::wstring_view lowerWord) {
    return fromWord(kAttachments, lowerWord);
}

std::wstring_view attachmentName(MTextAttachment attachment) { return nameOf(kAttachments, attachment); }

MlineJustification mlineJustificationFromWord(std::wstring_view lowerWord) {
    if (lowerWord == L"bottom") return MlineJustification::Bottom;
    if (lowerWord == L"zero") return MlineJustification::Zero;
    return MlineJustification::Top;
}

std::wstring_view mlineJustificationName(MlineJustification justification) {
    switch (justification) {
        case MlineJustification::Zero: return L"Zero";
        case MlineJustification::Bottom: return L"Bottom";
        case MlineJustification::Top: break;
    }
    return L"Top";
}

}  // namespace veltarn
