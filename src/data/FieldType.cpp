#include "data/FieldType.h"

namespace veltarn {

const wchar_t* fieldTypeName(FieldType type) {
    switch (type) {
        case FieldType::Integer: return L"Integer";
        case FieldType::Real: return L"Real";
        case FieldType::Character: return L"Character";
        case FieldType::Point: return L"Point";
        default: return L"Unknown";
    }
}

}  // namespace veltarn
