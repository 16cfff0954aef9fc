#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace noisepp {

/// Base of the curve-shaped value modifiers' elements (curve, terrace): owns the control
/// point list the element was compiled with. It adds nothing to the element interface.
///
/// The list is flat: `valuesPerPoint` doubles per point, in the order the module stored them
/// (no sorting), so a curve keeps (input, output) pairs and a terrace single levels.
template <class Element>
class CurveElementBase : public Element {
protected:
    CurveElementBase() = default;

    /// Copies `valueCount` doubles as the list of `pointCount` points. Called once, from the
    /// derived constructor after it has checked its arguments.
    void assignPoints(const double* values, std::size_t valueCount, std::int32_t pointCount) {
        mValues.assign(values, values + valueCount);
        mPointCount = pointCount;
    }

    const double* points() const { return mValues.data(); }
    std::int32_t pointCount() const { return mPointCount; }

private:
    std::vector<double> mValues;
    std::int32_t mPointCount = 0;
};

}  // namespace noisepp
