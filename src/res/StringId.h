// The ids of the module's string table: every message, prompt and caption the module shows.
#pragma once

namespace veltarn {

// Ids run from 100 to 194 and never change meaning: scripts and translations refer to them.
// 107 and 190 are the two prompts of VELTARN_CLASSIFY_AUTO, whose ids users already know; the
// other texts follow in the order of the subsystems that use them.
enum class StringId : int {
    // module host
    kErrorNoFileLoaded = 100,           // "Error: no file loaded.\n"
    kMessageCaption = 101,              // "VELTARN message"
    kCaptionError = 102,                // "Error"
    kCaptionWarning = 103,              // "Warning"
    kTypeNameLine = 104,                // "%s\n"
    kErrorNotAvailable = 105,           // "Error: '%s' is not available yet.\n"

    // field values: type names shown in reports and templates
    kTypeInteger = 106,
    kPromptAutoMode = 107,              // "Mode [0 (properties)/1 (classes)]<%i>: "
    kTypeReal = 108,
    kTypeCharacter = 109,
    kTypePoint = 110,
    kTypeUnknown = 111,

    // classifier reader
    kReaderInvalidSyntax = 112,
    kReaderInvalidPath = 113,
    kReaderInvalidClass = 114,
    kReaderRedefinition = 115,
    kReaderInvalidObjName = 116,
    kReaderObjNameUndefined = 117,
    kReaderInvalidObjType = 118,
    kReaderObjTypeUndefined = 119,
    kReaderInvalidObjProp = 120,
    kReaderInvalidOdName = 121,
    kReaderOdNameUndefined = 122,
    kReaderInvalidOdKey = 123,
    kReaderInvalidOdFld = 124,
    kReaderRedefinitionOdFld = 125,
    kReaderRecursiveDefinition = 126,
    kReaderRedefinitionWarning = 127,
    kReaderInvalidDefinition = 128,
    kReaderInvalidVariableDefinition = 129,
    kReaderInvalidVariable = 130,
    kReaderInvalidBlockReference = 131,
    kReaderInvalidBlockReferenceFile = 132,
    kReaderInvalidDimension = 133,
    kReaderInvalidFont = 134,
    kReaderUnableToLoad = 135,
    kReaderInvalidLayer = 136,
    kReaderInvalidLayout = 137,
    kReaderInvalidLinetype = 138,
    kReaderInvalidMleader = 139,
    kReaderInvalidMline = 140,
    kReaderInvalidPattern = 141,
    kReaderInvalidTextstyle = 142,
    kReaderInvalidObjectDefinition = 143,
    kReaderTableIllFormed = 144,
    kReaderTableMismatch = 145,
    kReaderTableConflict = 146,
    kReaderInvalidClassDefinition = 147,
    kReaderBlockNotFound = 148,
    kReaderDimensionNotFound = 149,
    kReaderLayerNotFound = 150,
    kReaderLinetypeNotFound = 151,
    kReaderMleaderNotFound = 152,
    kReaderMlineNotFound = 153,
    kReaderPatternNotFound = 154,
    kReaderTextstyleNotFound = 155,

    // drawing engine
    kErrorInvalidObject = 156,          // "error: invalid object\n"
    kDrawingNotSupported = 157,         // message box "Drawing not supported."
    kPromptObject = 158,                // "Object: "
    kErrorUndefined = 159,              // "error: '%s' undefined\n"
    kErrorTableMismatchBox = 160,       // message box "Error: table '%s' does not match ..."
    kErrorInvalidValue = 161,           // "error: invalid value\n"
    kErrorUnableToLoadDependencies = 162,
    kPromptProperty = 163,              // "%s: " (a property keyword)
    kPromptPoint = 164,                 // "Point:\n"
    kPromptText = 165,                  // "Text:\n"
    kPromptTextDefault = 166,           // "Text<%s>:\n"

    // commands over classified objects
    kErrorObjectNotFound = 167,
    kErrorUnableToLoadObjectDependencies = 168,
    kErrorNoObjectsSelected = 169,
    kCompletedCount = 170,              // "Completed: %i\n"
    kCompletedRatio = 171,              // "Completed: %i/%i\n"
    kCaptionClassificationParameters = 172,
    kCaptionRemove = 173,
    kFilterTextFiles = 174,             // "Text files (*.txt)|*.txt||"
    kPromptUseProperties = 175,
    kPromptUseObjects = 176,
    kPromptMatch = 177,                 // "Match [0/1]<1>: " (fixed default on purpose)
    kPromptCheckNonRequired = 178,
    kSelectedCount = 179,               // "Selected: %i" (no line end on purpose)
    kPromptRestoreModeStart = 180,      // "Mode [0 (all)/1 (default)]<"
    kPromptRestoreModeEnd = 181,        // ">: "
    kPromptFormat = 182,                // "Format<%s>: "
    kErrorInvalidFormat = 183,
    kErrorUnableToOpenBox = 184,        // message box, shown with its %s unfilled

    // palettes
    kPageClassification = 185,
    kPageRecent = 186,
    kPageFavorites = 187,
    kPageProperties = 188,
    kWarningUnableToOpen = 189,         // "warning: unable to open '%s'\n"
    kPromptUndrawable = 190,            // "Undrawable [0/1]<%i>: "
    kCaptionAbout = 191,
    kAboutText = 192,
    kUnknownName = 193,                 // "unknown": computer or user name that is not known

    // limits of the workbench's own
    kReaderExpansionTooLong = 194,      // "%i: error: macros expand the line too far ..."
};

inline constexpr int kFirstStringId = 100;
inline constexpr int kLastStringId = 195;

}  // namespace veltarn
