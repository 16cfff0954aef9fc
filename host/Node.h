#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Attribute.h"
#include "host/HostTypes.h"
#include "host/NodeEvent.h"
#include "host/NodeHost.h"
#include "host/NodeValue.h"
#include "host/TextureHandle.h"

class Image;
class Engine;
class GradientNode;

/// Base of every node: its attributes, regular inputs and outputs, its plugs, its state and
/// its listeners. A node type's constructor declares its attributes, inputs and outputs and
/// then calls UpdateInplugsAndOutplugs. The host owns nodes and evaluates them through
/// Evaluate, handing it one value per inplug.
///
/// Inplugs are every attribute in id order, then every regular input in id order.
class Node {
public:
    using Value = NodeValue;

    /// Plug type codes carried by regular inputs and outputs.
    enum PlugType : unsigned { kImagePlug = 8, kTexturePlug = 9 };

    struct RegularInput {
        unsigned id = 0;
        unsigned plugType = 0;
        std::string name;
        unsigned reserved0 = 0;
        unsigned reserved1 = 0;
    };
    struct Output {
        unsigned id = 0;
        unsigned plugType = 0;
        std::string name;
        unsigned reserved = 0;
    };
    /// What an inplug stands for.
    struct Inplug {
        unsigned id = 0;
        std::string name;
        unsigned plugType = 0;    ///< NodeValue type of the attribute, or the input's plug type
        int attributeId = -1;     ///< the attribute behind the inplug, or -1
        int regularInputId = -1;  ///< the regular input behind the inplug, or -1
    };
    /// A display grouping of attributes made by the AddCombined... operations.
    struct CombinedAttribute {
        enum Kind { kRgbo, kPoint, kFramePositionSize } kind = kRgbo;
        unsigned attributeId = 0;
        std::vector<std::string> componentNames;
    };
    /// Node states: 0 fine, 2 warning, 3 error (the output is then empty).
    enum State : int { kStateOk = 0, kStateWarning = 2, kStateError = 3 };

    Node();
    /// Releases the attributes; subclasses release their outputs first.
    virtual ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    virtual NodeType GetNodeType() const = 0;
    virtual std::string GetTypeName() const = 0;
    /// Reacts to an event sent to this node; the base does nothing and returns false.
    virtual bool OnProcessEvent(const NodeEvent& event);
    /// Computes the node's outputs from one value per inplug (inputs[inplug id]).
    virtual void Evaluate(unsigned outplug, Value** inputs) = 0;
    /// The image on output `index`, or null. The node keeps its reference.
    virtual Image* GetOutputImage(unsigned index);
    /// A new handle (count 1, owned by the caller) for the texture on output `index`, or null.
    virtual TextureHandle* GetOutputTexture(unsigned index);
    /// Offered a stored attribute this node does not declare (name and value as text);
    /// returns true when the node took it. The base takes nothing.
    virtual bool HandleStoredAttribute(const std::string& name, const std::string& value);
    /// The gradient this node keeps beside its attributes, or null. A document stores it among
    /// the attributes as "gradient"; it is no inplug, so it is not one of GetAttributes.
    virtual GradientNode* GetGradientNode() { return nullptr; }

    // Declaration, used by node constructors.
    void AddCombinedRgboAttribute(unsigned attributeId, const std::string& colorName,
                                  const std::string& opacityName);
    void AddCombinedPointAttribute(unsigned attributeId, const std::string& xName,
                                   const std::string& yName);
    void AddCombinedFramePositionSizeAttribute(unsigned attributeId, const std::string& positionX,
                                               const std::string& positionY,
                                               const std::string& sizeX, const std::string& sizeY);
    /// Rebuilds the inplug and outplug lists from the attributes, regular inputs and outputs.
    void UpdateInplugsAndOutplugs();

    // Plugs.
    unsigned GetInplugIdFromAttributeId(unsigned attributeId) const;
    unsigned GetInplugIdFromRegularInputId(unsigned regularInputId) const;
    const std::vector<Inplug>& GetInplugs() const { return mInplugs; }
    const std::vector<Output>& GetOutplugs() const { return mOutputs; }
    /// The inplug or outplug with this name, or -1.
    int FindInplug(const std::string& name) const;
    int FindOutplug(const std::string& name) const;

    // Records.
    const std::vector<std::unique_ptr<Attribute>>& GetAttributes() const { return mAttributes; }
    Attribute* GetAttribute(unsigned id) const;
    Attribute* FindAttribute(const std::string& name) const;
    const std::vector<RegularInput>& GetRegularInputs() const { return mRegularInputs; }
    const std::vector<CombinedAttribute>& GetCombinedAttributes() const { return mCombined; }

    // State.
    void SetState(unsigned outplug, int state, const std::string& message);
    int GetState() const { return mState; }
    const std::string& GetStateMessage() const { return mStateMessage; }
    void ClearState();

    /// The host's evaluation flag: when clear, the node builds no output when evaluated (the
    /// host still calls Evaluate, so that the node can drop its previous output).
    bool IsEvaluationEnabled() const { return mEvaluationEnabled; }
    /// Sets the flag; a change marks the node and everything downstream for re-evaluation.
    void SetEvaluationEnabled(bool enabled);

    // Events.
    void AddNodeListener(NodeListener* listener);
    void RemoveNodeListener(NodeListener* listener);
    /// Sends an event to the node itself (OnProcessEvent), then to every listener. A node that
    /// reports its own output changed (type 5) is first marked for re-evaluation, with
    /// everything downstream.
    void ProcessEvent(int type, int code);

    /// Releases a value handed out by the free function Evaluate.
    static void ReleaseValue(Value* value);

    /// The engine this node belongs to (null before it is added to one).
    Engine* GetEngine() const { return mHost != nullptr ? mHost->GetEngine() : nullptr; }
    /// The same engine seen through the little a node needs of it.
    NodeHost* GetHost() const { return mHost; }

protected:
    std::vector<std::unique_ptr<Attribute>> mAttributes;
    std::vector<RegularInput> mRegularInputs;
    std::vector<Output> mOutputs;

private:
    friend class Engine;
    friend class EventQueue;

    /// Set by the engine that takes the node in, cleared when it lets the node go.
    void SetHost(NodeHost* host) { mHost = host; }
    /// OnProcessEvent, then the listeners; no re-evaluation marking (the engine's own path).
    void DeliverEvent(const NodeEvent& event);

    std::vector<Inplug> mInplugs;
    std::vector<CombinedAttribute> mCombined;
    std::vector<NodeListener*> mListeners;
    int mState = kStateOk;
    std::string mStateMessage;
    bool mEvaluationEnabled = true;
    NodeHost* mHost = nullptr;
};

/// Evaluates `node` (and whatever upstream needs it) and returns a copy of the value on its
/// outplug, owned by the caller and released with Node::ReleaseValue. Safe to call from a
/// thread other than the host's: evaluation is serialised by the node's engine.
Node::Value* Evaluate(Node* node, unsigned outplug);
