#pragma once

// Reading a node's inputs during Evaluate. Every texture node reads its attribute values and
// texture inputs the same way, with the same conversions; these helpers are that one way.

#include <cstdint>

#include "host/Node.h"
#include "noisepp/core/TextureColor.h"

namespace noisepp {
class Module;
}

namespace texture {

/// Rounds half down: floor(x), unless x - floor(x) > 0.5, then ceil(x). A fraction of
/// exactly 0.5 goes down, deliberately (2.5 gives 2, -2.5 gives -3).
double roundHalfDown(double x);

/// The value on the inplug of attribute `attributeId`, or null when the inplug has none.
const Node::Value* attributeValue(const Node& node, Node::Value** inputs, unsigned attributeId);

/// A number attribute (0.0 when absent).
double readNumber(const Node& node, Node::Value** inputs, unsigned attributeId);
/// A number attribute passed through a 32-bit float, as every module parameter is.
double readNumberAsFloat(const Node& node, Node::Value** inputs, unsigned attributeId);
/// A seed: the number rounded half down and converted to a 32-bit integer (0 when absent).
std::int32_t readSeed(const Node& node, Node::Value** inputs, unsigned attributeId);
/// A bool attribute (false when absent).
bool readBool(const Node& node, Node::Value** inputs, unsigned attributeId);
/// The index of a choice attribute's current text in its item list (the index of the empty
/// string, -1, when absent).
int readChoice(const Node& node, Node::Value** inputs, unsigned attributeId);
/// A colour attribute, each channel narrowed to a 32-bit float (all zero when absent).
noisepp::TextureColor readColor(const Node& node, Node::Value** inputs, unsigned attributeId);
/// Point, frame and mesh attributes (all zero, resp. (-1, -1, false), when absent).
Point readPoint(const Node& node, Node::Value** inputs, unsigned attributeId);
Frame readFrame(const Node& node, Node::Value** inputs, unsigned attributeId);
MeshReference readMesh(const Node& node, Node::Value** inputs, unsigned attributeId);

/// The value on regular input `regularInputId`, or null when the inplug has none.
const Node::Value* regularInputValue(const Node& node, Node::Value** inputs,
                                     unsigned regularInputId);

/// The module on a texture input, held for the duration of an evaluation: the handle is
/// retained on construction and released on destruction. module() is null when the input
/// carries no texture (no value, another plug type, or a node that built nothing).
class TextureInput {
public:
    TextureInput(const Node& node, Node::Value** inputs, unsigned regularInputId);
    ~TextureInput();
    TextureInput(const TextureInput&) = delete;
    TextureInput& operator=(const TextureInput&) = delete;

    noisepp::Module* module() const;

private:
    TextureHandle* mHandle = nullptr;
};

/// The image on an image input (type 8), or null.
Image* readImage(const Node& node, Node::Value** inputs, unsigned regularInputId);

}  // namespace texture
