// CHPROP: the layer, colour, linetype, linetype scale and lineweight of chosen objects, changed
// by typed values until Enter; objects on locked layers are left as they are.
#include "cad/commands/HostSession.h"

#include <algorithm>
#include <iterator>

#include "base/Trim.h"
#include "cad/commands/ObjectGathering.h"
#include "cad/commands/PropertyText.h"
#include "host/CommandFlags.h"
#include "host/Format.h"
#include "host/LowerCase.h"

namespace veltarn::cad {
namespace {

using host::EntityProperty;
using host::PromptStatus;
using host::PropertyValue;

constexpr int kLineweightByLayer = -1, kLineweightByBlock = -2, kLineweightDefault = -3;
// The weights a drawing can hold, in hundredths of a millimetre; others would be refused by
// the programs that read the drawing after us.
constexpr int kLineweights[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

// Digits only, no sign: every whole number CHPROP takes is positive.
std::optional<int> wholeNumber(std::wstring_view text) {
    text = trim(text);
    if (text.empty() || text.size() > 4 ||
        !std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L'0' && c <= L'9'; }))
        return std::nullopt;
    int value = 0;
    for (wchar_t c : text)
        value = value * 10 + (c - L'0');
    return value;
}

std::optional<host::Color> parseColor(const std::wstring& text) {
    if (host::equalsIgnoringCase(text, L"ByLayer")) return host::Color::fromIndex(host::Color::kByLayer);
    if (host::equalsIgnoringCase(text, L"ByBlock")) return host::Color::fromIndex(host::Color::kByBlock);
    if (text.find(L',') == std::wstring::npos) {
        const std::optional<int> index = wholeNumber(text);
        if (!index || *index < 1 || *index > 255) return std::nullopt;
        return host::Color::fromIndex(*index);
    }
    int rgb[3];
    std::wstring_view rest = text;
    for (int& component : rgb) {
        const std::size_t comma = &component == &rgb[2] ? rest.size() : rest.find(L',');
        if (comma == std::wstring_view::npos) return std::nullopt;
        const std::optional<int> part = wholeNumber(rest.substr(0, comma));
        if (!part || *part > 255) return std::nullopt;
        component = *part;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return host::Color::fromRgb(rgb[0], rgb[1], rgb[2]);
}

std::optional<int> parseLineweight(const std::wstring& text) {
    if (host::equalsIgnoringCase(text, L"ByLayer")) return kLineweightByLayer;
    if (host::equalsIgnoringCase(text, L"ByBlock")) return kLineweightByBlock;
    if (host::equalsIgnoringCase(text, L"Default")) return kLineweightDefault;
    const std::optional<int> weight = wholeNumber(text);
    if (!weight || std::find(std::begin(kLineweights), std::end(kLineweights), *weight) == std::end(kLineweights))
        return std::nullopt;
    return weight;
}

std::wstring valueText(const PropertyValue& value) {
    if (const auto* text = std::get_if<std::wstring>(&value)) return *text;
    if (const auto* color = std::get_if<host::Color>(&value)) return colorText(*color);
    if (const auto* real = std::get_if<double>(&value)) return host::format(L"%.12g", *real);
    if (const auto* weight = std::get_if<int>(&value)) {
        if (*weight == kLineweightByLayer) return L"BYLAYER";
        if (*weight == kLineweightByBlock) return L"BYBLOCK";
        if (*weight == kLineweightDefault) return L"DEFAULT";
        return host::format(L"%i", *weight);
    }
    return {};
}

class ChpropCommand {
public:
    ChpropCommand(host::Editor& editor, host::Database& db) : editor_(editor), db_(db) {}

    void run() {
        std::optional<std::vector<host::ObjectId>> chosen = gatherObjects(editor_);
        if (!chosen) return;
        int locked = 0;
        for (host::ObjectId id : *chosen) {
            if (db_.openEntity(id, host::OpenMode::kWrite))
                objects_.push_back(id);
            else if (db_.openEntity(id, host::OpenMode::kRead))
                ++locked;
        }
        reportLocked(locked);
        if (objects_.empty()) return;

        // "LT" and "S", the capitals of LType and ltScale, are listed too: as a prefix "LT" would
        // fit both, and "S" fits neither.
        const std::vector<std::wstring> keywords = {L"Color", L"LAyer", L"LType", L"ltScale", L"LWeight", L"LT", L"S"};
        while (!cancelled_) {
            std::wstring option;
            if (editor_.getKeyword(L"Enter property to change [Color/LAyer/LType/ltScale/LWeight]: ", keywords,
                                   option) != PromptStatus::kNormal)
                return;  // Enter ends the command
            if (option == L"Color")
                changeColor();
            else if (option == L"LAyer")
                changeLayer();
            else if (option == L"LType" || option == L"LT")
                changeLinetype();
            else if (option == L"ltScale" || option == L"S")
                changeScale();
            else if (option == L"LWeight")
                changeLineweight();
        }
    }

private:
    void reportLocked(int locked) {
        if (locked == 1)
            editor_.print(L"1 was on a locked layer.\n");
        else if (locked > 1)
            editor_.print(host::format(L"%i were on a locked layer.\n", locked));
    }

    // The value the chosen objects share, or "varies".
    std::wstring current(EntityProperty property) {
        std::optional<PropertyValue> common;
        for (host::ObjectId id : objects_) {
            auto entity = db_.openEntity(id, host::OpenMode::kRead);
            if (!entity) continue;
            std::optional<PropertyValue> value = entity->property(property);
            if (!value) continue;
            if (common && *common != *value) return L"varies";
            common = std::move(value);
        }
        return common ? valueText(*common) : L"varies";
    }

    // The typed answer; nullopt on Enter alone (the property keeps its values) or a cancel (which
    // ends the command).
    std::optional<std::wstring> ask(const std::wstring& prompt, EntityProperty property) {
        std::wstring answer;
        if (editor_.getString(prompt + L" <" + current(property) + L">: ", false, answer) != PromptStatus::kNormal) {
            cancelled_ = true;
            return std::nullopt;
        }
        if (answer.empty()) return std::nullopt;
        return answer;
    }

    // An object moved to a locked layer earlier in this command cannot be changed again.
    void apply(EntityProperty property, const PropertyValue& value) {
        int locked = 0;
        for (host::ObjectId id : objects_) {
            auto entity = db_.openEntity(id, host::OpenMode::kWrite);
            if (!entity) {
                if (db_.openEntity(id, host::OpenMode::kRead)) ++locked;
                continue;
            }
            // Refused only for values checked above or for an entity without the property
            // (lineweights in an R12 drawing): those keep theirs.
            (void)entity->setProperty(property, value);
        }
        reportLocked(locked);
    }

    // The record's name as the drawing spells it; empty when the table has none.
    std::wstring recordName(host::SymbolTable table, const std::wstring& typed) const {
        for (const auto& [name, id] : db_.symbols(table))
            if (host::equalsIgnoringCase(name, typed)) return name;
        return {};
    }

    void changeColor() {
        while (auto answer = ask(L"Enter new color", EntityProperty::kColor)) {
            if (std::optional<host::Color> color = parseColor(*answer)) {
                apply(EntityProperty::kColor, *color);
                return;
            }
            editor_.print(L"Color \"" + *answer + L"\" is not an index from 1 to 255, ByLayer, ByBlock or R,G,B.\n");
        }
    }

    void changeLayer() {
        while (auto answer = ask(L"Enter new layer name", EntityProperty::kLayer)) {
            if (const std::wstring name = recordName(host::SymbolTable::kLayer, *answer); !name.empty()) {
                apply(EntityProperty::kLayer, name);
                return;
            }
            editor_.print(L"Layer " + *answer + L" not found.\n");
        }
    }

    void changeLinetype() {
        while (auto answer = ask(L"Enter new linetype name", EntityProperty::kLinetype)) {
            std::wstring name = recordName(host::SymbolTable::kLinetype, *answer);
            // A drawing need not list ByLayer and ByBlock among its linetypes.
            if (name.empty() && host::equalsIgnoringCase(*answer, L"ByLayer")) name = L"ByLayer";
            if (name.empty() && host::equalsIgnoringCase(*answer, L"ByBlock")) name = L"ByBlock";
            if (!name.empty()) {
                apply(EntityProperty::kLinetype, name);
                return;
            }
            editor_.print(L"Linetype " + *answer + L" not found.\n");
        }
    }

    void changeScale() {
        while (true) {
            double scale = 0;
            const PromptStatus status = editor_.getReal(
                L"Specify new linetype scale <" + current(EntityProperty::kLinetypeScale) + L">: ", scale);
            if (status != PromptStatus::kNormal) {
                cancelled_ = status != PromptStatus::kNone;
                return;
            }
            if (scale > 0) {
                apply(EntityProperty::kLinetypeScale, scale);
                return;
            }
            editor_.print(L"Requires a positive number.\n");
        }
    }

    void changeLineweight() {
        while (auto answer = ask(L"Enter new lineweight", EntityProperty::kLineWeight)) {
            if (std::optional<int> weight = parseLineweight(*answer)) {
                apply(EntityProperty::kLineWeight, *weight);
                return;
            }
            editor_.print(L"Lineweight \"" + *answer +
                          L"\" is not ByLayer, ByBlock, Default or a standard weight in hundredths of a millimetre.\n");
        }
    }

    host::Editor& editor_;
    host::Database& db_;
    std::vector<host::ObjectId> objects_;
    bool cancelled_ = false;
};

}  // namespace

void registerChpropCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"CHPROP", L"CHPROP", host::CommandFlags::kUsePickSet,
                                           [&session] {
                                               host::Database* db = session.host.workingDatabase();
                                               if (!db) return;
                                               ChpropCommand(session.host.editor(), *db).run();
                                           });
}

}  // namespace veltarn::cad
