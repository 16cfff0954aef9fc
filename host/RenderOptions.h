#pragma once

#include <functional>

class Image;

/// Options a host sets for every render a plug-in's render nodes make in its engine. This is
/// an extension of the SDK: a plug-in written for another host never reads it, and its
/// defaults give the behaviour such a host expects.
struct RenderOptions {
    /// A pixel rectangle [x0, x1) x [y0, y1) of an image, row 0 at the top.
    struct Window {
        int x0 = 0;
        int y0 = 0;
        int x1 = 0;
        int y1 = 0;
        bool IsEmpty() const { return x1 <= x0 || y1 <= y0; }
        int Width() const { return x1 - x0; }
        int Height() const { return y1 - y0; }
        bool operator==(const Window&) const = default;
    };

    /// Options that differ from the defaults only in the thread count.
    static RenderOptions WithThreads(unsigned count) {
        RenderOptions options;
        options.threads = count;
        return options;
    }

    /// Worker threads of a render; 0 means one per processor.
    unsigned threads = 0;
    /// The size in pixels a Render 2D node renders its texture rectangle at instead of its
    /// frame's size (its start values and range are kept); 0 x 0 keeps the frame's size. Only
    /// the host's own limit (Image::GetMaxSizeX/Y) bounds it, not the frame's.
    int width = 0;
    int height = 0;
    /// A Render 2D node makes its texture repeat with its texture rectangle as the period
    /// (start values and range), so that the image tiles with no seam and no blending. Each
    /// generator fits a whole number of cells in the rectangle (its frequency snapped); a
    /// graph that cannot repeat makes the render fail with a message naming the node. Render
    /// 3D nodes have no rectangle and ignore it.
    bool tileable = false;
    /// The part of that image a Render 2D node renders; its image output is then the window
    /// alone, every pixel equal to the same pixel of the whole image. Empty: the whole image.
    Window window;
    /// When set, a Render 2D node tells of each row of its image as soon as the row is final,
    /// on the thread that evaluates the node: the image and the row, counted from its top.
    /// Rows come in any order, mostly top first; a host writes them to the file while later
    /// rows render. Nodes that do not report leave the host to take the finished image whole.
    std::function<void(const Image& image, int rowFromTop)> rowFinished;
    /// Told how far a render node's image has come: `done` of `total` lines (of the window,
    /// when there is one), rising to done == total at the end. Render nodes call it as bands of
    /// lines finish, a few hundred times per image at most and never per pixel, on the thread
    /// that evaluates the node; a host that evaluates several nodes at once is called from each
    /// of those threads, so the callback must be thread-safe. Empty: nobody listens.
    std::function<void(int done, int total)> progress;
    /// When set, asked on the evaluating thread between nodes and, by render nodes, between
    /// bands of lines (never per pixel): true stops the evaluation. A render node then stops
    /// within a band, publishes no image and sets no error; the engine leaves that node, and
    /// every node not yet evaluated, dirty, so that they evaluate again the next time they are
    /// needed (Engine::EvaluateNode then returns false with the node in no error state). A
    /// window host answers true while its GUI thread waits for the engine, so a long render
    /// never freezes it. Must be cheap and thread-safe. Empty: nothing stops an evaluation.
    std::function<bool()> cancelled;

    /// Whether `other` asks for the same images: every option but the hooks, which a host
    /// sets per render and which change no pixel.
    bool SameImagesAs(const RenderOptions& other) const {
        return threads == other.threads && width == other.width && height == other.height &&
               tileable == other.tileable && window == other.window;
    }
};
