#include "res/StringTable.h"

#include <array>
#include <cstddef>

namespace veltarn {
namespace {

struct Entry {
    StringId id;
    const wchar_t* text;
};

// Texts byte for byte as the module prints them; the %-formats are filled by the caller.
constexpr Entry kEntries[] = {
    {StringId::kErrorNoFileLoaded, L"Error: no file loaded.\n"},
    {StringId::kMessageCaption, L"VELTARN message"},
    {StringId::kCaptionError, L"Error"},
    {StringId::kCaptionWarning, L"Warning"},
    {StringId::kTypeNameLine, L"%s\n"},
    {StringId::kErrorNotAvailable, L"Error: '%s' is not available yet.\n"},

    {StringId::kTypeInteger, L"Integer"},
    {StringId::kPromptAutoMode, L"Mode [0 (properties)/1 (classes)]<%i>: "},
    {StringId::kTypeReal, L"Real"},
    {StringId::kTypeCharacter, L"Character"},
    {StringId::kTypePoint, L"Point"},
    {StringId::kTypeUnknown, L"Unknown"},

    {StringId::kReaderInvalidSyntax, L"%i: error: invalid syntax: '%s'\n"},
    {StringId::kReaderInvalidPath, L"error: invalid path: '%s'\n"},
    {StringId::kReaderInvalidClass, L"%i: error: invalid 'class' definition\n"},
    {StringId::kReaderRedefinition, L"%i: error: redefinition of '%s'\n"},
    {StringId::kReaderInvalidObjName, L"%i: error: invalid 'obj_name' definition\n"},
    {StringId::kReaderObjNameUndefined, L"%i: error: 'obj_name' undefined\n"},
    {StringId::kReaderInvalidObjType, L"%i: error: invalid 'obj_type' definition\n"},
    {StringId::kReaderObjTypeUndefined, L"%i: error: 'obj_type' undefined\n"},
    {StringId::kReaderInvalidObjProp, L"%i: warning: invalid 'obj_prop' definition\n"},
    {StringId::kReaderInvalidOdName, L"%i: error: invalid 'od_name' definition\n"},
    {StringId::kReaderOdNameUndefined, L"%i: error: 'od_name' undefined\n"},
    {StringId::kReaderInvalidOdKey, L"%i: error: invalid 'od_key' definition\n"},
    {StringId::kReaderInvalidOdFld, L"%i: error: invalid 'od_fld' definition\n"},
    {StringId::kReaderRedefinitionOdFld, L"%i: error: redefinition of od_fld '%s'\n"},
    {StringId::kReaderRecursiveDefinition, L"%i: warning: recursive definition\n"},
    {StringId::kReaderRedefinitionWarning, L"%i: warning: redefinition of '%s'\n"},
    {StringId::kReaderInvalidDefinition, L"%i: error: invalid definition\n"},
    {StringId::kReaderInvalidVariableDefinition, L"%i: error: invalid 'variable' definition\n"},
    {StringId::kReaderInvalidVariable, L"%i: warning: invalid variable '%s'\n"},
    {StringId::kReaderInvalidBlockReference, L"%i: error: invalid 'blockreference' definition\n"},
    {StringId::kReaderInvalidBlockReferenceFile,
     L"%i: error: invalid 'blockreferencefile' definition\n"},
    {StringId::kReaderInvalidDimension, L"%i: error: invalid 'dimension' definition\n"},
    {StringId::kReaderInvalidFont, L"%i: error: invalid 'font' definition\n"},
    {StringId::kReaderUnableToLoad, L"error: unable to load '%s'\n"},
    {StringId::kReaderInvalidLayer, L"%i: error: invalid 'layer' definition\n"},
    {StringId::kReaderInvalidLayout, L"%i: error: invalid 'layout' definition\n"},
    {StringId::kReaderInvalidLinetype, L"%i: error: invalid 'linetype' definition\n"},
    {StringId::kReaderInvalidMleader, L"%i: error: invalid 'mleader' definition\n"},
    {StringId::kReaderInvalidMline, L"%i: error: invalid 'mline' definition\n"},
    {StringId::kReaderInvalidPattern, L"%i: error: invalid 'pattern' definition\n"},
    {StringId::kReaderInvalidTextstyle, L"%i: error: invalid 'textstyle' definition\n"},
    {StringId::kReaderInvalidObjectDefinition, L"%i: error: invalid object definition\n"},
    {StringId::kReaderTableIllFormed, L"%i: warning: table '%s' ill-formed\n"},
    {StringId::kReaderTableMismatch, L"%i: error: table '%s' does not match existing definition\n"},
    {StringId::kReaderTableConflict, L"%i: error: conflicting definitions for table '%s'\n"},
    {StringId::kReaderInvalidClassDefinition, L"error: invalid class definition\n"},
    {StringId::kReaderBlockNotFound, L"warning: block '%s' not found\n"},
    {StringId::kReaderDimensionNotFound, L"warning: dimension '%s' not found\n"},
    {StringId::kReaderLayerNotFound, L"warning: layer '%s' not found\n"},
    {StringId::kReaderLinetypeNotFound, L"warning: linetype '%s' not found\n"},
    {StringId::kReaderMleaderNotFound, L"warning: mleader '%s' not found\n"},
    {StringId::kReaderMlineNotFound, L"warning: mline '%s' not found\n"},
    {StringId::kReaderPatternNotFound, L"warning: pattern '%s' not found\n"},
    {StringId::kReaderTextstyleNotFound, L"warning: textstyle '%s' not found\n"},

    {StringId::kErrorInvalidObject, L"error: invalid object\n"},
    {StringId::kDrawingNotSupported, L"Drawing not supported."},
    {StringId::kPromptObject, L"Object: "},
    {StringId::kErrorUndefined, L"error: '%s' undefined\n"},
    {StringId::kErrorTableMismatchBox, L"Error: table '%s' does not match existing definition."},
    {StringId::kErrorInvalidValue, L"error: invalid value\n"},
    // "dependecies" is the module's own spelling; scripts compare it byte for byte.
    {StringId::kErrorUnableToLoadDependencies,
     L"error: unable to load dependecies for object '%s'\n"},
    {StringId::kPromptProperty, L"%s: "},
    {StringId::kPromptPoint, L"Point:\n"},
    {StringId::kPromptText, L"Text:\n"},
    {StringId::kPromptTextDefault, L"Text<%s>:\n"},

    {StringId::kErrorObjectNotFound, L"Error: object not found.\n"},
    {StringId::kErrorUnableToLoadObjectDependencies, L"Error: unable to load object dependencies.\n"},
    {StringId::kErrorNoObjectsSelected, L"Error: no objects selected.\n"},
    {StringId::kCompletedCount, L"Completed: %i\n"},
    {StringId::kCompletedRatio, L"Completed: %i/%i\n"},
    {StringId::kCaptionClassificationParameters, L"Classification parameters"},
    {StringId::kCaptionRemove, L"Remove"},
    {StringId::kFilterTextFiles, L"Text files (*.txt)|*.txt||"},
    {StringId::kPromptUseProperties, L"Use properties? [0/1]<%i>: "},
    {StringId::kPromptUseObjects, L"Use objects? [0/1]<%i>: "},
    {StringId::kPromptMatch, L"Match [0/1]<1>: "},
    {StringId::kPromptCheckNonRequired, L"Check non-required fields [0/1]<%i>: "},
    {StringId::kSelectedCount, L"Selected: %i"},
    {StringId::kPromptRestoreModeStart, L"Mode [0 (all)/1 (default)]<"},
    {StringId::kPromptRestoreModeEnd, L">: "},
    {StringId::kPromptFormat, L"Format<%s>: "},
    // Printed through a format, so the doubled percent signs reach the user as single ones.
    {StringId::kErrorInvalidFormat, L"Error: invalid format (%%T/%%t, %%i are required).\n"},
    {StringId::kErrorUnableToOpenBox, L"Error: unable to open '%s'.\n"},

    {StringId::kPageClassification, L"Classification"},
    {StringId::kPageRecent, L"Recent"},
    {StringId::kPageFavorites, L"Favorites"},
    {StringId::kPageProperties, L"Properties"},
    {StringId::kWarningUnableToOpen, L"warning: unable to open '%s'\n"},
    {StringId::kPromptUndrawable, L"Undrawable [0/1]<%i>: "},
    {StringId::kCaptionAbout, L"About"},
    {StringId::kAboutText,
     L"VELTARN\n"
     L"Version %s\n"
     L"\n"
     L"Keeps the objects of a drawing in order against a classifier: a text file of class\n"
     L"definitions with their entity types, graphic properties and object-data tables.\n"
     L"Classification and field values are stored in the drawing itself.\n"
     L"\n"
     L"This program is provided as is, without warranty of any kind. Check your drawings\n"
     L"before you rely on them."},
    {StringId::kUnknownName, L"unknown"},

    {StringId::kReaderExpansionTooLong,
     L"%i: error: macros expand the line too far (more than %i characters or %i replacements)\n"},
};

constexpr std::size_t kSlots = kLastStringId - kFirstStringId + 1;

// Built once; a slot without an entry stays empty.
const std::array<std::wstring, kSlots>& table() {
    static const std::array<std::wstring, kSlots> slots = [] {
        std::array<std::wstring, kSlots> built;
        for (const Entry& entry : kEntries) built[static_cast<int>(entry.id) - kFirstStringId] = entry.text;
        return built;
    }();
    return slots;
}

}  // namespace

bool hasString(int id) {
    return id >= kFirstStringId && id <= kLastStringId && !table()[id - kFirstStringId].empty();
}

const std::wstring& loadString(int id) {
    static const std::wstring empty;
    if (id < kFirstStringId || id > kLastStringId) return empty;
    return table()[id - kFirstStringId];
}

const std::wstring& loadString(StringId id) { return loadString(static_cast<int>(id)); }

}  // namespace veltarn
