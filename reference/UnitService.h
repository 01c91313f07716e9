#pragma once

#include <QString>
#include <map>
#include <mutex>

namespace wcref {

// Display unit per host handle, and the arithmetic between mil, the display unit and engine
// nanometres. Handles are only compared, never dereferenced; a handle whose object died keeps
// its entry until resetUnits().
class UnitService {
public:
    static constexpr int kImperial = 0;  // mil
    static constexpr int kMetric = 1;    // mm
    static constexpr double kNmPerMil = 25400.0;
    static constexpr double kNmPerMm = 1000000.0;
    static constexpr double kMmPerMil = 0.0254;

    static UnitService& instance();

    static bool isValidUnit(int unit) { return unit == kImperial || unit == kMetric; }

    int unit(const void* handle) const;
    // Whether the handle had setUnit called on it (as opposed to following the default).
    bool hasOwnUnit(const void* handle) const;
    // The unit before the last setUnit of `handle`; its current unit when it was never changed.
    int previousUnit(const void* handle) const;
    bool setUnit(const void* handle, int unit);

    int defaultUnit() const;
    bool setDefaultUnit(int unit);
    void reset();

    // Pure conversions; `unit` is a display unit code.
    static double milToDisplay(double mil, int unit);
    static double displayToMil(double display, int unit);
    static double displayToEngine(double display, int unit);
    static double engineToDisplay(double engine, int unit);
    static double convertDisplay(double value, int from_unit, int to_unit);
    // Every number inside a symbol name re-expressed from `from_unit` to `to_unit` ("r10" in mil
    // is "r0.254" in mm). Numbers keep at most four decimals, without trailing zeros.
    static QString convertSymbol(const QString& symbol, int from_unit, int to_unit);
    static QString compactNumber(double value);

private:
    UnitService() = default;

    mutable std::mutex lock_;
    int default_unit_ = kImperial;
    std::map<const void*, int> units_;
    std::map<const void*, int> previous_;
};

}  // namespace wcref
