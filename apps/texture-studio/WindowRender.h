#pragma once

class Engine;

/// A render the studio's window started on a worker thread, as the engine's render hooks see
/// it: the engine asks it whether to stop and tells it how far the render has come. The hooks
/// reach the WindowRender in scope on the thread that evaluates; renders on other threads
/// (the preview dialog's, say) run as if the hooks were not there.
class WindowRender {
public:
    /// Sets the engine's render options' `cancelled` and `progress` to ask the WindowRender in
    /// scope, and marks the calling thread, the GUI thread, urgent in the engine's lock (so that
    /// a render can tell it waits). Call it on the GUI thread before any render starts.
    static void HookInto(Engine& engine);

    /// Makes `render` the one the hooks reach on this thread while the scope lasts.
    class Scope {
    public:
        explicit Scope(WindowRender& render);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        WindowRender* mPrevious;
    };

protected:
    ~WindowRender() = default;

private:
    /// Asked between bands of the render's work, on its thread.
    virtual bool StopWanted() = 0;
    /// `done` of `total` lines of a render node on the way, on the render's thread.
    virtual void Progressed(int done, int total) = 0;
};
