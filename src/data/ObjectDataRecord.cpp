#include "data/ObjectDataRecord.h"

namespace veltarn {

int groupCodeOf(FieldType type) {
    switch (type) {
        case FieldType::Integer: return kIntegerCode;
        case FieldType::Real: return kRealCode;
        case FieldType::Point: return kPointCode;
        default: return kCharacterCode;
    }
}

}  // namespace veltarn
