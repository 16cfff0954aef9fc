// Every JSON value in a document read as each kind of attribute value, and as a gradient: a
// value is either refused with the codec's error or decoded, and what it encodes to must read
// back to the same encoding.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/Attribute.h"
#include "host/HostTypes.h"
#include "host/JsonReader.h"
#include "host/NodeValue.h"
#include "host/ValueCodec.h"

namespace {

using nlohmann::json;

// One attribute of every kind, with ranges and items like the nodes' own.
std::vector<Attribute> AttributesOfEveryKind() {
    std::vector<Attribute> attributes;
    attributes.emplace_back(nullptr, 0, "number", 1.0, -10.0, 10.0, 0.1, 2);
    attributes.emplace_back(nullptr, 1, "bool", true);
    attributes.emplace_back(nullptr, 2, "choice", 1, "first,second,third");
    attributes.emplace_back(nullptr, 3, "color", Rgbo{0.5, 0.5, 0.5, 1.0});
    attributes.emplace_back(nullptr, 4, "point", Point{0.0, 1.0}, -100.0, 100.0, 1.0, 3);
    attributes.emplace_back(nullptr, 5, "frame", Frame{0.0, 0.0, 1.0, 1.0}, -100.0, 100.0, 1.0, 3);
    attributes.emplace_back(nullptr, 6, "mesh", MeshReference{});
    attributes.emplace_back(nullptr, 7, "text", "text");
    attributes.emplace_back(nullptr, 8, "file", FilePath{});
    return attributes;
}

void Fail(const std::string& what, const json& value) {
    std::fprintf(stderr, "%s: %s\n", what.c_str(), value.dump().c_str());
    std::abort();
}

void DecodeAsEveryKind(const std::vector<Attribute>& attributes, const json& value) {
    for (const Attribute& attribute : attributes) {
        try {
            const NodeValue decoded = ValueCodec::Decode(attribute, value);
            (void)attribute.Validate(decoded);
            const json encoded = ValueCodec::Encode(attribute, decoded);
            if (ValueCodec::Encode(attribute, ValueCodec::Decode(attribute, encoded)) != encoded)
                Fail("the encoding of attribute '" + attribute.GetName() + "' does not read back",
                     value);
        } catch (const ValueCodec::Error&) {
        }
    }
    try {
        const json encoded = ValueCodec::EncodeGradient(ValueCodec::DecodeGradient(value));
        if (ValueCodec::EncodeGradient(ValueCodec::DecodeGradient(encoded)) != encoded)
            Fail("the encoding of a gradient does not read back", value);
    } catch (const ValueCodec::Error&) {
    }
}

// Every value of the tree, the tree first; the reader bounds its depth.
void Visit(const std::vector<Attribute>& attributes, const json& value, int& budget) {
    if (budget-- <= 0)
        return;
    DecodeAsEveryKind(attributes, value);
    if (value.is_structured())
        for (const json& item : value)
            Visit(attributes, item, budget);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::vector<Attribute> attributes = AttributesOfEveryKind();
    json tree;
    try {
        tree = JsonReader::Parse(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const JsonError&) {
        return 0;
    }
    // Enough for every attribute of an example document, few enough to keep runs quick.
    int budget = 4096;
    Visit(attributes, tree, budget);
    return 0;
}
