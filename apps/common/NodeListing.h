#pragma once

#include <nlohmann/json.hpp>

class NodeInterface;

/// One node type of the catalogue as `texture nodes --json` lists it and the Python module's
/// `nodes()` returns it: "index" (`index`), "type", "class", "code", "type_id", "category",
/// "library", "icon", "small_icon", "inputs" and "outputs" ({"id", "name", "plug_type"}) and
/// "attributes" ({"id", "name", "kind", "default", "description", and "min", "max", "step",
/// "decimals" for numbers, points and frames, "items" for choices, "hint" {"label",
/// "frequency"} when the editor shows it specially}); inputs and outputs also say what they
/// "carries" by name; nodes with a colour ramp add "gradient" {"default", "description"}.
nlohmann::json DescribeNodeType(NodeInterface& type, unsigned index);
