#pragma once

#include <vector>

#include "noisepp/core/Module.h"

namespace noisepp {

/// Maps every channel, opacity included, onto terraces: between two neighbouring terrace
/// points the value rises along a quadratic curve (flat at the lower point, steep at the
/// upper one; the other way round when inverted). Values below the first point give the
/// first point, values at or above the last give the last.
///
/// Points are used in the order they were added and must be ascending; the module does not
/// sort them. At least 2 are needed to compile.
class TerraceModule : public Module {
public:
    TerraceModule() : Module(1) {}

    void addTerracePoint(double value) { mTerracePoints.push_back(value); }
    void clearTerracePoints() { mTerracePoints.clear(); }
    const std::vector<double>& getTerracePoints() const { return mTerracePoints; }
    std::size_t getTerracePointCount() const { return mTerracePoints.size(); }

    void setInvertTerraces(bool invert) { mInvertTerraces = invert; }
    bool getInvertTerraces() const { return mInvertTerraces; }

    /// NoModuleException without a source; ParamInvalidException for "count" with fewer than
    /// 2 points (checked before anything is compiled).
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 19; }
    /// Point count (int32), the points (doubles), the invert flag (int32, 0 or 1).
    void write(OutStream& stream) const override;
    /// Replaces points and flag; a negative count throws StreamException.
    void read(InStream& stream) override;

private:
    std::vector<double> mTerracePoints;
    bool mInvertTerraces = false;
};

}  // namespace noisepp
