#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "noisepp/core/Pipeline.h"
#include "noisepp/core/PipelineElement3D.h"
#include "noisepp/utils/Builder.h"

namespace noisepp::utils {

/// Samples a texture over the rectangle [lower x, upper x] x [lower y, upper y] of the plane
/// z = constant, one job per image line.
///
/// Pixel (i, j) samples the centre of its cell: x = lower x + (i + 1/2) step x, y = lower y +
/// (j + 1/2) step y, with x and y advanced by repeated addition of their steps. In seamless
/// mode every pixel blends four samples one extent apart so that the image tiles (see
/// SeamlessPlaneLineJob). Progress is reported once per line, on the calling thread. Lines are
/// queued from the last (highest y, the top of a picture) down, so they finish roughly in the
/// order files store them.
///
/// A window renders only part of that image: the size and bounds still describe the whole
/// image, and every sample of the window is the one the whole image takes there, to the bit,
/// because x and y reach the window's first pixel by the same repeated additions. So tiles
/// rendered apart assemble into exactly the one-piece image.
/// All fields start at zero (or null, or off); no window means the whole image.
class PlaneBuilder : public Builder {
public:
    void setBounds(double lowerX, double lowerY, double upperX, double upperY) {
        mLowerBoundX = lowerX;
        mLowerBoundY = lowerY;
        mUpperBoundX = upperX;
        mUpperBoundY = upperY;
    }
    /// The constant third coordinate of every sample.
    void setZValue(double z) { mZValue = z; }
    void setSeamless(bool seamless) { mSeamless = seamless; }
    /// Compiles the module to repeat with the bounds' extent along x and y, so that the image
    /// tiles with no blending (see Periodicity). build() then throws NotPeriodicException for
    /// a tree that cannot repeat, and getNotes() tells the snapped frequencies.
    void setPeriodic(bool periodic) { mPeriodic = periodic; }
    /// What periodic compilation changed, one line per generator octave, from the last build().
    const std::vector<std::string>& getNotes() const { return mNotes; }
    /// Renders only the pixels [x0, x1) x [y0, y1) of the width x height image; the
    /// destination then holds (x1 - x0) x (y1 - y0) colours, row-major. build() checks that
    /// the window is non-empty and inside the image.
    void setWindow(std::int32_t x0, std::int32_t y0, std::int32_t x1, std::int32_t y1) {
        mWindowX0 = x0;
        mWindowY0 = y0;
        mWindowX1 = x1;
        mWindowY1 = y1;
        mWindowed = true;
    }
    /// Workers of the pipeline build() creates when given none; 0 means one per processor.
    void setThreadCount(std::size_t threads) { mThreadCount = threads; }

    /// Compiles the module into a pipeline of its own (threaded on machines with two or more
    /// processors) and fills the destination.
    void build() override;
    /// Fills the destination from `element`, queueing the line jobs on `pipeline` (which must
    /// own the element); the module is not used then. With a null pipeline this is build().
    /// Throws ParamInvalidException for bad parameters (destination, width, height, then the x
    /// and y bounds, which must be strictly increasing, then a missing module or element), and
    /// BuildStoppedException when the callback stopped it (every queued line has then run or
    /// been skipped, so the pipeline can take new jobs).
    void build(Pipeline3D* pipeline, const PipelineElement3D* element);
    /// One step per line of the window.
    std::int32_t getStepCount() const override {
        return mWindowed ? mWindowY1 - mWindowY0 : mHeight;
    }

private:
    double mLowerBoundX = 0.0;
    double mLowerBoundY = 0.0;
    double mUpperBoundX = 0.0;
    double mUpperBoundY = 0.0;
    double mZValue = 0.0;
    bool mSeamless = false;
    bool mPeriodic = false;
    std::vector<std::string> mNotes;
    bool mWindowed = false;
    std::int32_t mWindowX0 = 0;
    std::int32_t mWindowY0 = 0;
    std::int32_t mWindowX1 = 0;
    std::int32_t mWindowY1 = 0;
    std::size_t mThreadCount = 0;
};

}  // namespace noisepp::utils
