#include "classifier/ClassifierReader.h"

#include "classifier/ClassResources.h"
#include "classifier/ClassifierLines.h"
#include "classifier/MacroTable.h"
#include "classifier/PropertyKeywords.h"
#include "classifier/ResourcePath.h"
#include "base/Trim.h"
#include "host/Format.h"
#include "host/LowerCase.h"
#include "host/NumberRules.h"
#include "base/RegularFile.h"
#include "host/Utf8.h"
#include "res/StringTable.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <set>

namespace veltarn {

namespace {

using Columns = std::vector<std::wstring>;

constexpr std::wstring_view kRefusedNameChars = L"`~!@#$%^&*()=+[]{};:'\"\\|,<.>/? \t";
constexpr std::size_t kMaxTableNameLength = 25;
constexpr std::size_t kMaxFieldNameLength = 31;

bool isGoodName(std::wstring_view name, std::size_t maxLength) {
    return !name.empty() && name.size() <= maxLength && name.find_first_of(kRefusedNameChars) == std::wstring_view::npos;
}

// A regular file that opens; a FIFO would block a plain open, a device would read for ever.
bool canOpen(const std::wstring& path) { return checkRegularFile(host::toUtf8(path)).ok(); }

// The kinds in the order the missing-resource warnings are given.
constexpr std::pair<ResourceKind, StringId> kMissingWarnings[] = {
    {ResourceKind::Block, StringId::kReaderBlockNotFound},
    {ResourceKind::DimensionStyle, StringId::kReaderDimensionNotFound},
    {ResourceKind::Layer, StringId::kReaderLayerNotFound},
    {ResourceKind::Linetype, StringId::kReaderLinetypeNotFound},
    {ResourceKind::MleaderStyle, StringId::kReaderMleaderNotFound},
    {ResourceKind::MlineStyle, StringId::kReaderMlineNotFound},
    {ResourceKind::Pattern, StringId::kReaderPatternNotFound},
    {ResourceKind::TextStyle, StringId::kReaderTextstyleNotFound},
};

// A file named by resource keywords, with every kind they asked of it.
struct DependencyFile {
    std::wstring path;
    ResourceKinds kinds = 0;
};

// One reading of one file: the working state of the reader.
class Run {
public:
    Run(const ClassifierReader::Print& print, const host::SystemVariables* variables, ClassifierDrawing* drawing,
        Classifier& classifier)
        : print_(print), variables_(variables), drawing_(drawing), classifier_(classifier) {
        stack_.push_back(&classifier_.root());
    }

    // False when reading stopped on an error; the caller empties the classifier then.
    bool read(ClassifierLines& lines);

private:
    using Handler = bool (Run::*)(const Columns&);
    static const std::map<std::wstring_view, Handler>& keywords();

    bool dispatch(Columns& columns);

    bool onClass(const Columns& c);
    bool onEndClass(const Columns& c);
    bool onObjName(const Columns& c);
    bool onObjType(const Columns& c);
    bool onObjProp(const Columns& c);
    bool onOdName(const Columns& c);
    bool onOdKey(const Columns& c);
    bool onOdFld(const Columns& c);
    bool onAutoconst(const Columns& c);
    bool onDefine(const Columns& c);
    bool onVariable(const Columns& c);
    bool onBlockReference(const Columns& c);
    bool onBlockReferenceFile(const Columns& c);
    bool onDimension(const Columns& c);
    bool onFont(const Columns& c);
    bool onLayer(const Columns& c);
    bool onLayout(const Columns& c);
    bool onLinetype(const Columns& c);
    bool onMleader(const Columns& c);
    bool onMline(const Columns& c);
    bool onPattern(const Columns& c);
    bool onTextstyle(const Columns& c);

    // The files a resource line names; nullopt after the error that a wrong line gives.
    std::optional<std::vector<std::wstring>> resourceFiles(const Columns& c, StringId invalidLine);
    bool addDependencies(const Columns& c, StringId invalidLine, ResourceKind kind, bool (*accepts)(std::wstring_view));
    bool registerShapeFile(const std::wstring& file);

    bool finishObject();
    bool finishTable();
    void recordMember();
    bool finishFile();
    bool importResources();

    ClassNode& top() { return *stack_.back(); }
    bool hasObject() const { return !object_.name.empty(); }

    template <class... Args>
    void say(StringId id, const Args&... args) {
        print_(host::format(loadString(id), args...));
    }
    // Prints an error and stops reading.
    template <class... Args>
    bool fail(StringId id, const Args&... args) {
        say(id, args...);
        return false;
    }
    bool expansionTooLong() {
        return fail(StringId::kReaderExpansionTooLong, line_, static_cast<int>(MacroTable::kMaxLength),
                    static_cast<int>(MacroTable::kMaxExpansions));
    }

    const ClassifierReader::Print& print_;
    const host::SystemVariables* variables_;
    ClassifierDrawing* drawing_;
    Classifier& classifier_;

    int line_ = 0;
    std::wstring keyword_;
    ClassDef object_;            // empty name: no object is current
    std::wstring lastRecorded_;  // key last added to a member list
    std::optional<TableDef> table_;
    std::set<std::wstring> tableFields_;  // the lower-cased field names of table_, for redefinitions
    std::vector<ClassNode*> stack_;  // root first; pointers stay valid because only the top grows
    std::set<std::wstring> nodeNames_;
    bool classFlag_ = true;
    bool autoconst_ = false;
    MacroTable macros_;
    // The file's tables by lower-cased name: only tables of one name can conflict.
    std::map<std::wstring, std::vector<TableDef>> fileTables_;
    std::map<std::wstring, DependencyFile> dependencies_;  // by lower-cased path
};

bool Run::read(ClassifierLines& lines) {
    std::wstring_view text;
    while (lines.next(text)) {
        ++line_;
        Columns columns = splitColumns(text);
        if (columns.empty()) continue;
        if (!dispatch(columns)) return false;
    }
    return finishFile();
}

bool Run::dispatch(Columns& columns) {
    std::size_t length = 0;
    for (auto& column : columns) {
        std::optional<std::wstring> expanded = macros_.expand(std::move(column));
        if (!expanded || (length += expanded->size()) > MacroTable::kMaxLength) return expansionTooLong();
        column = std::move(*expanded);
    }
    keyword_ = host::toLower(columns.front());
    const auto& table = keywords();
    auto handler = table.find(keyword_);
    if (handler == table.end()) return fail(StringId::kReaderInvalidSyntax, line_, keyword_);
    return (this->*handler->second)(columns);
}

// ---- classes and objects ----

void Run::recordMember() {
    if (hasObject() && object_.isValid() && object_.key != lastRecorded_) {
        top().members.push_back(object_.key);
        lastRecorded_ = object_.key;
    }
}

bool Run::onClass(const Columns& c) {
    if (c.size() != 3 && c.size() != 4) return fail(StringId::kReaderInvalidClass, line_);
    std::wstring name(trim(c[1]));
    if (name.empty()) return fail(StringId::kReaderInvalidClass, line_);
    std::wstring lower = host::toLower(name);
    if (nodeNames_.count(lower)) return fail(StringId::kReaderRedefinition, line_, name);
    // The object being defined belongs to the class around this one, whatever follows it.
    recordMember();
    bool flag = host::wtoi(c[2]) > 0;
    top().children.push_back(ClassNode{name, flag, c.size() == 4 ? c[3] : std::wstring(), {}, {}});
    stack_.push_back(&top().children.back());
    nodeNames_.insert(std::move(lower));
    classFlag_ = flag;
    return true;
}

bool Run::onEndClass(const Columns& c) {
    if (c.size() != 1 || stack_.size() == 1) return fail(StringId::kReaderInvalidClass, line_);
    recordMember();
    stack_.pop_back();
    // Not the outer class's flag: each class line sets the switch for what follows it.
    classFlag_ = true;
    return true;
}

bool Run::onObjName(const Columns& c) {
    if ((c.size() != 4 && c.size() != 5) || c[1].size() > kMaxClassNameLength) {
        return fail(StringId::kReaderInvalidObjName, line_);
    }
    if (!finishObject()) return false;
    object_ = ClassDef{};
    object_.key = host::toLower(c[1]);
    object_.name = c[1];
    object_.flag = classFlag_ && host::wtoi(c[2]) != 0;
    object_.number = host::wtoi(c[3]);
    if (c.size() == 5) object_.text = c[4];
    return true;
}

bool Run::onObjType(const Columns& c) {
    if (!hasObject()) return fail(StringId::kReaderObjNameUndefined, line_);
    if (c.size() != 2) return fail(StringId::kReaderInvalidObjType, line_);
    object_.types = parseTypeList(c[1]);
    object_.properties = ObjectProperties{};
    if (!object_.isComplete()) return fail(StringId::kReaderInvalidObjType, line_);
    return true;
}

bool Run::onObjProp(const Columns& c) {
    if (!hasObject()) return fail(StringId::kReaderObjNameUndefined, line_);
    if (object_.types.empty()) return fail(StringId::kReaderObjTypeUndefined, line_);
    if (c.size() < 3) return true;  // a keyword without a value says nothing
    if (c.size() >= 5 || !parseProperty(object_.properties, c[1], c[2], c.size() == 4 ? c[3] : std::wstring())) {
        say(StringId::kReaderInvalidObjProp, line_);
    }
    return true;
}

bool Run::finishObject() {
    if (!hasObject()) return true;
    if (!object_.isValid()) return fail(StringId::kReaderInvalidObjectDefinition, line_);
    if (classifier_.find(object_.key)) return fail(StringId::kReaderRedefinition, line_, object_.name);
    if (!finishTable()) return false;
    if (object_.key != lastRecorded_) {
        top().members.push_back(object_.key);
        lastRecorded_ = object_.key;
    }
    classifier_.add(std::move(object_));
    object_ = ClassDef{};
    return true;
}

// ---- tables and fields ----

bool Run::finishTable() {
    if (!table_) return true;
    TableDef table = std::move(*table_);
    table_.reset();
    if (!table.isWellFormed()) {
        say(StringId::kReaderTableIllFormed, line_, table.name);
    } else if (drawing_ && !drawing_->tableMatches(table)) {
        return fail(StringId::kReaderTableMismatch, line_, table.name);
    }
    std::vector<TableDef>& sameName = fileTables_[host::toLower(table.name)];
    auto known = std::find_if(sameName.begin(), sameName.end(),
                              [&](const TableDef& other) { return other.isIdenticalTo(table); });
    if (known == sameName.end()) {
        for (const auto& other : sameName) {
            if (!table.isCompatibleWith(other)) return fail(StringId::kReaderTableConflict, line_, table.name);
        }
        sameName.push_back(table);
    } else {
        // The same fields as a table before: share them rather than keep another copy.
        table.fields = known->fields;
    }
    object_.tables.push_back(std::move(table));
    return true;
}

bool Run::onOdName(const Columns& c) {
    if (!hasObject()) return fail(StringId::kReaderObjNameUndefined, line_);
    if (c.size() != 2 || !isGoodName(c[1], kMaxTableNameLength)) return fail(StringId::kReaderInvalidOdName, line_);
    if (!finishTable()) return false;
    table_ = TableDef{c[1], {}};
    tableFields_.clear();
    return true;
}

bool Run::onOdKey(const Columns& c) {
    if (!table_) return fail(StringId::kReaderOdNameUndefined, line_);
    if (c.size() != 2 || !isGoodName(c[1], kMaxFieldNameLength)) return fail(StringId::kReaderInvalidOdKey, line_);
    table_->fields.push_back(makeKeyField(c[1]));
    tableFields_.insert(host::toLower(c[1]));
    return true;
}

// The items of a VALUES column, split at ":" and ","; a backslash makes either one plain. Also
// counts the colons that split.
std::vector<std::wstring> splitValues(std::wstring_view text, int& colons) {
    std::vector<std::wstring> items(1);
    colons = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        wchar_t c = text[i];
        if (c == L'\\' && i + 1 < text.size() && (text[i + 1] == L':' || text[i + 1] == L',')) {
            items.back().push_back(text[++i]);
        } else if (c == L':' || c == L',') {
            if (c == L':') ++colons;
            items.emplace_back();
        } else {
            items.back().push_back(c);
        }
    }
    return items;
}

bool Run::onOdFld(const Columns& c) {
    if (!table_) return fail(StringId::kReaderOdNameUndefined, line_);
    FieldAttributes attributes = c.size() >= 4 ? parseAttributes(c[3]) : FieldAttributes{};
    if (c.size() < 4 || c.size() > 6 || !isGoodName(c[1], kMaxFieldNameLength) || attributes.type == FieldType::None) {
        return fail(StringId::kReaderInvalidOdFld, line_);
    }
    if (!tableFields_.insert(host::toLower(c[1])).second) return fail(StringId::kReaderRedefinitionOdFld, line_, c[1]);

    FieldDef field;
    field.name = c[1];
    field.description = trim(c[2], kSpaces, kSpacesAndLineEnds);
    field.attributes = attributes.attributes;
    field.type = attributes.type;

    auto fieldText = [this](std::wstring_view text) {
        return macros_.expand(std::wstring(trim(text, kSpaces, kSpacesAndLineEnds)));
    };
    std::wstring defaultText;
    if (c.size() >= 5) {
        std::optional<std::wstring> expanded = fieldText(c[4]);
        if (!expanded) return expansionTooLong();
        defaultText = std::move(*expanded);
        field.kind = ValueKind::Default;
    }
    if (c.size() == 6) {
        int colons = 0;
        std::vector<std::wstring> items = splitValues(c[5], colons);
        if (colons == 1 && items.size() != 2) return fail(StringId::kReaderInvalidOdFld, line_);
        field.kind = colons == 1 ? ValueKind::Range : ValueKind::List;
        for (const auto& item : items) {
            std::optional<std::wstring> expanded = fieldText(item);
            if (!expanded) return expansionTooLong();
            field.values.push_back(std::move(*expanded));
        }
    }
    if (!defaultText.empty()) {
        switch (field.type) {
            case FieldType::Integer: field.value.setInteger(0); break;
            case FieldType::Real: field.value.setReal(0); break;
            default: field.value.setText({}); break;
        }
        field.value.assign(FieldValue::fromText(defaultText));
    }
    if (autoconst_ && field.kind == ValueKind::List && field.values.size() == 1 && field.values[0] == defaultText) {
        field.attributes |= kAttributeConst;
    }
    table_->fields.push_back(std::move(field));
    return true;
}

// ---- settings ----

bool Run::onAutoconst(const Columns& c) {
    if (c.size() != 2) return fail(StringId::kReaderInvalidSyntax, line_, keyword_);
    autoconst_ = host::wtoi(c[1]) > 0;
    return true;
}

bool Run::onDefine(const Columns& c) {
    if (c.size() != 3) return fail(StringId::kReaderInvalidDefinition, line_);
    // Reported but kept on purpose: older classifiers rely on such macros being defined.
    if (host::toLower(c[1]) == L"obj_name" || c[1].find_first_of(kRefusedNameChars) != std::wstring::npos) {
        say(StringId::kReaderInvalidDefinition, line_);
    }
    std::wstring reference = MacroTable::referenceOf(c[1]);
    if (macros_.contains(reference)) {
        macros_.set(reference, c[2]);
        say(StringId::kReaderRedefinitionWarning, line_, c[1]);
    } else if (host::toLower(c[2]).find(reference) != std::wstring::npos) {
        say(StringId::kReaderRecursiveDefinition, line_);
    } else {
        macros_.set(reference, c[2]);
    }
    return true;
}

bool Run::onVariable(const Columns& c) {
    if (c.size() != 3) return fail(StringId::kReaderInvalidVariableDefinition, line_);
    std::optional<host::VariableValue> current = variables_ ? variables_->get(c[1]) : std::nullopt;
    if (!current) {
        say(StringId::kReaderInvalidVariable, line_, c[1]);
        return true;
    }
    host::VariableValue value;
    value.type = current->type;
    switch (value.type) {
        case host::VariableType::kShort:
        case host::VariableType::kLong: value.integer = host::wtoi(c[2]); break;
        case host::VariableType::kReal: value.real = host::wtof(c[2]); break;
        case host::VariableType::kPoint2d:
        case host::VariableType::kPoint3d: {
            std::vector<double> numbers;
            std::wstring_view rest = c[2];
            for (;;) {
                std::size_t comma = rest.find(L',');
                std::wstring_view item = rest.substr(0, comma);
                if (!item.empty()) numbers.push_back(host::wtof(item));
                if (comma == std::wstring_view::npos) break;
                rest.remove_prefix(comma + 1);
            }
            std::size_t wanted = value.type == host::VariableType::kPoint2d ? 2 : 3;
            if (numbers.size() != wanted) return fail(StringId::kReaderInvalidVariableDefinition, line_);
            value.point = {numbers[0], numbers[1], wanted == 3 ? numbers[2] : 0.0};
            break;
        }
        case host::VariableType::kString: value.text = c[2]; break;
    }
    (hasObject() ? object_.variables : classifier_.variables()).push_back(VariableSetting{c[1], std::move(value)});
    return true;
}

// ---- resources ----

std::optional<std::vector<std::wstring>> Run::resourceFiles(const Columns& c, StringId invalidLine) {
    if (c.size() != 2) {
        say(invalidLine, line_);
        return std::nullopt;
    }
    std::wstring pattern = resolveResourcePath(c[1], classifier_.path());
    std::vector<std::wstring> files = matchFiles(pattern);
    if (files.empty()) {
        say(StringId::kReaderInvalidPath, pattern);
        return std::nullopt;
    }
    return files;
}

bool Run::addDependencies(const Columns& c, StringId invalidLine, ResourceKind kind,
                          bool (*accepts)(std::wstring_view)) {
    auto files = resourceFiles(c, invalidLine);
    if (!files) return false;
    for (const auto& file : *files) {
        if (!accepts(file)) continue;
        DependencyFile& dependency = dependencies_[host::toLower(file)];
        if (dependency.path.empty()) dependency.path = file;
        dependency.kinds |= bit(kind);
    }
    return true;
}

bool Run::registerShapeFile(const std::wstring& file) {
    if (!canOpen(file) || (drawing_ && !drawing_->registerShapeFile(file))) {
        return fail(StringId::kReaderUnableToLoad, file);
    }
    return true;
}

bool isShapeFile(std::wstring_view path) { return hasExtension(path, L".shx"); }
bool isLinetypeSource(std::wstring_view path) { return isDrawingFile(path) || hasExtension(path, L".lin"); }
bool isMlineSource(std::wstring_view path) { return isDrawingFile(path) || hasExtension(path, L".mln"); }
bool isPatternFile(std::wstring_view path) { return hasExtension(path, L".pat"); }

bool Run::onBlockReference(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidBlockReference, ResourceKind::Block, &isDrawingFile);
}

bool Run::onBlockReferenceFile(const Columns& c) {
    auto files = resourceFiles(c, StringId::kReaderInvalidBlockReferenceFile);
    if (!files) return false;
    for (const auto& file : *files) {
        if (isDrawingFile(file)) classifier_.externalBlocks().emplace(host::toLower(file), blockNameOfFile(file));
    }
    return true;
}

bool Run::onDimension(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidDimension, ResourceKind::DimensionStyle, &isDrawingFile);
}

bool Run::onFont(const Columns& c) {
    auto files = resourceFiles(c, StringId::kReaderInvalidFont);
    if (!files) return false;
    for (const auto& file : *files) {
        if (isShapeFile(file) && !registerShapeFile(file)) return false;
    }
    return true;
}

bool Run::onLayer(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidLayer, ResourceKind::Layer, &isDrawingFile);
}

bool Run::onLayout(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidLayout, ResourceKind::Layout, &isDrawingFile);
}

bool Run::onLinetype(const Columns& c) {
    auto files = resourceFiles(c, StringId::kReaderInvalidLinetype);
    if (!files) return false;
    for (const auto& file : *files) {
        if (isShapeFile(file)) {
            if (!registerShapeFile(file)) return false;
        } else if (isLinetypeSource(file)) {
            DependencyFile& dependency = dependencies_[host::toLower(file)];
            if (dependency.path.empty()) dependency.path = file;
            dependency.kinds |= bit(ResourceKind::Linetype);
        }
    }
    return true;
}

bool Run::onMleader(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidMleader, ResourceKind::MleaderStyle, &isDrawingFile);
}

bool Run::onMline(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidMline, ResourceKind::MlineStyle, &isMlineSource);
}

bool Run::onPattern(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidPattern, ResourceKind::Pattern, &isPatternFile);
}

bool Run::onTextstyle(const Columns& c) {
    return addDependencies(c, StringId::kReaderInvalidTextstyle, ResourceKind::TextStyle, &isDrawingFile);
}

// ---- the end of the file ----

bool Run::finishFile() {
    if (stack_.size() > 1) return fail(StringId::kReaderInvalidClassDefinition);
    if (!finishObject()) return false;
    return importResources();
}

bool Run::importResources() {
    for (const auto& [lowerPath, dependency] : dependencies_)
        classifier_.resourceFiles().push_back({dependency.path, dependency.kinds});
    if (!drawing_) return true;

    // What the definitions use and the drawing lacks, per kind, each name once.
    ResourceNames missing;
    std::set<std::pair<ResourceKind, std::wstring>> seen;
    auto need = [&](ResourceKind kind, const std::wstring& name) {
        if (name.empty() || !seen.emplace(kind, host::toLower(name)).second) return;
        if (!drawing_->hasResource(kind, name)) missing[kind].push_back(name);
    };
    for (const auto& [key, def] : classifier_.objects())
        for (const auto& [kind, names] : classResourceNames(def))
            for (const std::wstring& name : names) need(kind, name);

    ResourceNames lowerMissing;
    for (const auto& [kind, names] : missing) {
        for (const auto& name : names) lowerMissing[kind].push_back(host::toLower(name));
    }
    // Layouts are not named by definitions: a layout file brings the layouts the drawing lacks.
    ResourceKinds wanted = bit(ResourceKind::Layout);
    for (const auto& [kind, names] : missing) wanted |= bit(kind);

    for (const auto& [lowerPath, dependency] : dependencies_) {
        ResourceKinds kinds = dependency.kinds & wanted;
        if (kinds == 0) continue;
        if (!drawing_->importResources(dependency.path, kinds, lowerMissing, classifier_.loadedResources())) {
            return fail(StringId::kReaderUnableToLoad, dependency.path);
        }
        if (isDrawingFile(dependency.path)) classifier_.resourceDrawings().push_back(dependency.path);
    }

    for (const auto& [kind, warning] : kMissingWarnings) {
        auto names = missing.find(kind);
        if (names == missing.end()) continue;
        for (const auto& name : names->second) {
            if (!drawing_->hasResource(kind, name)) say(warning, name);
        }
    }
    return true;
}

const std::map<std::wstring_view, Run::Handler>& Run::keywords() {
    static const std::map<std::wstring_view, Handler> table{
        {L"blockreference", &Run::onBlockReference},
        {L"blockreferencefile", &Run::onBlockReferenceFile},
        {L"autoconst", &Run::onAutoconst},
        {L"class", &Run::onClass},
        {L"/class", &Run::onEndClass},
        {L"define", &Run::onDefine},
        {L"dimension", &Run::onDimension},
        {L"font", &Run::onFont},
        {L"layout", &Run::onLayout},
        {L"layer", &Run::onLayer},
        {L"linetype", &Run::onLinetype},
        {L"mleader", &Run::onMleader},
        {L"mline", &Run::onMline},
        {L"obj_name", &Run::onObjName},
        {L"obj_prop", &Run::onObjProp},
        {L"obj_type", &Run::onObjType},
        {L"od_name", &Run::onOdName},
        {L"od_fld", &Run::onOdFld},
        {L"od_key", &Run::onOdKey},
        {L"pattern", &Run::onPattern},
        {L"textstyle", &Run::onTextstyle},
        {L"variable", &Run::onVariable},
    };
    return table;
}

}  // namespace

ClassifierReader::ClassifierReader(Print print, const host::SystemVariables* variables, ClassifierDrawing* drawing)
    : print_(std::move(print)), variables_(variables), drawing_(drawing) {}

Classifier ClassifierReader::read(const std::wstring& path) {
    Classifier classifier(path);
    ClassifierLines lines;
    failed_ = !lines.open(path);
    if (failed_) return classifier;
    Run run(print_, variables_, drawing_, classifier);
    failed_ = !run.read(lines);
    if (failed_) {
        classifier.clear();
        classifier.setPath(path);
    }
    return classifier;
}

}  // namespace veltarn
