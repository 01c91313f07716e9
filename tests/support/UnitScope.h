#pragma once
// Gives a host handle a display unit for one test; every unit is forgotten afterwards.

namespace wctest {

class UnitScope {
public:
    // `unit`: 0 imperial (mil), 1 metric (mm).
    UnitScope(const void* handle, int unit);
    ~UnitScope();
    UnitScope(const UnitScope&) = delete;
    UnitScope& operator=(const UnitScope&) = delete;

    // Switches the handle to another unit, as the host does before calling change_unit().
    void change(int unit);

private:
    const void* handle_;
};

}  // namespace wctest
