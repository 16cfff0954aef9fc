#include "apps/common/RenderToFile.h"

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
    mEngine.EvaluateNode(&node);
    return Write(node, path, layout, error);
}

bool RenderToFile::Write(const Node& node, const std::string& path, const FileLayout& layout,
                         std::string* error) const {
    const int outplug = FindImageOutplug(node);
    if (outplug < 0) {
        *error = Describe(node) + " has no image output";
        return false;
    }
    const NodeValue value = mEngine.GetOutputValue(&node, static_cast<unsigned>(outplug));
    const Image* image = value.GetImage();
    if (image == nullptr) {
        *error = Describe(node) + ": produced no image";
        if (!node.IsEvaluationEnabled())
            *error += " (disabled)";
        else if (!node.GetStateMessage().empty())
            *error += ": " + node.GetStateMessage();
        return false;
    }
    std::string why;
    if (!image->WriteFile(path, layout, &why)) {
        // The writer's message already names the file.
        *error = "node '" + mEngine.GetNodeId(&node) + "': " + why;
        return false;
    }
    return true;
}
