#pragma once

#include <memory>
#include <span>
#include <vector>

#include "nodes/AttributeRow.h"
#include "nodes/TextureModuleNode.h"

/// A texture node whose module is a `Module` set from the node's attribute rows, then wired
/// to the modules on its texture inputs in input order.
template <class Module>
class ModuleNode : public TextureModuleNode {
public:
    using Row = texture::AttributeRow<Module>;

protected:
    /// `rows` must outlive the node (node types keep them in a function-local static).
    /// A subclass that adds regular inputs after the texture inputs updates the plugs again.
    ModuleNode(const NodeCatalogueEntry& entry, std::span<const Row> rows,
               std::initializer_list<TextureInputDeclaration> textureInputs = {})
        : TextureModuleNode(entry, textureInputs), mRows(rows) {
        texture::declareRows(mRows, *this, mAttributes);
        UpdateInplugsAndOutplugs();
    }

    /// Settings that rows cannot give alone: values made of several attributes, fixed
    /// choices. Runs after the rows, before the wiring.
    virtual void Complete(Module& /*module*/, Value** /*inputs*/) {}
    /// Wires each non-empty texture input to the source slot of its index.
    virtual void Connect(Module& module, Value** /*inputs*/,
                         const std::vector<noisepp::Module*>& sources) {
        for (std::size_t slot = 0; slot < sources.size(); ++slot)
            if (sources[slot] != nullptr)
                module.setSourceModule(slot, sources[slot]);
    }

private:
    std::unique_ptr<noisepp::Module> Build(Value** inputs,
                                           const std::vector<noisepp::Module*>& sources) final {
        auto module = std::make_unique<Module>();
        texture::applyRows(mRows, *this, inputs, *module);
        Complete(*module, inputs);
        Connect(*module, inputs, sources);
        return module;
    }

    std::span<const Row> mRows;
};

/// A node over two textures, "texture_a" and "texture_b", both required: Maximum, Minimum,
/// Addition, Multiply, Power.
template <class Module>
class CombinerNode : public ModuleNode<Module> {
public:
    enum RegularInputId : unsigned { kTextureAInput = 0, kTextureBInput = 1 };

protected:
    explicit CombinerNode(const NodeCatalogueEntry& entry)
        : ModuleNode<Module>(entry, {}, {{"texture_a"}, {"texture_b"}}) {}
};
