// texture-studio: the desktop host. Loads the plug-in like the texture command, edits graph
// documents, and can grab its window (and the plug-in's preview) to PNG files for scripts.

#include <QApplication>
#include <QCommandLineParser>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QThread>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "apps/texture-studio/DocumentController.h"
#include "apps/texture-studio/StudioWindow.h"
#include "host/Engine.h"
#include "host/PluginLoader.h"

namespace {

/// Runs the event loop for a while so that queued work (evaluations, a preview's render
/// thread delivering its image) reaches the screen before a grab.
void Settle(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    do {
        QApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(10);
    } while (clock.elapsed() < milliseconds);
}

/// "shot.png" gives "shot-preview.png" beside it.
QString PreviewPath(const QString& screenshot) {
    const QFileInfo info(screenshot);
    return info.dir().filePath(info.completeBaseName() + "-preview." +
                               (info.suffix().isEmpty() ? QString("png") : info.suffix()));
}

int Screenshots(StudioWindow& window, const QString& path, bool preview) {
    window.show();
    window.EvaluateDisplay();
    window.WaitForThumbnails();
    Settle(300);
    // The docks settle their sizes only once shown: fit the graph to the final view.
    window.FitGraph();
    Settle(50);
    if (!window.grab().save(path, "PNG")) {
        std::fprintf(stderr, "error: cannot write the screenshot '%s'\n", qPrintable(path));
        return 1;
    }
    if (!preview)
        return 0;
    QAction* action = nullptr;
    for (QAction* candidate : window.GetTextureMenu()->actions())
        if (candidate->text() == "Texture Preview")
            action = candidate;
    if (action == nullptr) {
        std::fprintf(stderr, "error: the plug-in offers no \"Texture Preview\" action\n");
        return 1;
    }
    action->trigger();
    Settle(1500);
    QWidget* dialog = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget != &window && widget->isVisible() && qobject_cast<QDialog*>(widget) != nullptr)
            dialog = widget;
    if (dialog == nullptr) {
        std::fprintf(stderr, "error: \"Texture Preview\" opened no dialog\n");
        return 1;
    }
    const QString previewPath = PreviewPath(path);
    if (!dialog->grab().save(previewPath, "PNG")) {
        std::fprintf(stderr, "error: cannot write the preview screenshot '%s'\n",
                     qPrintable(previewPath));
        return 1;
    }
    return 0;
}

/// Qt's own option "-plugin" would take our "--plugin": it is kept away from Qt.
std::vector<char*> WithoutPluginOption(int argc, char** argv) {
    std::vector<char*> kept;
    for (int i = 0; i < argc; ++i) {
        const std::string argument = argv[i];
        if (i > 0 && (argument == "--plugin" || argument == "-plugin")) {
            ++i;
            continue;
        }
        if (i > 0 && (argument.rfind("--plugin=", 0) == 0 || argument.rfind("-plugin=", 0) == 0))
            continue;
        kept.push_back(argv[i]);
    }
    kept.push_back(nullptr);
    return kept;
}

/// Asking for help, the version or a screenshot needs no screen: without a display (and no
/// platform chosen by the user) such runs use the offscreen platform instead of failing.
void UseOffscreenWhenHeadless(int argc, char** argv) {
    const bool headless = std::getenv("DISPLAY") == nullptr &&
                          std::getenv("WAYLAND_DISPLAY") == nullptr &&
                          std::getenv("QT_QPA_PLATFORM") == nullptr;
    if (!headless)
        return;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--help" || argument == "-h" || argument == "--version" ||
            argument == "-v" || argument.rfind("--screenshot", 0) == 0) {
            setenv("QT_QPA_PLATFORM", "offscreen", 1);
            return;
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    UseOffscreenWhenHeadless(argc, argv);
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    std::vector<char*> qtArguments = WithoutPluginOption(argc, argv);
    int qtArgumentCount = static_cast<int>(qtArguments.size()) - 1;
    QApplication application(qtArgumentCount, qtArguments.data());
    QApplication::setApplicationName("texture-studio");
    QApplication::setApplicationVersion("0.1.0");

    QCommandLineParser parser;
    parser.setApplicationDescription(
        "texture-studio: edits procedural-texture graph documents.\n"
        "The plug-in is found through --plugin, else TEXTURE_PLUGIN, else libTexture.so next to "
        "texture-studio.");
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument("document", "A graph document (.texture.json) to open.",
                                 "[document]");
    const QCommandLineOption plugin("plugin", "The plug-in library to load.", "path");
    const QCommandLineOption screenshot(
        "screenshot",
        "Open the document, evaluate its display node, save the window to this PNG and exit "
        "(without a display it renders offscreen).",
        "png");
    const QCommandLineOption preview(
        "preview",
        "With --screenshot: also open the plug-in's \"Texture Preview\" and save it "
        "to NAME-preview.png beside the screenshot.");
    const QCommandLineOption threads("threads", "Processors to use (default: all).", "count");
    parser.addOptions({plugin, screenshot, preview, threads});
    parser.process(arguments);

    const QStringList documents = parser.positionalArguments();
    const bool batch = parser.isSet(screenshot);
    if (documents.size() > 1 || (parser.isSet(preview) && !batch)) {
        std::fprintf(
            stderr, "error: %s\n\n%s",
            documents.size() > 1 ? "give at most one document" : "--preview needs --screenshot",
            qPrintable(parser.helpText()));
        return 2;
    }
    bool threadsValid = true;
    const int threadCount = parser.isSet(threads) ? parser.value(threads).toInt(&threadsValid) : 0;
    if (parser.isSet(threads) && (!threadsValid || threadCount < 1)) {
        std::fprintf(stderr, "error: --threads: Value %s is not a positive number\n",
                     qPrintable(parser.value(threads)));
        return 2;
    }
    // Before the plug-in loads, so that no render can start with other options.
    Engine::Get()->SetRenderOptions(RenderOptions::WithThreads(static_cast<unsigned>(threadCount)));

    int status = 0;
    {
        PluginLoader loader;
        std::string error;
        if (!loader.Load(parser.value(plugin).toStdString(), &error)) {
            // The host's own node types still work without the plug-in.
            std::fprintf(stderr, "warning: %s\n", error.c_str());
            if (!batch)
                QMessageBox::warning(nullptr, "texture-studio", QString::fromStdString(error));
        }
        {
            StudioWindow window(loader);
            QString message;
            const bool opened =
                documents.isEmpty() || window.GetDocument()->Open(documents[0], &message);
            if (!opened) {
                std::fprintf(stderr, "error: %s\n", qPrintable(message));
                if (!batch)
                    QMessageBox::warning(&window, "texture-studio", message);
            }
            if (batch && !opened) {
                status = 2;
            } else if (batch) {
                status = Screenshots(window, parser.value(screenshot), parser.isSet(preview));
            } else {
                window.show();
                status = QApplication::exec();
            }
        }
        // Nodes of the plug-in must be gone before the loader unloads it.
        Engine::Get()->Clear();
    }
    return status;
}
