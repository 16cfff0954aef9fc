#include "apps/texture/Overrides.h"

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "host/Attribute.h"
#include "host/CloseMatches.h"
#include "host/Engine.h"
#include "host/GradientNode.h"
#include "host/Node.h"
#include "host/ValueCodec.h"

namespace {

constexpr std::size_t kMaxSweepValues = 100000;

// NODE.ATTR=VALUE: node ids hold no dots, attribute names may hold anything but '='.
bool SplitAssignment(const std::string& text, const char* option, std::string* node,
                     std::string* attribute, std::string* value, std::string* error) {
    const std::size_t equals = text.find('=');
    const std::size_t dot = text.find('.');
    if (equals == std::string::npos || dot == std::string::npos || dot == 0 || dot + 1 >= equals) {
        *error = std::string(option) + " " + text + ": expected NODE.ATTR=VALUE";
        return false;
    }
    *node = text.substr(0, dot);
    *attribute = text.substr(dot + 1, equals - dot - 1);
    *value = text.substr(equals + 1);
    return true;
}

nlohmann::json ReadValue(const std::string& text) {
    nlohmann::json value = nlohmann::json::parse(text, nullptr, false);
    return value.is_discarded() ? nlohmann::json(text) : value;
}

// Integers print without a fraction so that names and messages read "seed=3", not "3.0".
std::string FormatNumber(double number) {
    if (std::abs(number) < 1e15 && number == std::floor(number))
        return std::to_string(static_cast<long long>(number));
    return nlohmann::json(number).dump();
}

bool ParseNumber(const std::string& text, double* number) {
    const nlohmann::json value = nlohmann::json::parse(text, nullptr, false);
    if (!value.is_number())
        return false;
    *number = value.get<double>();
    return true;
}

}  // namespace

bool ParseOverride(const std::string& text, Override* result, std::string* error) {
    return SplitAssignment(text, "--set", &result->node, &result->attribute, &result->value, error);
}

bool ApplyOverride(Engine& engine, const Override& change, std::string* error) {
    const std::string where = "--set " + change.Key() + "=" + change.value;
    Node* node = engine.FindNode(change.node);
    if (node == nullptr) {
        std::vector<std::string> ids;
        for (Node* each : engine.GetNodes())
            ids.push_back(engine.GetNodeId(each));
        *error =
            where + ": no node with id '" + change.node + "'" + CloseMatchesNote(change.node, ids);
        return false;
    }
    const nlohmann::json json = ReadValue(change.value);
    Attribute* attribute = node->FindAttribute(change.attribute);
    if (attribute == nullptr) {
        if (change.attribute == "gradient" && node->GetGradientNode() != nullptr) {
            try {
                GradientNode::SetGradient(node, ValueCodec::DecodeGradient(json));
                return true;
            } catch (const ValueCodec::Error& e) {
                *error = where + ": " + e.what();
                return false;
            }
        }
        std::vector<std::string> names;
        for (const auto& each : node->GetAttributes())
            names.push_back(each->GetName());
        *error = where + ": node '" + change.node + "' has no attribute '" + change.attribute +
                 "'" + CloseMatchesNote(change.attribute, names);
        return false;
    }
    NodeValue decoded;
    try {
        decoded = ValueCodec::Decode(*attribute, json);
    } catch (const ValueCodec::Error& e) {
        *error = where + " (" + attribute->GetKindName() + "): " + e.what();
        return false;
    }
    if (attribute->GetKind() == Attribute::kFile && !decoded.GetText().empty()) {
        const std::string path = std::filesystem::absolute(decoded.GetText()).string();
        if (!std::filesystem::is_regular_file(path)) {
            *error = where + ": file '" + path + "' does not exist";
            return false;
        }
        decoded = NodeValue::Text(path);
    }
    if (const std::string problem = attribute->Validate(decoded); !problem.empty()) {
        *error = where + ": " + problem;
        return false;
    }
    std::string why;
    if (!engine.SetAttributeValue(node, attribute->GetId(), decoded, &why)) {
        *error = where + ": " + why;
        return false;
    }
    return true;
}

bool ParseSweep(const std::string& text, Sweep* result, std::string* error) {
    std::string values;
    if (!SplitAssignment(text, "--sweep", &result->node, &result->attribute, &values, error))
        return false;
    result->values.clear();
    const auto fail = [&](const std::string& why) {
        *error = "--sweep " + text + ": " + why;
        return false;
    };
    if (values.find(',') != std::string::npos || values.find(':') == std::string::npos) {
        std::size_t start = 0;
        for (std::size_t comma = values.find(','); start <= values.size();
             comma = values.find(',', start)) {
            if (comma == std::string::npos)
                comma = values.size();
            result->values.push_back(values.substr(start, comma - start));
            start = comma + 1;
        }
        return true;
    }
    const std::size_t first = values.find(':');
    const std::size_t second = values.find(':', first + 1);
    double from = 0;
    double to = 0;
    double step = 1;
    if (!ParseNumber(values.substr(0, first), &from) ||
        !ParseNumber(values.substr(first + 1, second - first - 1), &to) ||
        (second != std::string::npos && !ParseNumber(values.substr(second + 1), &step)))
        return fail("expected A:B or A:B:STEP with numbers");
    if (!(step > 0) || to < from)
        return fail("the range must run upwards with a step above 0");
    // Counting steps (rather than adding the step up) keeps 0:1:0.1 from losing its end.
    const double count = std::floor((to - from) / step * (1 + 1e-12)) + 1;
    if (count > kMaxSweepValues)
        return fail("more than " + std::to_string(kMaxSweepValues) + " values");
    for (double i = 0; i < count; ++i)
        result->values.push_back(FormatNumber(from + i * step));
    return true;
}

std::vector<std::vector<Override>> Combine(const std::vector<Sweep>& sweeps) {
    std::vector<std::vector<Override>> combinations(1);
    for (const Sweep& sweep : sweeps) {
        std::vector<std::vector<Override>> next;
        for (const std::vector<Override>& before : combinations)
            for (const std::string& value : sweep.values) {
                next.push_back(before);
                next.back().push_back({sweep.node, sweep.attribute, value});
            }
        combinations = std::move(next);
    }
    return combinations;
}
