#pragma once

// Small value types shared by the host and its plug-ins.

#include <compare>
#include <cstdint>
#include <functional>

/// Identifies a node type: (maker, family, code). Texture's node types are (10, 304, code).
struct NodeType {
    std::uint32_t maker = 0;
    std::uint32_t family = 0;
    std::uint32_t code = 0;

    friend auto operator<=>(const NodeType&, const NodeType&) = default;
};

/// A colour with opacity, each channel a double (normally 0...1).
struct Rgbo {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double opacity = 1.0;

    friend bool operator==(const Rgbo&, const Rgbo&) = default;
};

/// A pair of doubles: a 2D position, a size or a range (value at 0, value at 1).
struct Point {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const Point&, const Point&) = default;
};

/// A rectangle of the canvas: position and size in pixels.
struct Frame {
    double positionX = 0.0;
    double positionY = 0.0;
    double sizeX = 0.0;
    double sizeY = 0.0;

    friend bool operator==(const Frame&, const Frame&) = default;
};

/// A reference to a mesh of the document's scene: model index (-1 for none), sub-mesh index
/// (-1 for every sub-mesh of the model) and a flag (see docs/uv-renderer.md for its meaning).
struct MeshReference {
    int model = -1;
    int submesh = -1;
    bool flag = false;

    friend bool operator==(const MeshReference&, const MeshReference&) = default;
};

/// A handler bound to an object, called with two unsigned integers (an event code and a
/// parameter). Two delegates are equal when they are bound to the same object: an object
/// registers at most one handler with each event source.
template <class A, class B>
class Delegate2 {
public:
    Delegate2() = default;

    template <class Object>
    Delegate2(Object* object, void (Object::*method)(A, B))
        : mObject(object), mCall([object, method](A a, B b) { (object->*method)(a, b); }) {}

    void operator()(A a, B b) const {
        if (mCall) mCall(a, b);
    }
    const void* GetObject() const { return mObject; }
    explicit operator bool() const { return static_cast<bool>(mCall); }
    friend bool operator==(const Delegate2& l, const Delegate2& r) { return l.mObject == r.mObject; }

private:
    const void* mObject = nullptr;
    std::function<void(A, B)> mCall;
};

/// Degree-to-radian factors of the host's maths types.
template <class Real>
struct Math {
    static constexpr Real DEG_TO_RAD = static_cast<Real>(3.14159265358979323846 / 180.0);
};
using Mathf = Math<float>;
using Mathd = Math<double>;
inline constexpr double DEG_TO_RAD = Mathd::DEG_TO_RAD;
