#pragma once

#include <QGraphicsItem>
#include <QIcon>
#include <QImage>
#include <vector>

class Node;

/// A node drawn in the graph: a box titled with its type and id, its input plugs on the left
/// and its outputs on the right, and under them a thumbnail of what it makes (for nodes with
/// an image or texture output, while thumbnails are shown). Shows the node's state (an error
/// in a red frame, a warning in yellow) and whether it is the display node.
class NodeItem : public QGraphicsItem {
public:
    /// A plug drawn on the box.
    struct Port {
        bool output = false;
        unsigned plug = 0;  ///< inplug or outplug id
        QString name;
        unsigned plugType = 0;
    };

    NodeItem(Node* node, const QString& id, const QIcon& icon);

    Node* GetNode() const { return mNode; }
    const QString& GetId() const { return mId; }

    /// Rebuilds the plugs: every output, every regular input, and the attribute inplugs in
    /// `linkedAttributeInplugs` (attributes are drawn as plugs only while linked).
    void SetPorts(const std::vector<unsigned>& linkedAttributeInplugs);
    const std::vector<Port>& GetPorts() const { return mPorts; }
    /// The centre of a plug in scene coordinates; the item's centre when it has no such plug.
    QPointF PortPosition(bool output, unsigned plug) const;
    /// The plug under a scene point, or null.
    const Port* PortAt(const QPointF& scenePoint) const;

    void SetDisplay(bool display);
    bool IsDisplay() const { return mDisplay; }

    /// True for nodes with an image or texture output: they can show a thumbnail.
    bool CanShowThumbnail() const { return mCanShowThumbnail; }
    /// True for nodes with an image output (render nodes, image files).
    bool HasImageOutput() const { return mHasImageOutput; }
    /// Whether this node's thumbnail is wanted (the per-node toggle, on by default) ...
    bool IsThumbnailWanted() const { return mThumbnailWanted; }
    void SetThumbnailWanted(bool wanted);
    /// ... and whether thumbnails show at all (the global toggle).
    void SetThumbnailsAllowed(bool allowed);
    /// True when a thumbnail area is drawn: the node can show one, wants it, and it is allowed.
    bool ShowsThumbnail() const;
    /// The newest thumbnail; a null image with `why` when the node shows nothing.
    void SetThumbnail(const QImage& image, const QString& why);
    const QImage& GetThumbnail() const { return mThumbnail; }
    /// The thumbnail no longer matches the node's output (a newer one is on its way).
    void SetThumbnailStale(bool stale);
    bool IsThumbnailStale() const { return mThumbnailStale; }

    /// The side of a thumbnail in scene units.
    static constexpr int kThumbnailSide = 96;
    /// Re-reads the node's state for colouring and the tool tip.
    void UpdateState();

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    QPointF LocalPortPosition(const Port& port) const;
    int Rows() const;
    /// The box without the id written under it.
    QRectF BoxRect() const;
    QRectF ThumbnailRect() const;
    void PaintThumbnail(QPainter* painter) const;

    static constexpr double kWidth = 170.0;
    static constexpr double kTitleHeight = 24.0;
    static constexpr double kRowHeight = 18.0;
    static constexpr double kPortRadius = 5.0;

    Node* mNode;
    QString mId;
    QIcon mIcon;
    std::vector<Port> mPorts;
    bool mDisplay = false;
    int mState = 0;
    bool mCanShowThumbnail = false;
    bool mHasImageOutput = false;
    bool mThumbnailWanted = true;
    bool mThumbnailsAllowed = true;
    bool mThumbnailStale = true;
    QImage mThumbnail;
    QString mThumbnailWhy;
};
