#include "UnitScope.h"

#include "HostSettings.h"
#include "Korvo_UIAPI.h"

namespace wctest {

UnitScope::UnitScope(const void* handle, int unit) : handle_(handle) {
    wcref::resetUnits();
    Korvo::UIAPI::setUnit(handle_, unit);
}

UnitScope::~UnitScope() {
    wcref::resetUnits();
}

void UnitScope::change(int unit) {
    Korvo::UIAPI::setUnit(handle_, unit);
}

}  // namespace wctest
