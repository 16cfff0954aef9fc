// Covers graph documents (round trip, every kind of bad document, atomic save), the plug-in
// loader's catalogue and errors, and the Image File host node.

#include <gtest/gtest.h>

#include <cstdlib>

#include "host/Document.h"
#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/Image.h"
#include "host/ImageFileNode.h"
#include "host/Node.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "tests/support/TempFolder.h"

using testsupport::TempFolder;

namespace {

const std::string kPlugin = TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so";

class DocumentTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(loader.Load(kPlugin, &error)) << error;
    }
    void TearDown() override {
        engine.Clear();
        other.Clear();
    }

    void WritePng(const std::string& path, float red) {
        Image* image = new Image(2, 2);
        image->AddRef();
        const float pixel[4] = {red, 0.5f, 0.25f, 1.0f};
        image->Fill(pixel);
        std::string error;
        EXPECT_TRUE(image->WriteFile(path, 8, &error)) << error;
        image->Release();
    }

    PluginLoader loader;
    Engine engine;
    Engine other;
    TempFolder scratch;
};

const char* kGoodDocument = R"({
  "format": "texture-graph", "version": 1,
  "nodes": [
    {"id": "fill", "type": "Test Fill",
     "attributes": {"color": [0.25, 0.5, 0.75, 1], "size": 8.5, "mode": "b", "legacy": 3,
                    "gradient": {"interpolation": "step", "stops": [[0.5, [1, 0, 0, 1]]]}}},
    {"id": "inv", "type": "TestInvertNode", "enabled": false},
    {"id": "photo", "type": "Image File", "attributes": {"file": "pictures/p.png"}},
    {"id": "inv2", "type": "Test Invert"}
  ],
  "links": [{"from": "fill.image", "to": "inv.image"},
            {"from": "photo.image", "to": "inv2.image"}],
  "active": "fill", "display": "inv"
})";

void ExpectSameGraph(Engine& a, Engine& b) {
    ASSERT_EQ(a.GetNodes().size(), b.GetNodes().size());
    for (Node* node : a.GetNodes()) {
        Node* twin = b.FindNode(a.GetNodeId(node));
        ASSERT_NE(twin, nullptr) << a.GetNodeId(node);
        EXPECT_EQ(node->GetTypeName(), twin->GetTypeName());
        EXPECT_EQ(node->IsEvaluationEnabled(), twin->IsEvaluationEnabled());
        if (const GradientNode* gradient = node->GetGradientNode(); gradient != nullptr) {
            EXPECT_EQ(gradient->GetGradient(), twin->GetGradientNode()->GetGradient());
        }
        for (const auto& attribute : node->GetAttributes())
            EXPECT_TRUE(attribute->GetValue() == twin->GetAttribute(attribute->GetId())->GetValue())
                << a.GetNodeId(node) << "." << attribute->GetName();
    }
    ASSERT_EQ(a.GetLinks().size(), b.GetLinks().size());
    for (const Engine::Link& link : a.GetLinks()) {
        const Engine::Link* twin = b.FindLinkTo(b.FindNode(a.GetNodeId(link.to)), link.inplug);
        ASSERT_NE(twin, nullptr);
        EXPECT_EQ(b.GetNodeId(twin->from), a.GetNodeId(link.from));
        EXPECT_EQ(twin->outplug, link.outplug);
    }
}

TEST_F(DocumentTest, LoadSaveLoadKeepsAttributesLinksFlagsAndPaths) {
    std::filesystem::create_directories(scratch.Path() / "pictures");
    WritePng(scratch / "pictures/p.png", 1.0f);
    scratch.Write("a.texture.json", kGoodDocument);
    Document document;
    std::string error;
    ASSERT_TRUE(document.Load(scratch / "a.texture.json", engine, loader, &error)) << error;
    EXPECT_FALSE(engine.CanUndo());
    EXPECT_EQ(document.GetActive(), "fill");
    EXPECT_EQ(document.GetDisplay(), "inv");

    Node* fill = engine.FindNode("fill");
    EXPECT_EQ(fill->FindAttribute("size")->GetValue().GetNumber(), 8.5);  // stored as given
    EXPECT_EQ(fill->FindAttribute("mode")->GetChoiceIndex(), 1);
    EXPECT_EQ(fill->GetGradientNode()->GetGradient().vertices.size(), 1u);
    EXPECT_FALSE(engine.FindNode("inv")->IsEvaluationEnabled());
    const std::string file = engine.FindNode("photo")->FindAttribute("file")->GetValue().GetText();
    EXPECT_EQ(file, scratch / "pictures/p.png");

    ASSERT_TRUE(document.Save(scratch / "b.texture.json", engine, &error)) << error;
    const std::string saved = testsupport::ReadFile(scratch / "b.texture.json");
    EXPECT_NE(saved.find("\"pictures/p.png\""), std::string::npos) << saved;

    Document reloaded;
    ASSERT_TRUE(reloaded.Load(scratch / "b.texture.json", other, loader, &error)) << error;
    ExpectSameGraph(engine, other);
    ExpectSameGraph(other, engine);
    EXPECT_EQ(reloaded.GetActive(), "fill");
    EXPECT_EQ(reloaded.GetDisplay(), "inv");
}

TEST_F(DocumentTest, ChoiceByIndexAndMeshlessDefaultsLoad) {
    scratch.Write("c.texture.json", R"({"format": "texture-graph", "version": 1,
      "nodes": [{"id": "f", "type": "Test Fill", "attributes": {"mode": 1}}]})");
    Document document;
    std::string error;
    ASSERT_TRUE(document.Load(scratch / "c.texture.json", engine, loader, &error)) << error;
    EXPECT_EQ(engine.FindNode("f")->FindAttribute("mode")->GetValue().GetText(), "b");
    EXPECT_EQ(engine.FindNode("f")->FindAttribute("size")->GetValue().GetNumber(), 4.0);
}

std::string Wrap(const std::string& nodes, const std::string& links = "") {
    return R"({"format": "texture-graph", "version": 1, "nodes": [)" + nodes + R"(], "links": [)" +
           links + "]}";
}

TEST_F(DocumentTest, BadDocumentsFailWithFileAndPlace) {
    const auto fill = [](const std::string& attributes) {
        return Wrap(R"({"id": "f", "type": "Test Fill", "attributes": {)" + attributes + "}}");
    };
    const std::string f = R"({"id": "f", "type": "Test Fill"})";
    const std::string g = R"({"id": "g", "type": "Test Fill"})";
    const std::string i = R"({"id": "i", "type": "Test Invert"})";
    const std::string fi = f + "," + R"({"id": "i", "type": "Test Invert"})";
    const std::string ij = i + "," + R"({"id": "j", "type": "Test Invert"})";
    const std::string link = R"({"from": "f.image", "to": "i.image"})";
    // Each bad document with the parts its one-line error must hold after "<file>: ".
    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {Wrap(R"({"id": "f", "type": "Test Fil"})"),
         {"node 'f'", "unknown node type 'Test Fil'", "close matches: 'Test Fill'"}},
        {Wrap(f + "," + f), {"node 'f'", "duplicate id"}},
        {Wrap(R"({"id": "a.b", "type": "Test Fill"})"), {"nodes[0]", "'a.b'"}},
        {fill(R"("colour": 1)"),
         {"node 'f' (Test Fill)", "unknown attribute 'colour' (close matches: 'color')"}},
        {fill(R"("size": "big")"), {"attribute 'size' (number)", "expected a number"}},
        {fill(R"("color": [1, 0])"), {"attribute 'color'", "[r, g, b, opacity]"}},
        {fill(R"("size": 100)"), {"node 'f' (Test Fill): attribute 'size'", "1", "64"}},
        {fill(R"("mode": "c")"), {"attribute 'mode'", "'c'", "a, b"}},
        {fill(R"("mode": 2)"), {"attribute 'mode'", "between 0 and 1"}},
        {fill(R"("gradient": 3)"), {"node 'f' (Test Fill): attribute 'gradient'"}},
        {Wrap(f, R"({"from": "ff.image", "to": "f.size"})"),
         {"links[0]", "unknown node id 'ff' (close matches: 'f')"}},
        {Wrap(fi, R"({"from": "f.imag", "to": "i.image"})"),
         {"links[0]", "no output 'imag' (close matches: 'image')"}},
        {Wrap(fi, R"({"from": "f.image", "to": "i.img"})"),
         {"links[0]", "no input or attribute 'img' (close matches: 'image')"}},
        {Wrap(f + "," + g, R"({"from": "f.image", "to": "g.size"})"),
         {"links[0]", "plug type mismatch"}},
        {Wrap(fi + "," + g, link + R"(, {"from": "g.image", "to": "i.image"})"),
         {"links[1]", "'i.image' is linked already"}},
        {Wrap(ij, R"({"from": "i.image", "to": "j.image"}, {"from": "j.image", "to": "i.image"})"),
         {"links[1]", "cycle"}},
        {Wrap(R"({"id": "p", "type": "Image File", "attributes": {"file": "nope.png"}})"),
         {"node 'p' (Image File): attribute 'file'", "nope.png", "does not exist"}},
    };
    for (const auto& [text, expected] : cases) {
        const std::string path = scratch.Write("bad.texture.json", text);
        Document document;
        std::string error;
        EXPECT_FALSE(document.Load(path, engine, loader, &error)) << text;
        EXPECT_EQ(error.rfind(path + ": ", 0), 0u) << error;
        for (const std::string& part : expected)
            EXPECT_NE(error.find(part), std::string::npos) << "'" << part << "' not in: " << error;
        EXPECT_TRUE(engine.GetNodes().empty()) << "a bad document left nodes: " << text;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

TEST_F(DocumentTest, MalformedJsonMissingModelAndWrongFormatAreNamed) {
    Document document;
    std::string error;
    const std::string path = scratch / "m.texture.json";
    scratch.Write("m.texture.json",
                  "{\n  \"format\": \"texture-graph\",\n  \"version\": 1,\n  \"nodes\": [ , ]\n}");
    EXPECT_FALSE(document.Load(path, engine, loader, &error));
    EXPECT_NE(error.find(path + ": line 4, column 14: malformed JSON"), std::string::npos) << error;

    scratch.Write("m.texture.json",
                  R"({"format": "texture-graph", "version": 1, "scene": {"models": ["m/x.obj"]}})");
    EXPECT_FALSE(document.Load(path, engine, loader, &error));
    EXPECT_NE(error.find("scene.models[0]"), std::string::npos) << error;
    EXPECT_NE(error.find("x.obj' does not exist"), std::string::npos) << error;

    scratch.Write("m.texture.json", R"({"format": "picture", "version": 1})");
    EXPECT_FALSE(document.Load(path, engine, loader, &error));
    EXPECT_NE(error.find("\"format\""), std::string::npos) << error;

    EXPECT_FALSE(document.Load(scratch / "absent.texture.json", engine, loader, &error));
    EXPECT_NE(error.find("absent.texture.json: cannot open"), std::string::npos) << error;
}

TEST_F(DocumentTest, SaveReplacesTheFileWholeAndAFailedSaveKeepsIt) {
    const std::string path = scratch / "keep.texture.json";
    const std::string link = scratch / "keep.link";
    const std::string original = "{\"old\": true}\n";
    scratch.Write("keep.texture.json", original);
    // A second name for the old file's bytes: a save that rewrote the file in place would
    // change them, one that writes a new file and renames it over the target does not.
    std::filesystem::create_hard_link(path, link);
    std::unique_ptr<Node> node = loader.CreateNode("Image File", nullptr);
    Node* photo = engine.AddNode(std::move(node), "photo");
    // Text that is not UTF-8 cannot be written as JSON: the save must fail.
    photo->FindAttribute("file")->SetValue(NodeValue::Text("bad\xff"));
    Document document;
    std::string error;
    EXPECT_FALSE(document.Save(path, engine, &error));
    EXPECT_NE(error.find(path + ": cannot save"), std::string::npos) << error;
    EXPECT_EQ(testsupport::ReadFile(path), original);
    EXPECT_FALSE(document.Save(scratch / "no/such/folder/x.texture.json", engine, &error));

    photo->FindAttribute("file")->SetValue(NodeValue::Text(""));
    ASSERT_TRUE(document.Save(path, engine, &error)) << error;
    EXPECT_NE(testsupport::ReadFile(path).find("Image File"), std::string::npos);
    EXPECT_EQ(testsupport::ReadFile(link), original);
    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(scratch.Path()))
        ++files;
    EXPECT_EQ(files, 2) << "a temporary file was left behind";
}

TEST(PluginLoaderTest, CatalogueFindsTypesByBothNamesAndSuggestsCloseOnes) {
    PluginLoader loader;
    std::string error;
    ASSERT_TRUE(loader.Load(kPlugin, &error)) << error;
    ASSERT_EQ(loader.GetPluginInterfaceCount(), 2u);
    ASSERT_EQ(loader.GetNodeInterfaces().size(), 3u);  // the host's Image File comes last
    EXPECT_EQ(loader.GetNodeInterfaces()[2]->GetTypeName(), "Image File");
    EXPECT_EQ(loader.FindType("TestInvertNode"), loader.FindType("Test Invert"));
    EXPECT_NE(loader.FindType("ImageFileNode"), nullptr);
    EXPECT_EQ(loader.FindType("test fill"), nullptr);
    EXPECT_EQ(loader.FindCloseMatches("test fill"), std::vector<std::string>{"Test Fill"});
    EXPECT_TRUE(loader.FindCloseMatches("Perlin Texture").empty());
    EXPECT_EQ(loader.CreateNode("Nothing", &error), nullptr);
    EXPECT_EQ(error, "unknown node type 'Nothing'");
}

// A missing library's message is checked through the command line.
TEST(PluginLoaderTest, RefusesALibraryWithoutTheExportsAndFindsTheDefaultPath) {
    PluginLoader other;
    std::string error;
    EXPECT_FALSE(other.Load(TEXTURE_BINARY_DIR "/bin/libTextureHost.so", &error));
    EXPECT_NE(error.find("GetNodeInterface"), std::string::npos) << error;

    setenv("TEXTURE_PLUGIN", "/somewhere/libX.so", 1);
    EXPECT_EQ(PluginLoader::DefaultPluginPath(), "/somewhere/libX.so");
    unsetenv("TEXTURE_PLUGIN");
    EXPECT_EQ(std::filesystem::path(PluginLoader::DefaultPluginPath()).filename(), "libTexture.so");
}

TEST(ImageFileNodeTest, ReadsThePictureAndFailsAtEvaluationWhenMissing) {
    TempFolder scratch;
    Engine engine;
    Node* node = engine.AddNode(std::make_unique<ImageFileNode>(), "photo");
    ASSERT_NE(node, nullptr);
    ASSERT_TRUE(engine.SetAttributeValue(node, 0, NodeValue::Text(scratch / "gone.png")));
    EXPECT_FALSE(engine.EvaluateNode(node));
    EXPECT_EQ(node->GetState(), Node::kStateError);
    EXPECT_NE(node->GetStateMessage().find("gone.png"), std::string::npos);

    Image* image = new Image(3, 2);
    image->AddRef();
    const float pixel[4] = {1.0f, 0.0f, 0.0f, 1.0f};
    image->Fill(pixel);
    ASSERT_TRUE(image->WriteFile(scratch / "red.png", 8, nullptr));
    image->Release();
    ASSERT_TRUE(engine.SetAttributeValue(node, 0, NodeValue::Text(scratch / "red.png")));
    EXPECT_TRUE(engine.EvaluateNode(node));
    const NodeValue value = engine.GetOutputValue(node, 0);
    ASSERT_NE(value.GetImage(), nullptr);
    EXPECT_EQ(value.GetImage()->GetSizeX(), 3);
    EXPECT_EQ(value.GetImage()->GetConstArray()[0], 1.0f);
    EXPECT_EQ(value.GetImage()->GetConstArray()[1], 0.0f);
}

}  // namespace
