// The studio's responsiveness while an artist drags a frequency spinner on the default example:
// the longest the GUI thread went without running its event loop, as thumbnails and the main
// view follow every step of the drag. Runs offscreen; the plug-in is libTexture.so next to the
// program.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <cstdlib>
#include <string>

#include "apps/texture-studio/DocumentController.h"
#include "apps/texture-studio/StudioWindow.h"
#include "host/Engine.h"
#include "host/PluginLoader.h"
#include "host/widgets/Manager.h"

namespace {

QApplication& Application() {
    static int argc = 1;
    static char name[] = "bench_studio_drag";
    static char* argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static auto* application = new QApplication(argc, argv);
    return *application;
}

void BM_FrequencyDrag(benchmark::State& state) {
    Application();
    PluginLoader loader;
    std::string error;
    const std::string plugin =
        QCoreApplication::applicationDirPath().toStdString() + "/libTexture.so";
    if (!loader.Load(plugin, &error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    double worstStall = 0.0;
    double worstAfterLastStep = 0.0;
    {
        StudioWindow window(loader);
        QString message;
        if (!window.GetDocument()->Open(TEXTURE_SOURCE_DIR "/examples/default.texture.json",
                                        &message)) {
            state.SkipWithError(message.toUtf8().constData());
            return;
        }
        window.show();
        window.EvaluateDisplay();
        window.WaitForThumbnails();
        Manager::Get()->SetActiveNode(Engine::Get()->FindNode("ridges"));
        QApplication::processEvents();
        auto* spinner = window.GetAttributesPage()
                            ->findChild<QWidget*>("m_frequency_row")
                            ->findChild<QDoubleSpinBox*>();

        for (auto _ : state) {
            // A heartbeat every 2 ms; the widest gap between beats is the worst stall.
            QElapsedTimer clock;
            clock.start();
            qint64 lastBeat = 0;
            QTimer heartbeat;
            QObject::connect(&heartbeat, &QTimer::timeout, [&] {
                const qint64 now = clock.elapsed();
                worstStall = std::max(worstStall, static_cast<double>(now - lastBeat));
                lastBeat = now;
            });
            heartbeat.start(2);
            // One step per frame for two seconds, as a drag of the mouse produces them.
            int step = 0;
            QTimer drag;
            QObject::connect(&drag, &QTimer::timeout, [&] {
                spinner->setValue(1.6 * (1.0 + 0.01 * (step % 60)));
                ++step;
            });
            drag.start(16);
            while (clock.elapsed() < 2000)
                QApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
            drag.stop();
            window.EvaluateDisplay();
            window.WaitForThumbnails();
            worstAfterLastStep = static_cast<double>(clock.elapsed() - 2000);
            heartbeat.stop();
        }
    }
    Engine::Get()->Clear();
    state.counters["worst_stall_ms"] = worstStall;
    state.counters["settle_after_drag_ms"] = worstAfterLastStep;
}

}  // namespace

BENCHMARK(BM_FrequencyDrag)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
