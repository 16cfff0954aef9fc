#include "python/native/ScriptDocument.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <mutex>
#include <stdexcept>

#include "host/Attribute.h"
#include "host/Image.h"
#include "host/Node.h"
#include "host/NodeValue.h"
#include "host/PluginLoader.h"
#include "host/TextureHandle.h"
#include "host/ValueCodec.h"
#include "python/native/PointSampler.h"

using nlohmann::json;

namespace {

/// "NODE.PLUG" split at its last dot.
std::pair<std::string, std::string> SplitPlug(const std::string& text) {
    const std::size_t dot = text.rfind('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == text.size())
        throw std::invalid_argument("'" + text + "' must look like \"NODE.PLUG\"");
    return {text.substr(0, dot), text.substr(dot + 1)};
}

int FindPlug(const Node& node, unsigned plugType) {
    for (const Node::Output& output : node.GetOutplugs())
        if (output.plugType == plugType)
            return static_cast<int>(output.id);
    return -1;
}

bool IsValidId(const std::string& id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '-';
    });
}

// Render 2D nodes round their frame's size this way.
int RoundHalfDown(double x) {
    const double down = std::floor(x);
    return static_cast<int>(x - down > 0.5 ? std::ceil(x) : down);
}

}  // namespace

ScriptDocument::ScriptDocument(const PluginLoader& catalogue) : mCatalogue(catalogue) {}

ScriptDocument::~ScriptDocument() {
    mEngine.Clear();
}

void ScriptDocument::Load(const std::string& path) {
    std::string error;
    if (!mDocument.Load(path, mEngine, mCatalogue, &error))
        throw std::invalid_argument(error);
}

void ScriptDocument::Save(const std::string& path) {
    std::string error;
    if (!mDocument.Save(path, mEngine, &error))
        throw std::invalid_argument(error);
}

Node* ScriptDocument::Find(const std::string& id) const {
    Node* node = mEngine.FindNode(id);
    if (node == nullptr)
        throw std::invalid_argument("unknown node id '" + id + "'");
    return node;
}

std::string ScriptDocument::Describe(const Node* node) const {
    return "node '" + mEngine.GetNodeId(node) + "' (" + node->GetTypeName() + ")";
}

std::string ScriptDocument::NewId(const std::string& type) const {
    std::string stem;
    for (const char c : type) {
        if (c == ' ')
            break;
        stem += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    if (!IsValidId(stem))
        stem = "node";
    std::string id = stem;
    for (int n = 2; mEngine.FindNode(id) != nullptr; ++n)
        id = stem + "-" + std::to_string(n);
    return id;
}

std::vector<std::pair<unsigned, NodeValue>> ScriptDocument::Decode(const Node& node,
                                                                   const json& attributes) const {
    std::vector<std::pair<unsigned, NodeValue>> values;
    const std::string place = Describe(&node);
    for (const auto& [name, value] : attributes.items()) {
        const Attribute* attribute = node.FindAttribute(name);
        if (attribute == nullptr)
            throw std::invalid_argument(place + ": unknown attribute '" + name + "'");
        const std::string where = place + ": attribute '" + name + "'";
        NodeValue decoded;
        try {
            decoded = ValueCodec::Decode(*attribute, value);
        } catch (const ValueCodec::Error& e) {
            throw std::invalid_argument(where + " (" + attribute->GetKindName() + "): " + e.what());
        }
        if (const std::string problem = attribute->Validate(decoded); !problem.empty())
            throw std::invalid_argument(where + ": " + problem);
        values.emplace_back(attribute->GetId(), decoded);
    }
    return values;
}

std::string ScriptDocument::AddNode(const std::string& type, const std::string& id,
                                    const json& attributes) {
    std::lock_guard<EngineMutex> lock(mEngine.GetMutex());
    const std::string chosen = id.empty() ? NewId(type) : id;
    const std::string place = "node '" + chosen + "'";
    if (!IsValidId(chosen))
        throw std::invalid_argument("id '" + chosen +
                                    "' may hold only letters, digits, '_' and '-'");
    if (mEngine.FindNode(chosen) != nullptr)
        throw std::invalid_argument(place + ": duplicate id");
    std::string error;
    std::unique_ptr<Node> created = mCatalogue.CreateNode(type, &error);
    if (created == nullptr)
        throw std::invalid_argument(place + ": " + error);
    Node* node = mEngine.AddNode(std::move(created), chosen, &error);
    if (node == nullptr)
        throw std::invalid_argument(place + ": " + error);
    try {
        for (const auto& [attribute, value] : Decode(*node, attributes))
            node->GetAttribute(attribute)->SetValue(value);
    } catch (...) {
        mEngine.RemoveNode(node);
        throw;
    }
    return chosen;
}

void ScriptDocument::SetAttributes(const std::string& id, const json& attributes) {
    std::lock_guard<EngineMutex> lock(mEngine.GetMutex());
    Node* node = Find(id);
    std::string error;
    for (const auto& [attribute, value] : Decode(*node, attributes))
        if (!mEngine.SetAttributeValue(node, attribute, value, &error))
            throw std::invalid_argument(Describe(node) + ": " + error);
}

std::vector<std::pair<std::string, json>> ScriptDocument::GetAttributes(
    const std::string& id) const {
    std::lock_guard<EngineMutex> lock(mEngine.GetMutex());
    std::vector<std::pair<std::string, json>> values;
    for (const auto& attribute : Find(id)->GetAttributes())
        values.emplace_back(attribute->GetName(),
                            ValueCodec::Encode(*attribute, attribute->GetValue()));
    return values;
}

void ScriptDocument::Link(const std::string& from, const std::string& to) {
    std::lock_guard<EngineMutex> lock(mEngine.GetMutex());
    const auto [fromId, outName] = SplitPlug(from);
    const auto [toId, inName] = SplitPlug(to);
    Node* source = Find(fromId);
    Node* target = Find(toId);
    const int outplug = source->FindOutplug(outName);
    if (outplug < 0)
        throw std::invalid_argument(Describe(source) + " has no output '" + outName + "'");
    const int inplug = target->FindInplug(inName);
    if (inplug < 0)
        throw std::invalid_argument(Describe(target) + " has no input or attribute '" + inName +
                                    "'");
    std::string error;
    if (!mEngine.Connect(source, static_cast<unsigned>(outplug), target,
                         static_cast<unsigned>(inplug), &error))
        throw std::invalid_argument("'" + from + "' to '" + to + "': " + error);
}

std::vector<std::string> ScriptDocument::GetNodeIds() const {
    std::vector<std::string> ids;
    for (const Node* node : mEngine.GetNodes())
        ids.push_back(mEngine.GetNodeId(node));
    return ids;
}

std::string ScriptDocument::GetNodeType(const std::string& id) const {
    return Find(id)->GetTypeName();
}

void ScriptDocument::SetDisplay(const std::string& id) {
    if (!id.empty())
        Find(id);
    mDocument.SetDisplay(id);
}

std::pair<int, int> ScriptDocument::PlannedSize(const RenderRequest& request) const {
    if (!request.window.IsEmpty())
        return {request.window.Width(), request.window.Height()};
    if (request.width > 0 && request.height > 0)
        return {request.width, request.height};
    const Node* node = Find(request.node);
    const Attribute* frame = node->FindAttribute("frame");
    if (frame == nullptr || frame->GetKind() != Attribute::kFrame ||
        mEngine.FindLinkTo(node, node->GetInplugIdFromAttributeId(frame->GetId())) != nullptr)
        return {0, 0};
    const Frame& f = frame->GetValue().GetFrame();
    return {RoundHalfDown(f.sizeX), RoundHalfDown(f.sizeY)};
}

void ScriptDocument::Evaluate(Node* node) {
    // Mesh bakes read the scene of the process-wide engine, so a document with models lends
    // them to it while it renders.
    static std::mutex sceneLock;
    std::unique_lock<std::mutex> scene(sceneLock, std::defer_lock);
    if (!mEngine.GetSceneModels().empty()) {
        scene.lock();
        if (Engine::Get()->GetSceneModels() != mEngine.GetSceneModels())
            Engine::Get()->SetSceneModels(mEngine.GetSceneModels());
    }
    if (mEngine.EvaluateNode(node))
        return;
    std::string message;
    for (const Node* failed : mEngine.GetNodes())
        if (failed->GetState() == Node::kStateError)
            message +=
                (message.empty() ? "" : "; ") + Describe(failed) + ": " + failed->GetStateMessage();
    throw std::runtime_error(message);
}

Image* ScriptDocument::Render(const RenderRequest& request) {
    std::lock_guard<EngineMutex> lock(mEngine.GetMutex());
    Node* node = Find(request.node);
    const int outplug = FindPlug(*node, Node::kImagePlug);
    if (outplug < 0)
        throw std::invalid_argument(Describe(node) + " has no image output");
    RenderOptions options;
    options.threads = request.threads;
    options.width = request.width;
    options.height = request.height;
    options.window = request.window;
    options.tileable = request.tileable;
    if (!mEngine.GetRenderOptions().SameImagesAs(options)) {
        mEngine.SetRenderOptions(options);
        for (Node* each : mEngine.GetNodes())
            if (FindPlug(*each, Node::kImagePlug) >= 0)
                mEngine.MarkDirty(each);
    }
    Evaluate(node);
    Image* image = mEngine.GetOutputValue(node, static_cast<unsigned>(outplug)).GetImage();
    if (image == nullptr)
        throw std::runtime_error(Describe(node) + ": produced no image" +
                                 (node->IsEvaluationEnabled() ? "" : " (disabled)"));
    // Only Render 2D nodes know sizes and windows; whatever renders otherwise must not be
    // taken for the part asked for.
    const auto [width, height] = request.window.IsEmpty()
                                     ? std::pair{request.width, request.height}
                                     : std::pair{request.window.Width(), request.window.Height()};
    if (width > 0 && (image->GetSizeX() != width || image->GetSizeY() != height))
        throw std::invalid_argument(
            Describe(node) + " rendered " + std::to_string(image->GetSizeX()) + " x " +
            std::to_string(image->GetSizeY()) + " pixels instead of the " + std::to_string(width) +
            " x " + std::to_string(height) + " asked for: it takes no size or window");
    if (image->GetColorMode() != Image::kFloatRgbo)
        image = new Image(*image, Image::kFloatRgbo);
    image->AddRef();
    return image;
}

std::unique_ptr<PointSampler> ScriptDocument::CompileTexture(const std::string& id) {
    std::lock_guard<EngineMutex> lock(mEngine.GetMutex());
    Node* node = Find(id);
    const int outplug = FindPlug(*node, Node::kTexturePlug);
    if (outplug < 0)
        throw std::invalid_argument(Describe(node) + " has no texture output");
    Evaluate(node);
    const NodeValue value = mEngine.GetOutputValue(node, static_cast<unsigned>(outplug));
    const TextureHandle* handle = value.GetTexture();
    if (handle == nullptr || handle->module == nullptr)
        throw std::runtime_error(Describe(node) + ": produced no texture" +
                                 (node->IsEvaluationEnabled() ? "" : " (disabled)"));
    try {
        return std::make_unique<PointSampler>(*handle->module);
    } catch (const std::exception& e) {
        throw std::runtime_error(Describe(node) + ": " + e.what());
    }
}
