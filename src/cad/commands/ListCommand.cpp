// LIST: what the command line can say about each chosen entity: its type, handle, layer, colour,
// linetype, and the contents of its extension dictionary, values included.
#include "cad/commands/HostSession.h"

#include "cad/commands/ObjectGathering.h"
#include "cad/commands/PropertyText.h"
#include "host/CommandFlags.h"
#include "host/Format.h"

namespace veltarn::cad {
namespace {

// Dictionaries nest; a damaged drawing could make them loop.
constexpr int kMaxDepth = 8;

std::wstring valueText(const host::TypedValue& value) {
    return std::visit(
        [](const auto& v) -> std::wstring {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::monostate>) return L"(none)";
            else if constexpr (std::is_same_v<T, std::int32_t> || std::is_same_v<T, std::int64_t>)
                return host::format(L"%lld", static_cast<long long>(v));
            else if constexpr (std::is_same_v<T, double>) return host::format(L"%.12g", v);
            else if constexpr (std::is_same_v<T, host::Point3d>) return host::format(L"%.12g,%.12g,%.12g", v.x, v.y, v.z);
            else if constexpr (std::is_same_v<T, std::wstring>) return L"\"" + v + L"\"";
            else if constexpr (std::is_same_v<T, host::ObjectId>) return host::format(L"handle %llX", static_cast<long long>(v.handle));
            else return host::format(L"%i bytes", static_cast<int>(v.data.size()));
        },
        value.value);
}

void listDictionary(host::Database& db, host::ObjectId dictionaryId, const std::wstring& indent, int depth,
                    std::wstring& out) {
    auto dictionary = db.openDictionary(dictionaryId, host::OpenMode::kRead);
    if (!dictionary || depth > kMaxDepth) return;
    for (const auto& [key, id] : dictionary->entries()) {
        auto object = db.openObject(id, host::OpenMode::kRead);
        if (auto* xrecord = dynamic_cast<host::DbXrecord*>(object.get())) {
            out += indent + L"\"" + key + L"\" XRECORD\n";
            for (const host::TypedValue& value : xrecord->data())
                out += indent + host::format(L"  %i: ", value.groupCode) + valueText(value) + L"\n";
        } else if (dynamic_cast<host::DbDictionary*>(object.get())) {
            object.reset();
            out += indent + L"\"" + key + L"\" DICTIONARY\n";
            listDictionary(db, id, indent + L"  ", depth + 1, out);
        } else {
            out += indent + L"\"" + key + L"\"\n";
        }
    }
}

std::wstring describe(HostSession& session, host::Database& db, host::ObjectId id) {
    auto entity = db.openEntity(id, host::OpenMode::kRead);
    if (!entity) return {};
    std::wstring out = host::format(L"%s  Handle = %llX\n", entity->dxfName(), static_cast<long long>(id.handle));
    out += L"  Layer: \"" + entity->layer() + L"\"\n";
    if (auto color = entity->property(host::EntityProperty::kColor))
        out += L"  Color: " + colorText(std::get<host::Color>(*color)) + L"\n";
    out += L"  Linetype: \"" + entity->textProperty(host::EntityProperty::kLinetype) + L"\"\n";
    const host::ObjectId extension = entity->extensionDictionary();
    entity.reset();
    if (extension) {
        out += L"  Extension dictionary:\n";
        listDictionary(db, extension, L"    ", 0, out);
    }
    // The module's object data, in its own readable form, when a listing is connected.
    if (session.listObjectData) out += session.listObjectData(db, id);
    return out;
}

}  // namespace

void registerListCommand(HostSession& session) {
    session.host.commandStack().addCommand(kHostGroup, L"LIST", L"LIST", host::CommandFlags::kUsePickSet, [&session] {
        host::Editor& editor = session.host.editor();
        std::optional<std::vector<host::ObjectId>> ids = gatherObjects(editor);
        host::Database* db = session.host.workingDatabase();
        if (!ids || !db) return;
        for (host::ObjectId id : *ids) editor.print(describe(session, *db, id));
    });
}

}  // namespace veltarn::cad
