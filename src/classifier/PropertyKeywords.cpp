#include "classifier/PropertyKeywords.h"

#include "classifier/PropertyWords.h"
#include "base/Trim.h"
#include "host/LowerCase.h"
#include "host/Format.h"
#include "host/NumberRules.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace veltarn {

namespace {

using Texts = std::vector<std::wstring>;

// The value texts of one line: `value`, then the parts of `value2`.
Texts valueTexts(std::wstring_view value, std::wstring_view value2) {
    std::vector<std::wstring_view> raw{value};
    if (!value2.empty()) {
        wchar_t separator = value2.find(L':') != std::wstring_view::npos ? L':' : L',';
        std::size_t start = 0;
        for (;;) {
            std::size_t end = value2.find(separator, start);
            raw.push_back(value2.substr(start, end - start));
            if (end == std::wstring_view::npos) break;
            start = end + 1;
        }
    }
    Texts texts;
    for (std::wstring_view text : raw) {
        text = trim(text);
        if (!text.empty()) texts.emplace_back(text);
    }
    return texts;
}

// ---- one value text to a stored value; nullopt when it does not fit ----

std::optional<double> number(const std::wstring& text) {
    if (!isNumberText(text)) return std::nullopt;
    return host::wtof(text);
}

std::optional<std::int32_t> integer(const std::wstring& text) {
    if (!isNumberText(text)) return std::nullopt;
    return host::wtoi(text);
}

std::optional<std::wstring> asWritten(const std::wstring& text) { return text; }
std::optional<std::wstring> lowered(const std::wstring& text) { return host::toLower(text); }

template <const auto& Words>
std::optional<std::wstring> oneOf(const std::wstring& text) {
    std::wstring word = host::toLower(text);
    if (std::find(std::begin(Words), std::end(Words), word) == std::end(Words)) return std::nullopt;
    return word;
}

constexpr std::wstring_view kCircleModes[] = {L"center", L"2p", L"3p"};
constexpr std::wstring_view kDimensionModes[] = {L"aligned", L"angular", L"arc",    L"diameter",
                                                 L"jogged",  L"linear",  L"ordinate", L"radius"};
constexpr std::wstring_view kEllipseModes[] = {L"center", L"arc"};
constexpr std::wstring_view kMeshModes[] = {L"box", L"cone", L"cylinder", L"pyramid", L"sphere", L"wedge", L"torus"};
constexpr std::wstring_view kHatchModes[] = {L"boundary", L"point"};

// The parts of "(a b c)": the text between the first "(" and the last ")", split at blanks.
std::optional<Texts> parenthesised(const std::wstring& text) {
    std::size_t open = text.find(L'(');
    std::size_t close = text.rfind(L')');
    if (open == std::wstring::npos || close == std::wstring::npos || close < open) return std::nullopt;
    Texts parts;
    std::wstring_view inner = std::wstring_view(text).substr(open + 1, close - open - 1);
    std::size_t i = 0;
    while (i < inner.size()) {
        std::size_t start = inner.find_first_not_of(L" \t", i);
        if (start == std::wstring_view::npos) break;
        std::size_t end = std::min(inner.find_first_of(L" \t", start), inner.size());
        parts.emplace_back(inner.substr(start, end - start));
        i = end;
    }
    return parts;
}

std::optional<PropertyColor> colorValue(const std::wstring& text, bool allowNone) {
    std::wstring word = host::toLower(text);
    if (word == L"byblock") return PropertyColor{kColorByBlock};
    if (word == L"bylayer") return PropertyColor{kColorByLayer};
    if (allowNone && word == L"none") return PropertyColor{kColorNone};
    if (text.find(L'(') != std::wstring::npos) {
        auto parts = parenthesised(text);
        if (!parts || parts->size() != 3) return std::nullopt;
        PropertyColor rgb;
        for (const auto& part : *parts) {
            auto component = integer(part);
            if (!component || *component < 0 || *component > 255) return std::nullopt;
            rgb.push_back(*component);
        }
        return rgb;
    }
    auto index = integer(text);
    if (!index || *index < kColorByBlock || *index > kColorByLayer) return std::nullopt;
    return PropertyColor{*index};
}

std::optional<PropertyColor> color(const std::wstring& text) { return colorValue(text, false); }
std::optional<PropertyColor> colorOrNone(const std::wstring& text) { return colorValue(text, true); }

// The weights a drawing can hold; anything else would be refused by every CAD program.
constexpr std::int32_t kLineWeights[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                         53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

std::optional<std::int32_t> lineWeight(const std::wstring& text) {
    std::wstring word = host::toLower(text);
    if (word == L"byblock") return kLineWeightByBlock;
    if (word == L"bylayer") return kLineWeightByLayer;
    if (word == L"default") return kLineWeightDefault;
    auto weight = integer(text);
    if (!weight || std::find(std::begin(kLineWeights), std::end(kLineWeights), *weight) == std::end(kLineWeights)) {
        return std::nullopt;
    }
    return weight;
}

std::optional<BlockScale> blockScale(const std::wstring& text) {
    if (text.find(L'(') == std::wstring::npos) {
        auto uniform = number(text);
        if (!uniform) return std::nullopt;
        return BlockScale{*uniform, *uniform, *uniform};
    }
    auto parts = parenthesised(text);
    if (!parts || parts->size() != 3) return std::nullopt;
    auto x = number((*parts)[0]);
    auto y = number((*parts)[1]);
    auto z = number((*parts)[2]);
    if (!x || !y || !z) return std::nullopt;
    return BlockScale{*x, *y, *z};
}

std::optional<std::int8_t> closedFlag(const std::wstring& text) {
    auto value = integer(text);
    if (!value) return std::nullopt;
    return static_cast<std::int8_t>(*value != 0 ? 1 : 0);
}

// Kept clear of -128, which marks an absent value.
std::optional<std::int8_t> smallInteger(const std::wstring& text) {
    auto value = integer(text);
    if (!value) return std::nullopt;
    return static_cast<std::int8_t>(std::clamp(*value, -127, 127));
}

std::optional<MlineJustification> mlineJustification(const std::wstring& text) {
    return mlineJustificationFromWord(host::toLower(text));
}

std::optional<MTextAttachment> attachment(const std::wstring& text) {
    return attachmentFromWord(host::toLower(text));
}

std::optional<TextJustification> textJustification(const std::wstring& text) {
    return textJustificationFromWord(host::toLower(text));
}

// ---- the keyword table ----

template <class T>
struct Slot {
    Property<T> ObjectProperties::*member;
    std::optional<T> (*parseOne)(const std::wstring&);
};

struct ExplodeFlag {};

using SlotOf = std::variant<Slot<std::wstring>, Slot<double>, Slot<std::int8_t>, Slot<std::int32_t>,
                            Slot<PropertyColor>, Slot<BlockScale>, Slot<MlineJustification>,
                            Slot<MTextAttachment>, Slot<TextJustification>, ExplodeFlag>;

struct Keyword {
    std::wstring_view name;
    SlotOf slot;
};

using P = ObjectProperties;

const std::array<Keyword, 34> kKeywords{{
    {L"color", Slot<PropertyColor>{&P::color, &color}},
    {L"explode", ExplodeFlag{}},
    {L"layer", Slot<std::wstring>{&P::layer, &asWritten}},
    {L"linetype", Slot<std::wstring>{&P::linetype, &asWritten}},
    {L"linetypescale", Slot<double>{&P::linetypeScale, &number}},
    {L"lineweight", Slot<std::int32_t>{&P::lineWeight, &lineWeight}},
    {L"backgroundcolor", Slot<PropertyColor>{&P::backgroundColor, &colorOrNone}},
    {L"blockname", Slot<std::wstring>{&P::blockName, &lowered}},
    {L"blockscale", Slot<BlockScale>{&P::blockScale, &blockScale}},
    {L"closed", Slot<std::int8_t>{&P::closed, &closedFlag}},
    {L"circlemode", Slot<std::wstring>{&P::circleMode, &oneOf<kCircleModes>}},
    {L"circleradius", Slot<double>{&P::circleRadius, &number}},
    {L"constantwidth", Slot<double>{&P::constantWidth, &number}},
    {L"dimensionmode", Slot<std::wstring>{&P::dimensionMode, &oneOf<kDimensionModes>}},
    {L"dimensionstyle", Slot<std::wstring>{&P::dimensionStyle, &lowered}},
    {L"elevation", Slot<double>{&P::elevation, &number}},
    {L"ellipsemode", Slot<std::wstring>{&P::ellipseMode, &oneOf<kEllipseModes>}},
    {L"meshmode", Slot<std::wstring>{&P::meshMode, &oneOf<kMeshModes>}},
    {L"mleaderstyle", Slot<std::wstring>{&P::mleaderStyle, &lowered}},
    {L"mlinejustification", Slot<MlineJustification>{&P::mlineJustification, &mlineJustification}},
    {L"mlinescale", Slot<double>{&P::mlineScale, &number}},
    {L"mlinestyle", Slot<std::wstring>{&P::mlineStyle, &lowered}},
    {L"mtextattachmentpoint", Slot<MTextAttachment>{&P::mtextAttachmentPoint, &attachment}},
    {L"pattern", Slot<std::wstring>{&P::pattern, &lowered}},
    {L"patternangle", Slot<double>{&P::patternAngle, &number}},
    {L"patterncolor", Slot<PropertyColor>{&P::patternColor, &color}},
    {L"hatchmode", Slot<std::wstring>{&P::hatchMode, &oneOf<kHatchModes>}},
    {L"patternscale", Slot<double>{&P::patternScale, &number}},
    {L"rotate", Slot<std::int8_t>{&P::rotate, &smallInteger}},
    {L"angle", Slot<double>{&P::angle, &number}},
    {L"text", Slot<std::wstring>{&P::text, &asWritten}},
    {L"textheight", Slot<double>{&P::textHeight, &number}},
    {L"textjustification", Slot<TextJustification>{&P::textJustification, &textJustification}},
    {L"textstyle", Slot<std::wstring>{&P::textStyle, &lowered}},
}};

const Keyword* findKeyword(std::wstring_view lowerKeyword) {
    for (const auto& keyword : kKeywords) {
        if (keyword.name == lowerKeyword) return &keyword;
    }
    return nullptr;
}

template <class T>
bool store(ObjectProperties& properties, const Slot<T>& slot, const Texts& texts) {
    std::vector<std::optional<T>> entries;
    for (const auto& text : texts) {
        if (text == L"?") {
            entries.emplace_back(std::nullopt);
            continue;
        }
        auto value = slot.parseOne(text);
        if (!value) return false;
        entries.emplace_back(std::move(value));
    }
    (properties.*slot.member).assign(std::move(entries));
    return true;
}

// The first value decides; "?" cannot be asked for this flag and leaves it as it is.
bool store(ObjectProperties& properties, ExplodeFlag, const Texts& texts) {
    for (const auto& text : texts) {
        if (text == L"?") continue;
        auto value = integer(text);
        if (!value) return false;
        properties.explode = *value > 0;
        break;
    }
    return true;
}

// ---- stored values back to text ----

std::wstring textOf(const std::wstring& value, int) { return value; }
std::wstring textOf(double value, int decimals) {
    return host::format(host::format(L"%%.%ilf", decimals), value);
}
std::wstring textOf(std::int8_t value, int) { return host::format(L"%i", static_cast<int>(value)); }
std::wstring textOf(std::int32_t weight, int) {
    switch (weight) {
        case kLineWeightByBlock: return L"ByBlock";
        case kLineWeightByLayer: return L"ByLayer";
        case kLineWeightDefault: return L"Default";
        default: return host::format(L"%i", weight);
    }
}
std::wstring textOf(const PropertyColor& value, int) { return colorText(value); }
std::wstring textOf(const BlockScale& scale, int decimals) {
    if (scale.isUniform()) return textOf(scale.x, decimals);
    return L"(" + textOf(scale.x, decimals) + L" " + textOf(scale.y, decimals) + L" " + textOf(scale.z, decimals) + L")";
}
std::wstring textOf(MlineJustification value, int) { return std::wstring(mlineJustificationName(value)); }
std::wstring textOf(MTextAttachment value, int) { return std::wstring(attachmentName(value)); }
std::wstring textOf(TextJustification value, int) { return std::wstring(textJustificationName(value)); }

}  // namespace

std::vector<std::wstring> propertyTexts(const ObjectProperties& properties, std::wstring_view keyword,
                                        int decimals) {
    const Keyword* found = findKeyword(keyword);
    if (!found) return {};
    return std::visit(
        [&]<class S>(const S& slot) {
            std::vector<std::wstring> texts;
            if constexpr (std::is_same_v<S, ExplodeFlag>) {
                if (properties.explode) texts.emplace_back(L"1");
            } else {
                for (const auto& entry : (properties.*slot.member).entries()) {
                    texts.push_back(entry ? textOf(*entry, decimals) : std::wstring(L"?"));
                }
            }
            return texts;
        },
        found->slot);
}

bool isNumberText(std::wstring_view text) {
    std::size_t i = 0;
    if (i < text.size() && (text[i] == L'+' || text[i] == L'-')) ++i;
    bool digit = false;
    bool point = false;
    for (; i < text.size(); ++i) {
        if (text[i] >= L'0' && text[i] <= L'9') {
            digit = true;
        } else if (text[i] == L'.' && !point) {
            point = true;
        } else {
            return false;
        }
    }
    return digit;
}

bool parseProperty(ObjectProperties& properties, std::wstring_view keyword, std::wstring_view value,
                   std::wstring_view value2) {
    const Keyword* found = findKeyword(host::toLower(keyword));
    if (!found) return false;
    Texts texts = valueTexts(value, value2);
    if (texts.empty()) return false;
    return std::visit([&](const auto& slot) { return store(properties, slot, texts); }, found->slot);
}

bool isPropertyOpen(const ObjectProperties& properties, std::wstring_view keyword) {
    const Keyword* found = findKeyword(keyword);
    if (!found) return false;
    return std::visit(
        [&]<class S>(const S& slot) {
            if constexpr (std::is_same_v<S, ExplodeFlag>) {
                return false;
            } else {
                return (properties.*slot.member).isOpen();
            }
        },
        found->slot);
}

void clearProperty(ObjectProperties& properties, std::wstring_view keyword) {
    const Keyword* found = findKeyword(keyword);
    if (!found) return;
    std::visit(
        [&]<class S>(const S& slot) {
            if constexpr (std::is_same_v<S, ExplodeFlag>) {
                properties.explode = false;
            } else {
                (properties.*slot.member).clear();
            }
        },
        found->slot);
}

}  // namespace veltarn
