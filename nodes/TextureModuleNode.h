#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "host/Node.h"
#include "library/NodeCatalogue.h"

namespace noisepp {
class Module;
}

/// A texture node: its output 0 "texture" is a module the node owns and builds anew on every
/// evaluation. Downstream trees point at the previous module, so it goes first, whatever
/// happens next; nothing is built while the host's evaluation flag is clear, nor while a
/// required texture input carries no module.
class TextureModuleNode : public Node {
public:
    /// A texture input, in regular input id order from 0. An optional input may stay empty.
    struct TextureInputDeclaration {
        const char* name;
        bool required = true;
    };

    ~TextureModuleNode() override;

    NodeType GetNodeType() const final { return mEntry.GetNodeType(); }
    std::string GetTypeName() const final { return mEntry.typeName; }
    void Evaluate(unsigned outplug, Value** inputs) final;
    /// Index 0: a new handle (count 1) on the current module, which may be null; else null.
    TextureHandle* GetOutputTexture(unsigned index) final;

protected:
    /// Declares the texture inputs; the subclass declares its attributes, and other regular
    /// inputs after these, then calls UpdateInplugsAndOutplugs.
    TextureModuleNode(const NodeCatalogueEntry& entry,
                      std::initializer_list<TextureInputDeclaration> textureInputs);

    /// The new module, given the module on each texture input (null for an empty optional one).
    virtual std::unique_ptr<noisepp::Module> Build(
        Value** inputs, const std::vector<noisepp::Module*>& sources) = 0;

private:
    const NodeCatalogueEntry& mEntry;
    std::vector<bool> mRequired;
    std::unique_ptr<noisepp::Module> mModule;
};
