// The property test: do an object's type and graphic properties agree with what a class
// prescribes? docs/class-tests.md explains the rules for users; they are:
//
//   The object's type name is one of the class's types, and every property the class sets
//   (given, and not "?") agrees with the object: colour, layer ("*" is any layer), linetype,
//   linetype scale and lineweight on every object; where the object's kind carries them, text
//   style and height, hatch pattern with its scale, angle and colours, multiline style, scale and
//   justification, dimension style, multileader style, block name, constant width, elevation and
//   closed. A property given with alternatives agrees with any of them. Names compare without
//   regard to case; numbers agree within kPropertyTolerance.
//
// Properties that only steer drawing (modes, radius, rotation, text, justification, attachment,
// block scale, explode) are not tested: an object keeps its own.
#pragma once

#include "classifier/ClassDef.h"
#include "commands/Fault.h"
#include "host/DbEntity.h"

namespace veltarn {

// Relative to the larger of 1 and the two magnitudes: drawings store numbers through text, often
// with six decimals, and nobody tells 0.5 from 0.5000004 on a plan.
inline constexpr double kPropertyTolerance = 1e-6;

// Whether `entity` agrees with `def`. With `why`, every disagreement is appended.
bool propertyTestHolds(const host::DbEntity& entity, const ClassDef& def, Faults* why = nullptr);

// Whether the entity's value of one property ("layer", "color", "textstyle", ... as the classifier
// names it) is one of the class's values; true when the class does not set it or the object's kind
// does not carry it.
bool propertyAgrees(const host::DbEntity& entity, const ClassDef& def, std::wstring_view keyword);

// Whether the entity's type name is one of the class's types (without regard to case).
bool hasClassType(const host::DbEntity& entity, const ClassDef& def);

}  // namespace veltarn
