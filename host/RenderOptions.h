#pragma once

/// Options a host sets for every render a plug-in's render nodes make in its engine. This is
/// an extension of the SDK: a plug-in written for another host never reads it, and its
/// defaults give the behaviour such a host expects.
struct RenderOptions {
    /// Worker threads of a render; 0 means one per processor.
    unsigned threads = 0;
};
