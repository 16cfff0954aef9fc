// Covers: source positions and their range checks, cycle refusal through walkTree, the
// messages of the engine's exceptions, and the missing-source check before compilation.

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

TEST(Module, RefusesItselfAndCyclesButAcceptsClearing) {
    InvertModule a;
    InvertModule b;
    EXPECT_NE(
        messageOf([&] { a.setSourceModule(0, &a); }).find(": assertion 'module != this' failed"),
        std::string::npos);
    a.setSourceModule(0, &b);
    const std::string cycle = messageOf([&] { b.setSourceModule(0, &a); });
    EXPECT_EQ(cycle.rfind("invalid parameter for 'module' in '", 0), 0u) << cycle;
    EXPECT_NE(cycle.find("': assertion 'module->walkTree(this) == false' failed"),
              std::string::npos)
        << cycle;
    EXPECT_EQ(b.getSourceModule(0), nullptr) << "a refused source must not be stored";
    a.setSourceModule(0, nullptr);
    EXPECT_NO_THROW(b.setSourceModule(0, &a)) << "clearing must break the cycle";
}

TEST(Module, WalkTreeFindsIndirectSources) {
    FixedColorModule leaf({});
    InvertModule middle;
    InvertModule top;
    middle.setSourceModule(0, &leaf);
    top.setSourceModule(0, &middle);
    EXPECT_TRUE(top.walkTree(&leaf));
    EXPECT_TRUE(top.walkTree(&middle));
    EXPECT_FALSE(leaf.walkTree(&top));
    EXPECT_FALSE(middle.walkTree(&top));
}

TEST(Exception, EmptyDetailEndsAfterTheFunction) {
    EXPECT_STREQ(ParamInvalidException("p", "f()").what(), "invalid parameter for 'p' in 'f()'");
    EXPECT_STREQ(ParamInvalidException("p", "f()", "d").what(),
                 "invalid parameter for 'p' in 'f()': d");
}

}  // namespace
}  // namespace noisepp
