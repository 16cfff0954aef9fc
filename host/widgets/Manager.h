#pragma once

#include <memory>

#include "host/HostTypes.h"

class Engine;
class Node;
class QWidget;

/// The host application's core, one per process (Manager::Get): which node is active (the one
/// the user selected, whose attributes are shown), which node is displayed (whose image the
/// main view shows), the main window, and the manager events that report changes of the two.
///
/// Manager events, sent to the handlers registered with RegisterDelegateEventHandler with an
/// event code and a parameter (always 0):
///   0  the active node changed;
///   1  the display node changed.
/// Handlers run on the thread that made the change (the GUI thread in the studio). Use the
/// manager from the GUI thread only.
///
/// Hosts clear the active and display nodes (SetActiveNode(nullptr), ForgetNode) before they
/// remove those nodes or clear the engine, so that handlers can still let go of the old node.
/// As a safety net the manager also drops both when the process-wide engine reports it was
/// cleared; handlers told then must not touch the previous nodes, which are already gone.
class Manager {
public:
    enum EventCode : unsigned { kActiveNodeChanged = 0, kDisplayNodeChanged = 1 };

    /// The process-wide manager; made on first use and never destroyed.
    static Manager* Get();

    Manager();
    ~Manager();
    Manager(const Manager&) = delete;
    Manager& operator=(const Manager&) = delete;

    /// The engine that holds the host's graph: the process-wide engine.
    Engine* GetEngine() const;

    /// The active node, or null.
    Node* GetActiveNode() const;
    /// Makes `node` (null for none) active; sends event 0 when it differs from the current one.
    void SetActiveNode(Node* node);
    /// The display node, or null.
    Node* GetDisplayNode() const;
    /// Makes `node` (null for none) the display node; sends event 1 when it changed.
    void SetDisplayNode(Node* node);
    /// Forgets `node` as active or display node (sending 0 or 1 as needed). Call it before
    /// removing a node from the engine.
    void ForgetNode(Node* node);

    /// The host's main window, parent of tool dialogs such as a plug-in's preview; null when
    /// the host has none (for example in tests). Not owned; forgotten when it is destroyed.
    QWidget* GetMainWidget() const;
    void SetMainWidget(QWidget* widget);

    /// Registers a handler for the manager events; one handler per object, registering again
    /// replaces the object's handler.
    void RegisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler);
    /// Removes the handler bound to the same object; unknown handlers are ignored.
    void UnregisterDelegateEventHandler(const Delegate2<unsigned int, unsigned int>& handler);
    /// Sends a manager event to every registered handler, in registration order. A handler may
    /// register or unregister handlers meanwhile; those changes apply from the next event.
    void SendEvent(unsigned int code, unsigned int parameter = 0);

private:
    void OnEngineEvent(unsigned int code, unsigned int parameter);

    struct Impl;
    std::unique_ptr<Impl> mImpl;
};
