#pragma once

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/GradientNode.h"

class Attribute;
class NodeValue;

/// Attribute values as they stand in graph documents and node listings, and back: a number or
/// true/false as itself, a choice as its item's text (an index is read too), a colour as
/// [r, g, b, opacity], a point as [x, y], a frame as [position_x, position_y, size_x, size_y],
/// a mesh as [model, submesh, flag], text as a string; a gradient as
/// {"interpolation": "linear", "stops": [[position, [r, g, b, opacity]], ...]}.
class ValueCodec {
public:
    /// A value that does not fit; the message says what was expected and what came, for
    /// example "expected a number, got a string".
    struct Error : std::runtime_error {
        using std::runtime_error::runtime_error;
    };

    static nlohmann::json Encode(const Attribute& attribute, const NodeValue& value);
    /// A value of `attribute`'s kind (not yet checked against its range); throws Error.
    static NodeValue Decode(const Attribute& attribute, const nlohmann::json& value);

    static nlohmann::json EncodeGradient(const VertexGradient& gradient);
    /// Throws Error.
    static VertexGradient DecodeGradient(const nlohmann::json& value);
};
