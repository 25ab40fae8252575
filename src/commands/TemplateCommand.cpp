#include "commands/TemplateCommand.h"

#include <algorithm>
#include <map>

#include "base/TextFileWrite.h"
#include "classifier/DefinitionWriter.h"
#include "commands/CommandPrompts.h"
#include "commands/EntityDescription.h"
#include "commands/ObjectGathering.h"
#include "data/ObjectDataTables.h"
#include "host/Format.h"
#include "host/LowerCase.h"
#include "host/Utf8.h"
#include "res/StringTable.h"

namespace veltarn {
namespace {

void replaceAll(std::wstring& text, std::wstring_view placeholder, const std::wstring& value) {
    for (std::size_t at = text.find(placeholder); at != std::wstring::npos; at = text.find(placeholder, at + value.size()))
        text.replace(at, placeholder.size(), value);
}

std::wstring variableText(const host::VariableValue& value) {
    switch (value.type) {
        case host::VariableType::kShort:
        case host::VariableType::kLong: return std::to_wstring(value.integer);
        case host::VariableType::kReal: return host::format(L"%g", value.real);
        case host::VariableType::kString: return value.text;
        default: return {};
    }
}

std::wstring resourceHeader(const std::wstring& drawing) {
    static constexpr const wchar_t* kKeywords[] = {L"BlockReference", L"BlockReferenceFile", L"Dimension", L"Layer",
                                                   L"Layout", L"Linetype", L"MLeader", L"Mline", L"Pattern",
                                                   L"Textstyle"};
    std::wstring text;
    for (const wchar_t* keyword : kKeywords) text += (text.empty() ? L"#" : L"\n#") + std::wstring(keyword) + L"\t" + drawing;
    return text + L"\n\n";
}

std::wstring variableLines(const host::SystemVariables& variables) {
    std::wstring text;
    for (const wchar_t* name : {L"INSUNITS", L"LUPREC"}) {
        const std::optional<host::VariableValue> value = variables.get(name);
        const std::wstring valueText = value ? variableText(*value) : std::wstring();
        if (!valueText.empty()) text += L"Variable\t" + std::wstring(name) + L"\t" + valueText + L"\n";
    }
    return text.empty() ? text : text + L"\n";
}

// The tables the drawing defines, commented out: the user turns them into real ones.
std::wstring tableLines(host::Database& db) {
    std::vector<std::wstring> tables;
    listTables(db, kListTablesMode, tables);
    std::wstring text;
    for (const std::wstring& table : tables) {
        text += host::format(L"\n#od_name\t%s\n", table);
        ObjectDataRecord definition;
        if (!readTableDefinition(db, table, definition)) continue;
        for (const FieldValue& field : definition.fields)
            text += host::format(L"#\tod_fld\t%s\tdescription\t", field.name()) + fieldTypeName(field.type()) + L"\n";
    }
    return text;
}

}  // namespace

std::wstring templateObjectName(const std::wstring& format, int number, const std::wstring& type, const std::wstring& layer) {
    std::wstring name = format;
    replaceAll(name, L"%i", std::to_wstring(number));
    replaceAll(name, L"%L", layer);
    replaceAll(name, L"%l", host::toLower(layer));
    replaceAll(name, L"%T", type);
    replaceAll(name, L"%t", host::toLower(type));
    return name;
}

void templateCommand(CommandContext& context) {
    host::Host& host = context.host;
    CandidateList list = GetImpliedSelection(host);
    if (list.empty() && !PromptSelection(host, list)) return;
    if (list.empty()) list = CollectModelSpace(host);
    FilterUsable(host, list);
    if (list.empty()) return;

    std::wstring& format = context.state.options.templateFormat;
    std::wstring answer;
    if (host.editor().getString(host::format(loadString(StringId::kPromptFormat), format), true, answer, kNameLength) !=
        host::PromptStatus::kNormal)
        return;
    if (!answer.empty()) {
        const bool hasType = answer.find(L"%T") != std::wstring::npos || answer.find(L"%t") != std::wstring::npos;
        if (!hasType || answer.find(L"%i") == std::wstring::npos) {
            host.editor().print(host::format(loadString(StringId::kErrorInvalidFormat)));
            return;
        }
        format = answer;
    }

    host::FileDialogRequest request;
    request.defaultExtension = L"txt";
    request.filter = loadString(StringId::kFilterTextFiles);
    request.confirmOverwrite = true;
    request.createPrompt = true;
    const std::optional<std::wstring> path = host.dialogs().saveFile(request);
    if (!path) return;

    // Distinct descriptions per type, types in text order, descriptions in selection order.
    host::Database& db = *host.workingDatabase();
    std::map<std::wstring, std::vector<ClassDef>> groups;
    for (host::ObjectId id : list) {
        auto entity = db.openEntity(id, host::OpenMode::kRead);
        if (!entity) continue;
        std::optional<ClassDef> description = describeEntity(*entity);
        if (!description) continue;
        const std::wstring& type = description->types.front();
        if (type == L"BlockReference") {
            const std::wstring block = entity->textProperty(host::EntityProperty::kBlockName);
            if (block.empty() || block.front() == L'*') continue;
        }
        std::vector<ClassDef>& group = groups[type];
        if (std::find_if(group.begin(), group.end(), [&](const ClassDef& known) {
                return known.types == description->types && known.properties == description->properties;
            }) == group.end())
            group.push_back(std::move(*description));
    }

    std::wstring text = resourceHeader(db.fileName()) + variableLines(host.systemVariables());
    const int decimals = linearPrecision(host.systemVariables());
    int written = 0;
    for (auto& [type, descriptions] : groups) {
        text += L"Class\t" + type + L"\t1\n\n";
        for (std::size_t k = 0; k < descriptions.size(); ++k) {
            ClassDef& def = descriptions[k];
            const std::wstring layer = def.properties.layer.isSet() ? def.properties.layer.value() : std::wstring();
            def.name = templateObjectName(format, static_cast<int>(k + 1), type, layer);
            def.key = host::toLower(def.name);
            const ClassDef* existing = context.state.classifier ? context.state.classifier->find(def.key) : nullptr;
            std::wstring icon;
            text += writeDefinition(def, existing, decimals, icon);
            text += L"\tod_name\tOD_NAME\n\t\tod_key\tOD_KEY\n\n";
            ++written;
        }
        text += L"/Class\n\n";
    }
    text += tableLines(db);

    if (!writeTextFile(host::toUtf8(*path), host::toUtf8(text)).empty()) {
        // The message is shown as it stands, its placeholder unfilled, as the box has always shown it.
        host.editor().messageBox(loadString(StringId::kErrorUnableToOpenBox), loadString(StringId::kCaptionError),
                                 host::MessageIcon::kError);
        return;
    }
    host.editor().print(host::format(loadString(StringId::kCompletedRatio), written, static_cast<int>(list.size())));
}

}  // namespace veltarn
