#pragma once

#include "noisepp/core/Module.h"

namespace noisepp {

/// Packs the grey of three sources into one colour: red from source 0, green from source 1,
/// blue from source 2, opacity 1.
///
/// The three numbers (defaults 0, 1, 1) are carried into the element and written to the
/// stream, but the evaluation does not read them; they are kept so that documents that set
/// them keep their values.
class JoinModule : public Module {
public:
    JoinModule() : Module(3) {}

    void setRed(double red) { mRed = red; }
    double getRed() const { return mRed; }
    void setGreen(double green) { mGreen = green; }
    double getGreen() const { return mGreen; }
    void setBlue(double blue) { mBlue = blue; }
    double getBlue() const { return mBlue; }

    /// Requires all three sources (NoModuleException); compiles them in order 0, 1, 2.
    std::size_t addToPipeline(Pipeline3D* pipeline) const override;
    int getType() const override { return 17; }
    /// Three doubles: red, green, blue.
    void write(OutStream& stream) const override;
    void read(InStream& stream) override;

private:
    double mRed = 0.0;
    double mGreen = 1.0;
    double mBlue = 1.0;
};

}  // namespace noisepp
