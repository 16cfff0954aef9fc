// Covers: source positions and their range checks, cycle refusal through walkTree (indirect sources
// included), the messages of the engine's exceptions, and the missing-source check before
// compilation.

#include <gtest/gtest.h>

#include <string>

#include "TestSupport.h"
#include "noisepp/core/Exception.h"

namespace noisepp {
namespace {

using test::FixedColorModule;
using test::messageOf;

TEST(Module, SourcePositionsAreRangeChecked) {
    AdditionModule sum;
    FixedColorModule level({});
    EXPECT_EQ(sum.getSourceModuleCount(), 2u);
    EXPECT_EQ(sum.getSourceModule(1), nullptr);
    EXPECT_THROW(sum.setSourceModule(2, &level), OutOfRangeException);
    const std::string message = messageOf([&] { sum.setSourceModule(2, &level); });
    EXPECT_EQ(message.rfind("parameter 'id' is out of range in '", 0), 0u) << message;
    EXPECT_NE(message.find("setSourceModule"), std::string::npos) << message;
    EXPECT_THROW(sum.getSourceModule(2), OutOfRangeException);
}

TEST(Module, RefusesItselfAndIndirectCyclesButAcceptsClearing) {
    InvertModule a;
    InvertModule b;
    InvertModule c;
    EXPECT_NE(
        messageOf([&] { a.setSourceModule(0, &a); }).find(": assertion 'module != this' failed"),
        std::string::npos);
    a.setSourceModule(0, &b);
    b.setSourceModule(0, &c);
    const std::string cycle = messageOf([&] { c.setSourceModule(0, &a); });
    EXPECT_EQ(cycle.rfind("invalid parameter for 'module' in '", 0), 0u) << cycle;
    EXPECT_NE(cycle.find("': assertion 'module->walkTree(this) == false' failed"),
              std::string::npos)
        << cycle;
    EXPECT_EQ(c.getSourceModule(0), nullptr) << "a refused source must not be stored";
    b.setSourceModule(0, nullptr);
    EXPECT_NO_THROW(c.setSourceModule(0, &a)) << "clearing must break the cycle";
}

TEST(Exception, EmptyDetailEndsAfterTheFunction) {
    EXPECT_STREQ(ParamInvalidException("p", "f()").what(), "invalid parameter for 'p' in 'f()'");
    EXPECT_STREQ(ParamInvalidException("p", "f()", "d").what(),
                 "invalid parameter for 'p' in 'f()': d");
}

}  // namespace
}  // namespace noisepp
