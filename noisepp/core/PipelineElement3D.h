#pragma once

#include <cstddef>

#include "noisepp/core/PointRun.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {

/// One compiled stage of a texture: the colour of the texture at a 3D point.
///
/// Thread safety: an element fixes every field in its constructor and never changes again.
/// getValue is a pure function of the point and those fields, so any number of worker threads
/// may evaluate the same element at once without locks. Elements hold direct pointers to their
/// source elements (owned by the same pipeline) and never reach back into the modules.
///
/// Besides the single point, an element answers for many points at once: a line, a row
/// (points with their own x and a shared y and z) or arbitrary points. Every colour of those
/// forms equals getValue at the same point bit for bit; they only let an element share work
/// between neighbouring points and evaluate several at once. Elements with sources hand whole
/// runs on to them.
class PipelineElement3D {
public:
    /// Most points handed to one evaluateRun; longer runs are cut into pieces of at most this
    /// many, so that elements keep their per-run scratch on the stack and never allocate.
    static constexpr std::size_t kRunLength = 128;

    virtual TextureColor getValue(double x, double y, double z) const = 0;

    /// Colours of `count` points along a line from (x, y, z): each x is the previous one plus
    /// `xStep` (added, never multiplied out), y and z fixed; returns the x after the last point.
    double getLine(double x, double y, double z, double xStep, std::size_t count,
                   TextureColor* out) const;

    /// Colours at (x[i], y, z) for i < count.
    void getRowValues(const double* x, double y, double z, std::size_t count,
                      TextureColor* out) const;

    /// Colours at (x[i], y[i], z[i]) for i < count.
    void getValues(const double* x, const double* y, const double* z, std::size_t count,
                   TextureColor* out) const;

    /// Colours at the points of `points` (any length), out[i] for point i.
    void getRunValues(const PointRun& points, TextureColor* out) const;

    /// Colours at the points of `points` (at most kRunLength) that are `wanted`, into out[i] for
    /// those i; the others are left as they are. A subset of a row is still a row.
    void getRunValuesWhere(const PointRun& points, const bool* wanted, TextureColor* out) const;

    virtual ~PipelineElement3D() = default;

protected:
    /// Colours of a run of at most kRunLength points. The default evaluates each point with
    /// getValue; elements override it to share work across the run.
    virtual void evaluateRun(const PointRun& points, TextureColor* out) const;
};

}  // namespace noisepp
