// Studio: open (bad documents keep the graph), page edits, undo/redo, display image, add/link/
// delete nodes and links, linking by dragging plugs, save and read back, image conversion;
// thumbnails, add/duplicate/paste as undo steps, error marking, renders that stop for the GUI
// thread; the --screenshot and --preview batch modes.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <vector>

#include <QApplication>
#include <QFileInfo>
#include <QGraphicsSceneMouseEvent>
#include <QImage>
#include <QMenuBar>
#include <QThread>

#include "apps/texture-studio/BakeView.h"
#include "apps/texture-studio/DocumentController.h"
#include "apps/texture-studio/FileRenderJob.h"
#include "apps/texture-studio/GraphEditor.h"
#include "apps/texture-studio/GraphScene.h"
#include "apps/texture-studio/ImageConversion.h"
#include "apps/texture-studio/ImageViewer.h"
#include "apps/texture-studio/LinkItem.h"
#include "apps/texture-studio/NodeItem.h"
#include "apps/texture-studio/PictureRenderer.h"
#include "apps/texture-studio/StudioWindow.h"
#include "apps/texture-studio/WindowRender.h"
#include "host/Document.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Log.h"
#include "host/PluginLoader.h"
#include "host/widgets/Manager.h"
#include "host/widgets/QDragSpinner.h"
#include "host/widgets/QNodeAttributesWidget.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextureCommand.h"

namespace {

const std::string kPlugin = TEXTURE_BINARY_DIR "/bin/libTestTexturePlugin.so";
const std::string kStudio = TEXTURE_BINARY_DIR "/bin/texture-studio";

constexpr const char* kDocument = R"({
  "format": "texture-graph", "version": 1,
  "nodes": [
    {"id": "fill", "type": "Test Fill", "attributes": {"size": 6, "color": [0.2, 0.6, 1, 1]}},
    {"id": "inv", "type": "Test Invert"}
  ],
  "links": [{"from": "fill.image", "to": "inv.image"}],
  "active": "fill",
  "display": "inv"
})";

/// The real plug-in: TEXTURE_PLUGIN when set, else the one built beside the studio; empty when
/// it is not built.
std::string RealPlugin() {
    const char* fromEnvironment = std::getenv("TEXTURE_PLUGIN");
    const std::string plugin =
        fromEnvironment != nullptr ? fromEnvironment : TEXTURE_BINARY_DIR "/bin/libTexture.so";
    return std::filesystem::exists(plugin) ? plugin : std::string();
}

void EnsureApplication() {
    if (QApplication::instance() != nullptr)
        return;
    static int argc = 1;
    static char name[] = "studio_tests";
    static char* argv[] = {name, nullptr};
    // Never destroyed: at exit Qt's own globals may already be gone.
    new QApplication(argc, argv);
}

class StudioTest : public ::testing::Test {
protected:
    void SetUp() override {
        EnsureApplication();
        document = QString::fromStdString(folder.Write("graph.texture.json", kDocument));
        std::string error;
        ASSERT_TRUE(loader.Load(kPlugin, &error)) << error;
        window = std::make_unique<StudioWindow>(loader);
        editor = window->GetEditor();
    }
    void TearDown() override {
        window.reset();
        Engine::Get()->Clear();  // before the loader unloads the plug-in
    }

    QString Path(const std::string& name) const { return QString::fromStdString(folder / name); }
    QAction* MenuAction(const QString& prefix) const {
        for (QAction* menu : window->menuBar()->actions())
            for (QAction* action : menu->menu()->actions())
                if (action->text().startsWith(prefix))
                    return action;
        return nullptr;
    }
    static double Attribute(const char* node, const char* name) {
        return Engine::Get()->FindNode(node)->FindAttribute(name)->GetValue().GetNumber();
    }
    static void SetNumber(const char* node, const char* name, double value) {
        Node* target = Engine::Get()->FindNode(node);
        ASSERT_TRUE(Engine::Get()->SetAttributeValue(target, target->FindAttribute(name)->GetId(),
                                                     NodeValue::Number(value)));
    }
    NodeItem* Item(const char* node) const {
        return window->GetScene()->ItemFor(Engine::Get()->FindNode(node));
    }
    int LinkCount() const {
        int count = 0;
        for (QGraphicsItem* item : window->GetScene()->items())
            count += dynamic_cast<LinkItem*>(item) != nullptr ? 1 : 0;
        return count;
    }

    testsupport::TempFolder folder;
    QString document;
    PluginLoader loader;
    std::unique_ptr<StudioWindow> window;
    GraphEditor* editor = nullptr;
};

TEST_F(StudioTest, OpensEditsUndoesAndSaves) {
    QString error;
    ASSERT_TRUE(window->GetDocument()->Open(document, &error)) << error.toStdString();
    Engine* engine = Engine::Get();
    EXPECT_EQ(Manager::Get()->GetActiveNode(), engine->FindNode("fill"));
    EXPECT_EQ(Manager::Get()->GetDisplayNode(), engine->FindNode("inv"));
    EXPECT_EQ(LinkCount(), 1);

    // The display node's image: the inverted fill colour.
    window->EvaluateDisplay();
    const QImage& shown = window->GetViewer()->GetImage();
    ASSERT_EQ(shown.size(), QSize(6, 6));
    EXPECT_EQ(shown.pixelColor(0, 0), QColor(204, 102, 0));

    // The active node's page edits through the engine.
    auto* page = qobject_cast<QNodeAttributesWidget*>(window->GetAttributesPage());
    ASSERT_NE(page, nullptr);
    auto* size = page->GetRowWidget(1)->findChild<QDragSpinner*>();
    ASSERT_NE(size, nullptr);
    size->setValue(9.0);
    EXPECT_EQ(Attribute("fill", "size"), 9.0);
    EXPECT_TRUE(window->isWindowModified());
    window->EvaluateDisplay();
    EXPECT_EQ(window->GetViewer()->GetImage().size(), QSize(9, 9));

    QAction* undo = MenuAction("&Undo");
    ASSERT_NE(undo, nullptr);
    undo->trigger();
    EXPECT_EQ(Attribute("fill", "size"), 6.0);
    EXPECT_EQ(size->value(), 6.0);
    MenuAction("&Redo")->trigger();
    EXPECT_EQ(Attribute("fill", "size"), 9.0);

    // Rendering writes the display node's image; the file is read back the right way up.
    ASSERT_TRUE(window->RenderDisplayTo(Path("out.png"), &error)) << error.toStdString();
    const QImage rendered(Path("out.png"));
    ASSERT_EQ(rendered.size(), QSize(9, 9));
    EXPECT_EQ(rendered.pixelColor(4, 4), QColor(204, 102, 0));

    const QString saved = Path("saved.texture.json");
    ASSERT_TRUE(window->GetDocument()->Save(saved, &error)) << error.toStdString();
    EXPECT_FALSE(window->isWindowModified());
    Engine reread;
    Document check;
    std::string message;
    ASSERT_TRUE(check.Load(saved.toStdString(), reread, loader, &message)) << message;
    EXPECT_EQ(reread.FindNode("fill")->FindAttribute("size")->GetValue().GetNumber(), 9.0);
    EXPECT_EQ(reread.GetLinks().size(), 1u);
    EXPECT_EQ(check.GetActive(), "fill");
    EXPECT_EQ(check.GetDisplay(), "inv");
}

TEST_F(StudioTest, BadDocumentIsRefusedAndTheGraphStays) {
    QString error;
    ASSERT_TRUE(window->GetDocument()->Open(document, &error));
    const QString bad = QString::fromStdString(folder.Write("bad.texture.json", R"({
        "format": "texture-graph", "version": 1, "nodes": [{"id": "x", "type": "Test Fil"}]})"));
    EXPECT_FALSE(window->GetDocument()->Open(bad, &error));
    EXPECT_TRUE(error.contains("bad.texture.json")) << error.toStdString();
    EXPECT_TRUE(error.contains("Test Fil")) << error.toStdString();
    EXPECT_EQ(Engine::Get()->GetNodes().size(), 2u);
    EXPECT_EQ(window->GetDocument()->GetPath(), QFileInfo(document).absoluteFilePath());
    EXPECT_EQ(Manager::Get()->GetDisplayNode(), Engine::Get()->FindNode("inv"));
}

TEST_F(StudioTest, NodesAreAddedLinkedAndRemoved) {
    Node* first = editor->AddNode("Test Fill", {0, 0});
    Node* second = editor->AddNode("Test Fill", {0, 100});
    Node* invert = editor->AddNode("Test Invert", {200, 0});
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(Engine::Get()->GetNodeId(first), "test_fill");
    EXPECT_EQ(Engine::Get()->GetNodeId(second), "test_fill_2");
    EXPECT_EQ(Manager::Get()->GetActiveNode(), invert);
    EXPECT_EQ(editor->AddNode("No Such Type", {0, 0}), nullptr);

    QString error;
    EXPECT_FALSE(editor->ConnectPlugs(first, 0, first, 0, &error)) << "an image into a colour";
    EXPECT_FALSE(error.isEmpty());
    ASSERT_TRUE(editor->ConnectPlugs(first, 0, invert, invert->FindInplug("image"), &error))
        << error.toStdString();
    EXPECT_EQ(LinkCount(), 1);
    // Linking the same input again replaces the link.
    ASSERT_TRUE(editor->ConnectPlugs(second, 0, invert, invert->FindInplug("image"), &error));
    EXPECT_EQ(LinkCount(), 1);

    // A selected link is deleted through the Edit menu, and undo brings it back.
    for (QGraphicsItem* item : window->GetScene()->items())
        item->setSelected(dynamic_cast<LinkItem*>(item) != nullptr);
    MenuAction("&Delete")->trigger();
    EXPECT_EQ(LinkCount(), 0);
    MenuAction("&Undo")->trigger();
    EXPECT_EQ(LinkCount(), 1);

    Manager::Get()->SetDisplayNode(second);
    window->EvaluateDisplay();
    EXPECT_EQ(window->GetViewer()->GetImage().size(), QSize(4, 4));
    editor->RemoveNode(second);
    QApplication::processEvents();  // the viewer follows on the next turn of the event loop
    EXPECT_EQ(Manager::Get()->GetDisplayNode(), nullptr);
    EXPECT_EQ(Engine::Get()->FindNode("test_fill_2"), nullptr);
    EXPECT_EQ(LinkCount(), 0);
    EXPECT_TRUE(window->GetViewer()->GetImage().isNull());
    EXPECT_FALSE(window->RenderDisplayTo(Path("nothing.png"), &error));
    EXPECT_TRUE(error.contains("display node")) << error.toStdString();
}

TEST_F(StudioTest, DeletedNodesComeBackWhereTheyStoodOnUndo) {
    Node* fill = editor->AddNode("Test Fill", {40, 60});
    Node* invert = editor->AddNode("Test Invert", {300, 60});
    QString error;
    ASSERT_TRUE(editor->ConnectPlugs(fill, 0, invert, invert->FindInplug("image"), &error));

    for (QGraphicsItem* item : window->GetScene()->items())
        item->setSelected(dynamic_cast<NodeItem*>(item) != nullptr &&
                          static_cast<NodeItem*>(item)->GetNode() == fill);
    MenuAction("&Delete")->trigger();
    EXPECT_TRUE(Engine::Get()->GetNodeId(fill).empty());
    EXPECT_EQ(window->GetScene()->ItemFor(fill), nullptr);
    EXPECT_EQ(LinkCount(), 0);
    ASSERT_NE(MenuAction("&Undo Delete Node"), nullptr) << "deleting is one undo step";

    MenuAction("&Undo Delete Node")->trigger();
    EXPECT_EQ(Engine::Get()->GetNodeId(fill), "test_fill");
    ASSERT_NE(window->GetScene()->ItemFor(fill), nullptr);
    EXPECT_EQ(window->GetScene()->ItemFor(fill)->pos(), QPointF(40, 60));
    EXPECT_EQ(LinkCount(), 1);

    ASSERT_NE(MenuAction("&Redo Delete Node"), nullptr);
    MenuAction("&Redo Delete Node")->trigger();
    EXPECT_EQ(window->GetScene()->ItemFor(fill), nullptr);
    EXPECT_EQ(LinkCount(), 0);
}

TEST_F(StudioTest, DraggingBetweenPlugsLinksAndDraggingAnInputAwayUnlinks) {
    Node* fill = editor->AddNode("Test Fill", {0, 0});
    Node* invert = editor->AddNode("Test Invert", {300, 0});
    GraphScene* scene = window->GetScene();
    const QPointF out = scene->ItemFor(fill)->PortPosition(true, 0);
    const unsigned image = static_cast<unsigned>(invert->FindInplug("image"));
    const QPointF in = scene->ItemFor(invert)->PortPosition(false, image);
    const auto drag = [scene](QPointF from, QPointF to) {
        for (const auto& [type, at, buttons] :
             {std::tuple(QEvent::GraphicsSceneMousePress, from, Qt::LeftButton),
              std::tuple(QEvent::GraphicsSceneMouseMove, (from + to) / 2, Qt::LeftButton),
              std::tuple(QEvent::GraphicsSceneMouseRelease, to, Qt::NoButton)}) {
            QGraphicsSceneMouseEvent event(type);
            event.setScenePos(at);
            event.setButton(Qt::LeftButton);
            event.setButtons(buttons);
            QApplication::sendEvent(scene, &event);
        }
    };
    // Output to input, and input to output: either way the link runs from the output.
    for (const auto& [from, to] : {std::pair(out, in), std::pair(in, out)}) {
        drag(from, to);
        const std::vector<Engine::Link> links = Engine::Get()->GetLinks();
        ASSERT_EQ(links.size(), 1u);
        EXPECT_EQ(links[0].from, fill);
        EXPECT_EQ(links[0].outplug, 0u);
        EXPECT_EQ(links[0].to, invert);
        EXPECT_EQ(links[0].inplug, image);
        EXPECT_EQ(LinkCount(), 1);
        drag(in, in + QPointF(0, 400));
        EXPECT_TRUE(Engine::Get()->GetLinks().empty());
        EXPECT_EQ(LinkCount(), 0);
    }
}

TEST_F(StudioTest, ThumbnailsFollowEditsAndStaleRendersAreDropped) {
    QString error;
    ASSERT_TRUE(window->GetDocument()->Open(document, &error)) << error.toStdString();
    ASSERT_TRUE(window->WaitForThumbnails());
    EXPECT_EQ(Item("inv")->GetThumbnail().size(), QSize(6, 6));
    EXPECT_EQ(Item("inv")->GetThumbnail().pixelColor(0, 0), QColor(204, 102, 0));

    // An edit redraws the edited node and what lies downstream of it.
    SetNumber("fill", "size", 9);
    QApplication::processEvents();
    EXPECT_TRUE(Item("inv")->IsThumbnailStale());
    ASSERT_TRUE(window->WaitForThumbnails());
    for (const char* node : {"fill", "inv"})
        EXPECT_EQ(Item(node)->GetThumbnail().size(), QSize(9, 9)) << node;

    // Of two requests for a node only the newest picture arrives; a forgotten one never does.
    PictureRenderer renderer(Engine::Get(), QThread::NormalPriority);
    std::vector<QSize> delivered;
    QObject::connect(
        &renderer, &PictureRenderer::pictureReady,
        [&](Node*, const NodePicture& picture) { delivered.push_back(picture.image.size()); });
    Node* fill = Engine::Get()->FindNode("fill");
    {
        // Held, the engine keeps the first render waiting once it has started.
        std::lock_guard hold(Engine::Get()->GetMutex());
        renderer.Request(fill, QSize(), {});
        QThread::msleep(50);
        SetNumber("fill", "size", 5);
        renderer.Request(fill, QSize(), {});
        renderer.Request(Engine::Get()->FindNode("inv"), QSize(), {});
        renderer.Forget(Engine::Get()->FindNode("inv"));
    }
    while (renderer.GetPendingCount() > 0)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(delivered, std::vector<QSize>{QSize(5, 5)});
}

TEST_F(StudioTest, AddDuplicateAndPasteAreSingleUndoSteps) {
    QString error;
    ASSERT_TRUE(window->GetDocument()->Open(document, &error)) << error.toStdString();
    const auto selectAll = [this] {
        window->GetScene()->clearSelection();
        for (const char* node : {"fill", "inv"})
            Item(node)->setSelected(true);
    };
    const struct {
        const char* label;
        std::function<void()> act;
        std::size_t nodesAdded;
        int linksAdded;
    } rows[] = {
        {"Add Test Fill",
         [&] {
             editor->AddNode("Test Fill", {500, 0});
         },
         1, 0},
        {"Duplicate",
         [&] {
             selectAll();
             editor->DuplicateSelected();
         },
         2, 1},
        {"Paste",
         [&] {
             selectAll();
             editor->CopySelected();
             editor->Paste();
         },
         2, 1},
    };
    for (const auto& row : rows) {
        SetNumber("fill", "size", 7);  // copies carry the attributes
        const std::size_t nodes = Engine::Get()->GetNodes().size();
        const int links = LinkCount();
        row.act();
        EXPECT_EQ(Engine::Get()->GetNodes().size(), nodes + row.nodesAdded) << row.label;
        EXPECT_EQ(LinkCount(), links + row.linksAdded) << row.label;
        const std::vector<Node*> now = Engine::Get()->GetNodes();
        const Node* newestFill = *std::find_if(now.rbegin(), now.rend(), [](const Node* node) {
            return node->GetTypeName() == "Test Fill";
        });
        EXPECT_EQ(newestFill->FindAttribute("size")->GetValue().GetNumber(),
                  row.nodesAdded == 1 ? 4.0 : 7.0)
            << row.label;
        QAction* undo = MenuAction(QString("&Undo ") + row.label);
        ASSERT_NE(undo, nullptr) << row.label;
        undo->trigger();
        EXPECT_EQ(Engine::Get()->GetNodes().size(), nodes) << row.label;
        EXPECT_EQ(window->GetScene()->GetNodeItems().size(), nodes) << row.label;
        EXPECT_EQ(LinkCount(), links) << row.label;
        MenuAction("&Redo")->trigger();
        EXPECT_EQ(window->GetScene()->GetNodeItems().size(), nodes + row.nodesAdded) << row.label;
        EXPECT_EQ(LinkCount(), links + row.linksAdded) << row.label;
    }
}

TEST_F(StudioTest, NodesInErrorAreMarkedAndReported) {
    QString error;
    ASSERT_TRUE(window->GetDocument()->Open(document, &error)) << error.toStdString();
    Node* invert = Engine::Get()->FindNode("inv");
    editor->Disconnect(invert, static_cast<unsigned>(invert->FindInplug("image")));
    window->EvaluateDisplay();
    EXPECT_TRUE(Item("inv")->toolTip().contains("no input image"));
    EXPECT_FALSE(Item("fill")->toolTip().contains("no input image"));
    EXPECT_TRUE(window->GetStatusText().contains("'inv'"));
    EXPECT_TRUE(window->GetStatusText().contains("no input image"));
}

/// Tests with the real texture plug-in loaded; skipped when it is not built.
class RealPluginTest : public ::testing::Test {
protected:
    void SetUp() override {
        const std::string plugin = RealPlugin();
        if (plugin.empty())
            GTEST_SKIP() << "the texture plug-in is not built";
        EnsureApplication();
        std::string message;
        ASSERT_TRUE(loader.Load(plugin, &message)) << message;
    }
    void TearDown() override { Engine::Get()->Clear(); }  // before the loader unloads it

    PluginLoader loader;
};

TEST_F(RealPluginTest, TheBakeViewGetsTheMeshAndItsImageAndTexturesShowAsPlanes) {
    StudioWindow window(loader);
    QString error;
    ASSERT_TRUE(
        window.GetDocument()->Open(TEXTURE_SOURCE_DIR "/examples/bake-cube.texture.json", &error))
        << error.toStdString();
    ASSERT_TRUE(window.EvaluateDisplay());
    const BakeView* bake = window.GetBakeView();
    EXPECT_EQ(bake->GetModel().GetVertexCount(), 36) << "the cube's 12 triangles";
    const auto [lowest, highest] =
        std::minmax_element(bake->GetModel().uvs.begin(), bake->GetModel().uvs.end());
    EXPECT_TRUE(*lowest >= 0.0f && *highest <= 1.0f && *lowest < *highest);
    EXPECT_EQ(bake->GetTexture().size(), QSize(512, 384));
    EXPECT_EQ(bake->GetMessage().contains("OpenGL"), !BakeView::IsOpenGlAvailable());

    Manager::Get()->SetDisplayNode(Engine::Get()->FindNode("swirl"));
    ASSERT_TRUE(window.EvaluateDisplay());
    EXPECT_EQ(window.GetViewer()->GetImage().size(), QSize(512, 512));
    EXPECT_TRUE(window.GetStatusText().contains("is a texture"));
    EXPECT_FALSE(bake->isVisibleTo(&window));
    // View > Tileable Textures makes the plane repeat: another picture, and the status says so.
    const QImage plain = window.GetViewer()->GetImage();
    window.findChild<QAction*>("m_tileable_action")->setChecked(true);
    ASSERT_TRUE(window.EvaluateDisplay());
    EXPECT_TRUE(window.GetStatusText().contains("tileable"))
        << window.GetStatusText().toStdString();
    EXPECT_NE(window.GetViewer()->GetImage(), plain);
}

TEST_F(RealPluginTest, ARenderHoldingTheEngineStopsForTheGuiThreadAndStartsAgain) {
    Engine* engine = Engine::Get();
    std::string message;
    ASSERT_TRUE(Document().Load(TEXTURE_SOURCE_DIR "/examples/default.texture.json", *engine,
                                loader, &message))
        << message;
    Node* out = engine->FindNode("out");
    ASSERT_TRUE(engine->SetAttributeValue(out, 0, NodeValue::FromFrame(Frame{0, 0, 1600, 1600})));
    WindowRender::HookInto(*engine);
    std::vector<std::string> log;
    Log::SetSink([&](Log::Level, const std::string& line) { log.push_back(line); });
    {
        PictureRenderer renderer(engine, QThread::NormalPriority);
        bool started = false;
        std::optional<NodePicture> shown;
        QObject::connect(&renderer, &PictureRenderer::progressed, [&] { started = true; });
        QObject::connect(&renderer, &PictureRenderer::pictureReady,
                         [&](Node*, const NodePicture& picture) { shown = picture; });
        renderer.Request(out, QSize(), {});
        while (!started)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        // The GUI thread needs the engine while the render holds it.
        EXPECT_EQ(engine->GetNodes().size(), 13u);
        while (!shown)
            QApplication::processEvents(QEventLoop::AllEvents, 5);
        EXPECT_EQ(shown->imageSize, QSize(1600, 1600)) << "started again and finished";
    }
    Log::SetSink(nullptr);
    const auto count = [&](const char* text) {
        return std::count_if(log.begin(), log.end(), [&](const std::string& line) {
            return line.find(text) != std::string::npos;
        });
    };
    EXPECT_EQ(count("Render stopped after"), 1);
    EXPECT_EQ(count("Render image:"), 1);

    // A render to a file that is stopped writes nothing and says so.
    const testsupport::TempFolder folder;
    const std::string path = folder / "stopped.png";
    engine->MarkDirty(out);
    FileRenderJob job(*engine, *out, path);
    job.Stop();
    while (!job.IsDone())
        QThread::msleep(5);
    EXPECT_FALSE(job.Succeeded(&message));
    EXPECT_NE(message.find("stopped"), std::string::npos) << message;
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(ImageConversionTest, RowsFlipAndChannelsClamp) {
    auto* image = new Image(2, 2);
    image->AddRef();
    float* pixels = image->GetArray();
    const float bottomLeft[4] = {1.5f, -0.5f, 0.5f, 1.0f};
    const float topRight[4] = {std::nanf(""), 0.2f, 1.0f, 0.0f};
    std::copy(bottomLeft, bottomLeft + 4, pixels);   // row 0, column 0
    std::copy(topRight, topRight + 4, pixels + 12);  // row 1, column 1
    const QImage picture = ToQImage(*image);
    image->Release();
    ASSERT_EQ(picture.size(), QSize(2, 2));
    // The host's row 0 is the bottom row, the last line of the picture.
    EXPECT_EQ(picture.pixel(0, 1), qRgba(255, 0, 128, 255));
    // Opacity stays unassociated: a transparent pixel keeps its colour.
    EXPECT_EQ(picture.pixel(1, 0), qRgba(0, 51, 255, 0));
    EXPECT_EQ(picture.pixel(1, 1), qRgba(0, 0, 0, 0));
}

/// The program itself, run with the test plug-in unless a row names another.
class StudioProgramTest : public ::testing::Test {
protected:
    void SetUp() override { folder.Write("graph.texture.json", kDocument); }
    testsupport::CommandResult Run(std::vector<std::string> arguments,
                                   const std::string& plugin = kPlugin) const {
        arguments.insert(arguments.begin(), {"--plugin", plugin});
        return testsupport::RunProgram(kStudio, arguments);
    }
    std::string Path(const char* name) const { return folder / name; }

    testsupport::TempFolder folder;
};

TEST_F(StudioProgramTest, ScreenshotModeWritesTheWindowWithoutADisplayAndFailsClearly) {
    // The screenshot mode picks the offscreen platform itself: no display is needed.
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        unsetenv(name);
    const auto help = testsupport::RunProgram(kStudio, {"--help"});
    EXPECT_EQ(help.exitCode, 0) << help.err;
    EXPECT_NE(help.out.find("--screenshot"), std::string::npos);

    const auto shot = Run({Path("graph.texture.json"), "--screenshot", Path("shot.png")});
    EXPECT_EQ(shot.exitCode, 0) << shot.err;
    const QImage image(QString::fromStdString(Path("shot.png")));
    EXPECT_GT(image.width(), 100);
    EXPECT_GT(image.height(), 100);

    struct Row {
        std::vector<std::string> arguments;
        int exitCode;
        const char* says;
    };
    const Row rows[] = {
        // The test plug-in has no preview action: asked for one, the program says so.
        {{Path("graph.texture.json"), "--screenshot", Path("again.png"), "--preview"},
         1,
         "Texture Preview"},
        // A missing document or a bad option is a bad-usage failure and writes nothing.
        {{"--threads", "0", Path("graph.texture.json"), "--screenshot", Path("none.png")},
         2,
         "--threads"},
        {{Path("missing.texture.json"), "--screenshot", Path("none.png")},
         2,
         "missing.texture.json"},
    };
    for (const Row& row : rows) {
        const auto result = Run(row.arguments);
        EXPECT_EQ(result.exitCode, row.exitCode) << row.says;
        EXPECT_NE(result.err.find(row.says), std::string::npos) << result.err;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "none.png"));
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

TEST_F(StudioProgramTest, PreviewModeGrabsThePluginsPreviewDialog) {
    const std::string plugin = RealPlugin();
    if (plugin.empty())
        GTEST_SKIP() << "the texture plug-in is not built";
    folder.Write("perlin.texture.json", R"({
      "format": "texture-graph", "version": 1,
      "nodes": [{"id": "noise", "type": "Perlin Texture"},
                {"id": "out", "type": "Render 2D Texture",
                 "attributes": {"frame": [0, 0, 64, 64]}}],
      "links": [{"from": "noise.texture", "to": "out.texture"}],
      "active": "noise", "display": "out"})");
    const auto result =
        Run({Path("perlin.texture.json"), "--screenshot", Path("p.png"), "--preview"}, plugin);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_FALSE(QImage(QString::fromStdString(Path("p.png"))).isNull());
    const QImage preview(QString::fromStdString(Path("p-preview.png")));
    EXPECT_GT(preview.width(), 100);
}

}  // namespace
