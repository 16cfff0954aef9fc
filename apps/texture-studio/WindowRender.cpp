#include "apps/texture-studio/WindowRender.h"

#include "host/Engine.h"

namespace {

thread_local WindowRender* tInScope = nullptr;

}  // namespace

void WindowRender::HookInto(Engine& engine) {
    engine.GetMutex().MarkCallingThreadUrgent();
    RenderOptions options = engine.GetRenderOptions();
    options.cancelled = [] { return tInScope != nullptr && tInScope->StopWanted(); };
    options.progress = [](int done, int total) {
        if (tInScope != nullptr)
            tInScope->Progressed(done, total);
    };
    engine.SetRenderOptions(options);
}

WindowRender::Scope::Scope(WindowRender& render) : mPrevious(tInScope) {
    tInScope = &render;
}

WindowRender::Scope::~Scope() {
    tInScope = mPrevious;
}
