// The tags of data attached to a new entity, written once for both ways of adding one: the
// entity's pointer to its extension dictionary, that dictionary with one entry, and the head of
// the entry's xrecord (its values follow). `emit(code, value)` takes each tag in file order, so
// the bulk path encodes straight into a blob and the general path fills tag lists.
#pragma once

#include "cad/db/GroupCodes.h"

#include <string_view>

namespace veltarn::db {

template <class Emit>
void emitXdictionaryPointer(Emit&& emit, std::string_view dictionary) {
    emit(gc::kControlString, std::string_view(kXdictionaryGroup));
    emit(gc::kHardOwner, dictionary);
    emit(gc::kControlString, std::string_view(kGroupEnd));
}

// Hard-owned entries (280 = 1), kept with the entity when it is cloned (281 = 1).
template <class Emit>
void emitDataDictionary(Emit&& emit, std::string_view dictionary, std::string_view entity, std::string_view key,
                        std::string_view record) {
    emit(gc::kStructure, std::string_view("DICTIONARY"));
    emit(gc::kHandle, dictionary);
    emit(gc::kSoftPointer, entity);
    emit(gc::kSubclass, std::string_view("AcDbDictionary"));
    emit(gc::kHardOwnerFlag, std::string_view("1"));
    emit(gc::kCloningFlag, std::string_view("1"));
    emit(gc::kOtherName, key);
    emit(gc::kSoftOwner, record);
}

template <class Emit>
void emitDataXrecordHead(Emit&& emit, std::string_view record, std::string_view dictionary) {
    emit(gc::kStructure, std::string_view("XRECORD"));
    emit(gc::kHandle, record);
    emit(gc::kSoftPointer, dictionary);
    emit(gc::kSubclass, std::string_view("AcDbXrecord"));
    emit(gc::kHardOwnerFlag, std::string_view("1"));
}

}  // namespace veltarn::db
