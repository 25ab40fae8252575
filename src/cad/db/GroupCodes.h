// Names for the group codes the drawing database reads and writes. Codes mean different things in
// different subclasses, so a name says where it applies when that matters.
#pragma once

#include "cad/dxf/GroupCode.h"

namespace veltarn::db::gc {

using namespace dxf::code;  // kStructure, kName, kHandle, kSubclass, kControlString, pointers

constexpr int kText = 1;             // text contents, xrecord strings
constexpr int kMoreText = 3;         // MTEXT: text before the last chunk, in pieces of 250
constexpr int kOtherName = 3;        // dictionary key, description, block name copy
constexpr int kLinetypeName = 6;
constexpr int kTextStyleName = 7;
constexpr int kLayer = 8;
constexpr int kX = 10;               // first point; Y is +10, Z is +20
constexpr int kY = kX + 10;
constexpr int kX2 = 11;              // second point (LINE end, TEXT alignment point, axis vectors)
constexpr int kX3 = 12;
constexpr int kX4 = 13;
constexpr int kThickness = 39;
constexpr int kReal = 40;            // radius, text height, first real
constexpr int kReal2 = 41;
constexpr int kReal3 = 42;
constexpr int kReal4 = 43;
constexpr int kLinetypeScale = 48;
constexpr int kAngle = 50;           // rotation, start angle
constexpr int kAngle2 = 51;          // end angle, oblique angle
constexpr int kColor = 62;
constexpr int kEntitiesFollow = 66;
constexpr int kPaperSpace = 67;
constexpr int kFlags = 70;
constexpr int kInt71 = 71;
constexpr int kInt72 = 72;
constexpr int kInt73 = 73;
constexpr int kInt74 = 74;
constexpr int kInt75 = 75;
constexpr int kInt76 = 76;
constexpr int kCount90 = 90;
constexpr int kInt91 = 91;
constexpr int kInt92 = 92;
constexpr int kInt93 = 93;
constexpr int kInt94 = 94;
constexpr int kInt95 = 95;
constexpr int kInt96 = 96;
constexpr int kInt97 = 97;
constexpr int kInt98 = 98;
constexpr int kTrueColor = 420;
constexpr int kColorName = 430;
constexpr int kTransparency = 440;
constexpr int kLineweight = 370;
constexpr int kPlotStyle = 390;
constexpr int kMaterial = 347;
constexpr int kNormalX = 210;
constexpr int kHardOwnerFlag = 280;  // DICTIONARY: entries are hard-owned; XRECORD: cloning flag
constexpr int kCloningFlag = 281;    // DICTIONARY duplicate-record cloning flag
constexpr int kPointerMin = 320;
constexpr int kPointerMax = 369;
constexpr int kSortHandle = 5;       // SORTENTSTABLE: the handle an entity sorts by
constexpr int kSortEntity = 331;     // SORTENTSTABLE: the entity
constexpr int kBlockRecordPointer = 340;
constexpr int kLayoutBlockRecord = 330;

constexpr int kPlotStylePointerMax = 399;   // 390-399: more hard pointers
constexpr int kOwnerSoftPointer = 480;      // 480, 481: pointers of later versions
constexpr int kOwnerHardPointer = 481;

// Points: X codes 10 to 18 (their Y and Z 20-28, 30-38).
constexpr int kPointFirst = 10;
constexpr int kPointLast = 18;
constexpr int kHandleCode = 105;     // DIMSTYLE's handle; an arbitrary handle in xrecords

// Xdata.
constexpr int kXdataFirst = 1000;
constexpr int kXdataLast = 1071;
constexpr int kXdataApp = 1001;
constexpr int kLastCode = 1071;      // the highest group code DXF defines

// HATCH pattern data.
constexpr int kHatchPatternAngle = 52;   // the pattern's angle; also each definition line's angle
constexpr int kHatchLineAngle = 53;
constexpr int kHatchLineOffset = 45;     // a definition line's offset (45, 46)
constexpr int kHatchPixelSize = 47;
constexpr int kHatchDashLength = 49;
constexpr int kHatchGradientAngle = 460; // radians

// ATTRIB and ATTDEF values besides the common ones.
constexpr int kTag = 2;
constexpr int kPrompt = 3;
constexpr int kVerticalJustification = 74;
constexpr int kFieldLength = 73;
constexpr int kLockPosition = 280;
constexpr int kRotation2 = 52;           // a second angle: dimension oblique, hatch pattern
constexpr int kXdataHandleRef = 1005;  // a handle in xdata, renumbered with the objects

// True for a group code whose value is a handle of another object: what copying and converting
// must translate.
constexpr bool isHandleReference(int code) {
    return (code >= kPointerMin && code <= kPointerMax) || (code >= kPlotStyle && code <= kPlotStylePointerMax) ||
           code == kOwnerSoftPointer || code == kOwnerHardPointer || code == kXdataHandleRef;
}

}  // namespace veltarn::db::gc

namespace veltarn::db {
// The texts of DXF's application groups.
inline constexpr const char* kXdictionaryGroup = "{ACAD_XDICTIONARY";
inline constexpr const char* kReactorsGroup = "{ACAD_REACTORS";
inline constexpr const char* kGroupEnd = "}";
}  // namespace veltarn::db
