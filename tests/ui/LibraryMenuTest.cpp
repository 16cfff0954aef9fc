// Covers: library names, menu entries, one preview dialog, Close, about box, attributes pages.

#include <dlfcn.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include "host/LibraryInterface.h"
#include "host/Node.h"
#include "host/NodeFactory.h"
#include "host/NodeInterface.h"
#include "host/PluginLoader.h"
#include "host/widgets/QDragSpinner.h"
#include "host/widgets/QGradientEditor.h"
#include "host/widgets/QNodeAttributesWidget.h"

namespace {

const char* const kPluginPath = TEXTURE_BINARY_DIR "/bin/libTexture.so";

/// The plug-in, loaded once and never unloaded (its widgets and meta-objects must outlive the
/// tests).
PluginLoader& Plugin() {
    static PluginLoader* const loader = [] {
        auto* created = new PluginLoader();
        std::string error;
        EXPECT_TRUE(created->Load(kPluginPath, &error)) << error;
        return created;
    }();
    return *loader;
}

/// A fresh library object, as the export hands one out on every call.
std::unique_ptr<LibraryInterface> NewLibrary() {
    void* handle = dlopen(kPluginPath, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        return nullptr;
    auto get = reinterpret_cast<GetLibraryInterfaceFunction>(dlsym(handle, "GetLibraryInterface"));
    return std::unique_ptr<LibraryInterface>(get != nullptr ? get() : nullptr);
}

int OpenPreviewDialogs() {
    int count = 0;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (std::string(widget->metaObject()->className()) == "QTextureDialog" &&
            widget->isVisible())
            ++count;
    return count;
}

QStringList ActionTexts(const QWidget& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions())
        texts << action->text();
    return texts;
}

TEST(LibraryMenu, NamedEntriesInOrderThePreviewOpensOneDialogUntilCloseAndAboutIsOneOkBox) {
    std::unique_ptr<LibraryInterface> library = NewLibrary();
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->GetLibraryName(), "Texture");
    EXPECT_EQ(library->GetDisplayName(), "Texture");
    library->Close();  // without a dialog: changes nothing
    QMenu menu;
    library->AddMenuActions(&menu);
    EXPECT_EQ(ActionTexts(menu), (QStringList{"Texture Preview", "About Texture Module"}));
    QAction* preview = menu.actions().value(0);
    ASSERT_NE(preview, nullptr);

    EXPECT_EQ(OpenPreviewDialogs(), 0);
    preview->trigger();
    preview->trigger();
    EXPECT_EQ(OpenPreviewDialogs(), 1);
    library->Close();
    EXPECT_EQ(OpenPreviewDialogs(), 0);
    preview->trigger();
    EXPECT_EQ(OpenPreviewDialogs(), 1);

    // The about box blocks in its own event loop: inspect and dismiss it from there.
    QString about;
    QTimer::singleShot(0, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            about = QString("%1|%2|%3")
                        .arg(box->windowTitle())
                        .arg(box->buttons().size())
                        .arg(box->standardButtons() == QMessageBox::Ok);
            EXPECT_TRUE(box->text().contains("noise engine"));
            box->accept();
        }
    });
    menu.actions().value(1)->trigger();
    EXPECT_EQ(about, "About Texture Module|1|1");

    library->RemoveMenuActions(&menu);
    EXPECT_TRUE(menu.actions().isEmpty());
    library.reset();  // the library object takes its dialog with it
    EXPECT_EQ(OpenPreviewDialogs(), 0);
}

std::unique_ptr<Node> NewNode(NodeInterface* type) {
    return std::unique_ptr<Node>(type->GetFactory()->CreateNode());
}

bool IsLogarithmic(const QNodeAttributesWidget& page, unsigned attributeId) {
    QWidget* row = page.GetRowWidget(attributeId);
    auto* spinner = row != nullptr ? row->findChild<QDragSpinner*>() : nullptr;
    return spinner != nullptr && spinner->isLogarithmic();
}

TEST(AttributesPage, RowsShowTheirAttributesHintsAndDescriptions) {
    // The presentation users know: these rows drag logarithmically, these carry a label.
    const std::set<std::pair<std::string, unsigned>> frequencies = {{"Perlin Texture", 0},
                                                                    {"Billow Texture", 0},
                                                                    {"Ridged Multi Texture", 0},
                                                                    {"Voronoi Texture", 0},
                                                                    {"Texture Turbulence", 2}};
    const std::map<std::pair<std::string, unsigned>, QString> labels = {
        {{"Wave Texture", 6}, "Strength"}, {{"Wave Texture", 7}, "Seed"}};
    for (NodeInterface* type : Plugin().GetNodeInterfaces()) {
        if (type->GetTypeName() == "Texture Gradient" || type->GetLibraryName() != "Texture")
            continue;
        std::unique_ptr<Node> node = NewNode(type);
        std::unique_ptr<QWidget> widget(type->CreateAttributesWidget(node.get(), nullptr, 0));
        auto* page = qobject_cast<QNodeAttributesWidget*>(widget.get());
        ASSERT_NE(page, nullptr) << type->GetTypeName();
        for (const auto& attribute : node->GetAttributes()) {
            const std::pair<std::string, unsigned> key{type->GetTypeName(), attribute->GetId()};
            SCOPED_TRACE(key.first + " " + attribute->GetName());
            EXPECT_EQ(IsLogarithmic(*page, key.second), frequencies.contains(key));
            if (labels.contains(key)) {
                EXPECT_EQ(page->GetRowLabel(key.second), labels.at(key));
            }
            EXPECT_FALSE(attribute->GetDescription().empty());
            EXPECT_EQ(page->GetRowWidget(key.second)->toolTip().toStdString(),
                      attribute->GetDescription());
        }
    }
}

TEST(AttributesPage, GradientTypeGetsTheGradientEditor) {
    NodeInterface* type = Plugin().FindType("Texture Gradient");
    ASSERT_NE(type, nullptr);
    std::unique_ptr<Node> node = NewNode(type);
    std::unique_ptr<QWidget> page(type->CreateAttributesWidget(node.get(), nullptr, 0));
    ASSERT_NE(page, nullptr);
    EXPECT_STREQ(page->metaObject()->className(), "QTextureGradientWidget");
    auto* editor = page->findChild<QGradientEditor*>();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(editor->isEnabled());
    EXPECT_EQ(editor->stopCount(), 2);  // a new node's black-to-white gradient

    // Another type's node handed to the gradient interface is not a gradient node.
    std::unique_ptr<Node> perlin = NewNode(Plugin().FindType("Perlin Texture"));
    std::unique_ptr<QWidget> wrong(type->CreateAttributesWidget(perlin.get(), nullptr, 0));
    ASSERT_NE(wrong, nullptr);
    EXPECT_FALSE(wrong->findChild<QGradientEditor*>()->isEnabled());
}

}  // namespace
