#include "apps/common/RenderToFile.h"

#include <mutex>

#include "apps/common/StreamedImageFile.h"
#include "host/Engine.h"
#include "host/Image.h"
#include "host/Node.h"

int RenderToFile::FindImageOutplug(const Node& node) {
    for (const Node::Output& output : node.GetOutplugs())
        if (output.plugType == Node::kImagePlug)
            return static_cast<int>(output.id);
    return -1;
}

std::string RenderToFile::Describe(const Node& node) const {
    return "node '" + mEngine.GetNodeId(&node) + "' (" + node.GetTypeName() + ")";
}

bool RenderToFile::Render(Node& node, const std::string& path, const FileLayout& layout,
                          std::string* error) const {
    // Held throughout, so that no other thread evaluates the node between its render and the
    // write.
    const std::lock_guard lock(mEngine.GetMutex());
    StreamedImageFile file(path, layout);
    Evaluate(node, file);
    return Finish(node, file, error);
}

void RenderToFile::Evaluate(Node& node, StreamedImageFile& file) const {
    // Held while the row hook is set, so that no other thread renders into this file.
    const std::lock_guard lock(mEngine.GetMutex());
    EvaluateSources(node);
    const RenderOptions saved = mEngine.GetRenderOptions();
    RenderOptions streaming = saved;
    streaming.rowFinished = [&file](const Image& image, int row) { file.RowFinished(image, row); };
    mEngine.SetRenderOptions(streaming);
    mEngine.EvaluateNode(&node);
    mEngine.SetRenderOptions(saved);
}

void RenderToFile::EvaluateSources(Node& node) const {
    for (const Node::Inplug& inplug : node.GetInplugs())
        if (const Engine::Link* link = mEngine.FindLinkTo(&node, inplug.id))
            mEngine.EvaluateNode(link->from);
}

bool RenderToFile::Finish(const Node& node, StreamedImageFile& file, std::string* error) const {
    const Image* image = ImageOf(node, error);
    if (image == nullptr)
        return false;
    std::string why;
    if (!file.Finish(*image, &why)) {
        // The writer's message already names the file.
        *error = "node '" + mEngine.GetNodeId(&node) + "': " + why;
        return false;
    }
    return true;
}

bool RenderToFile::Write(const Node& node, const std::string& path, const FileLayout& layout,
                         std::string* error) const {
    const Image* image = ImageOf(node, error);
    if (image == nullptr)
        return false;
    std::string why;
    if (!image->WriteFile(path, layout, &why)) {
        // The writer's message already names the file.
        *error = "node '" + mEngine.GetNodeId(&node) + "': " + why;
        return false;
    }
    return true;
}

const Image* RenderToFile::ImageOf(const Node& node, std::string* error) const {
    const int outplug = FindImageOutplug(node);
    if (outplug < 0) {
        *error = Describe(node) + " has no image output";
        return nullptr;
    }
    const NodeValue value = mEngine.GetOutputValue(&node, static_cast<unsigned>(outplug));
    const Image* image = value.GetImage();
    if (image == nullptr) {
        *error = Describe(node) + ": produced no image";
        if (!node.IsEvaluationEnabled())
            *error += " (disabled)";
        else if (!node.GetStateMessage().empty())
            *error += ": " + node.GetStateMessage();
    }
    return image;
}
