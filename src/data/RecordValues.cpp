#include "data/RecordValues.h"

#include "data/ObjectDataRecord.h"

namespace veltarn {

void readStoredValue(const host::TypedValue& stored, FieldValue& value) {
    value.clear();
    switch (stored.groupCode) {
        case kCharacterCode:
            if (stored.isText()) value.setText(stored.text());
            break;
        case kPointCode:
            if (stored.isPoint()) value.setPoint(stored.point());
            break;
        case kRealCode:
            if (stored.isReal()) value.setReal(stored.real());
            break;
        case kIntegerCode:
            if (stored.isInteger()) value.setInteger(stored.integer());
            break;
        default: break;
    }
}

host::TypedValue storedForm(const FieldValue& value) {
    switch (value.type()) {
        case FieldType::Integer: return {kIntegerCode, value.integerValue()};
        case FieldType::Real: return {kRealCode, value.realValue()};
        case FieldType::Point: return {kPointCode, value.pointValue()};
        case FieldType::Character: return {kCharacterCode, value.text()};
        default: return {kCharacterCode, std::wstring()};
    }
}

}  // namespace veltarn
