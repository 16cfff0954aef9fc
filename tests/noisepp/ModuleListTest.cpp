// Covers, for every module of the engine's module list: the type code, refusal to compile while
// a required source is missing, the parameter stream against the layouts of
// tests/data/module-streams.txt (what a fresh module writes, a sample read and written back to
// the same bytes, every truncated sample refused with the module left as it was, invalid
// streams refused), and bit-identical images from the plain and the threaded pipeline.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "TestSupport.h"
#include "noisepp/core/ThreadedPipeline.h"
#include "noisepp/utils/PlaneBuilder.h"
#include "noisepp/utils/ProcessorCount.h"

namespace noisepp {
namespace {

using test::bytesOf;
using test::configureFromSample;
using test::FixedColorModule;
using test::messageOf;
using test::moduleRow;
using test::ModuleRow;
using test::moduleRows;
using test::readStreamLines;
using test::StreamLine;

/// Source positions a module compiles without: the fibres' matrix and the blend's mask.
const std::set<std::pair<std::string, std::size_t>> kOptionalSources = {{"FibersModule", 0},
                                                                        {"BlendModule", 2}};

TEST(ModuleList, TypeCodes) {
    for (const ModuleRow& row : moduleRows())
        EXPECT_EQ(row.make()->getType(), row.typeCode) << row.name;
}

TEST(ModuleList, AMissingSourceIsRefusedBeforeAnythingIsCompiled) {
    FixedColorModule source({0.5f, 0.5f, 0.5f, 1.0f});
    for (const ModuleRow& row : moduleRows()) {
        const auto module = row.make();
        for (std::size_t missing = 0; missing < module->getSourceModuleCount(); ++missing) {
            SCOPED_TRACE(row.name + " without source " + std::to_string(missing));
            for (std::size_t i = 0; i < module->getSourceModuleCount(); ++i)
                module->setSourceModule(i, i == missing ? nullptr : &source);
            Pipeline3D pipeline;
            if (kOptionalSources.count({row.name, missing}) != 0) {
                EXPECT_NO_THROW(module->addToPipeline(&pipeline));
                continue;
            }
            const std::string message = messageOf([&] { module->addToPipeline(&pipeline); });
            EXPECT_EQ(message.rfind("source module is not set in '", 0), 0u) << message;
            EXPECT_NE(message.find("::addToPipeline("), std::string::npos) << message;
            EXPECT_EQ(pipeline.getElementCount(), 0u);
        }
    }
}

std::string thrownKind(const std::function<void()>& action) {
    try {
        action();
    } catch (const StreamException&) {
        return "StreamException";
    } catch (const ParamInvalidException&) {
        return "ParamInvalidException";
    }
    return "nothing";
}

TEST(ModuleList, StreamsFollowTheRecordedLayouts) {
    const std::vector<StreamLine> lines = readStreamLines();
    std::set<std::string> withDefaults;
    for (const StreamLine& line : lines) {
        SCOPED_TRACE(line.module + " " + line.kind + line.fields);
        const ModuleRow* row = &moduleRow(line.module);
        const auto module = row->make();
        const std::vector<unsigned char> defaults = bytesOf(*module);
        if (line.kind == "defaults") {
            EXPECT_EQ(defaults, line.bytes);
            withDefaults.insert(line.module);
        } else if (line.kind == "sample") {
            MemoryInStream in(line.bytes);
            module->read(in);
            EXPECT_EQ(in.remaining(), 0u);
            EXPECT_EQ(bytesOf(*module), line.bytes);
            for (std::size_t size = 0; size < line.bytes.size(); ++size) {
                const auto fresh = row->make();
                MemoryInStream cut(
                    std::vector<unsigned char>(line.bytes.begin(), line.bytes.begin() + size));
                EXPECT_THROW(fresh->read(cut), StreamException) << size << " bytes";
                EXPECT_EQ(bytesOf(*fresh), defaults) << size << " bytes";
            }
        } else {
            MemoryInStream in(line.bytes);
            EXPECT_EQ(thrownKind([&] { module->read(in); }), line.kind);
            EXPECT_EQ(bytesOf(*module), defaults);
        }
    }
    for (const ModuleRow& row : moduleRows())
        EXPECT_EQ(withDefaults.count(row.name), 1u) << row.name << " has no recorded layout";
}

/// Every module with its sample parameters over generator sources, rendered by the builder on a
/// plain pipeline of its own and on a threaded pipeline the caller owns.
TEST(ModuleList, ThreadedAndPlainPipelinesRenderIdenticalImages) {
    std::vector<std::unique_ptr<Module>> sources;
    for (const char* name : {"PerlinModule", "VoronoiModule", "RidgedMultiModule"})
        sources.push_back(moduleRow(name).make());
    for (const ModuleRow& row : moduleRows()) {
        const auto module = row.make();
        for (std::size_t i = 0; i < module->getSourceModuleCount(); ++i)
            module->setSourceModule(i, sources[i].get());
        configureFromSample(*module, row.name, 0);
        std::vector<TextureColor> plain(53 * 41), threaded(plain.size());
        utils::PlaneBuilder builder;
        builder.setSize(53, 41);
        builder.setBounds(-2.3, -1.7, 3.1, 2.2);
        builder.setZValue(0.45);
        builder.setDestination(plain.data());
        builder.setModule(module.get());
        utils::setProcessorCount(1);
        builder.build();
        utils::setProcessorCount(0);
        ThreadedPipeline3D pipeline(3);
        builder.setDestination(threaded.data());
        builder.build(&pipeline, pipeline.getElement(module->addToPipeline(&pipeline)));
        EXPECT_EQ(std::memcmp(plain.data(), threaded.data(), plain.size() * sizeof(TextureColor)),
                  0)
            << row.name;
    }
}

}  // namespace
}  // namespace noisepp
