#include "commands/Fault.h"

namespace veltarn {

std::wstring_view faultCodeName(FaultCode code) {
    switch (code) {
        case FaultCode::kNoRecord: return L"no-record";
        case FaultCode::kKeyMismatch: return L"key-mismatch";
        case FaultCode::kClassHasNoTable: return L"class-without-table";
        case FaultCode::kUnknownName: return L"unknown-name";
        case FaultCode::kNoMemberHolds: return L"no-member-holds";
        case FaultCode::kMissingValue: return L"missing-value";
        case FaultCode::kWrongType: return L"wrong-type";
        case FaultCode::kConstChanged: return L"const-changed";
        case FaultCode::kEmptyValue: return L"empty-value";
        case FaultCode::kNotInList: return L"not-in-list";
        case FaultCode::kOutOfRange: return L"out-of-range";
        case FaultCode::kWrongEntityType: return L"wrong-entity-type";
        case FaultCode::kWrongProperty: return L"wrong-property";
    }
    return L"unknown";
}

}  // namespace veltarn
