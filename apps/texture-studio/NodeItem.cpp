#include "apps/texture-studio/NodeItem.h"

#include <algorithm>

#include <QGraphicsScene>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include "apps/texture-studio/GraphScene.h"
#include "host/Node.h"

namespace {

QColor PlugColor(unsigned plugType) {
    switch (plugType) {
        case Node::kImagePlug:
            return {90, 160, 230};
        case Node::kTexturePlug:
            return {230, 170, 60};
        default:
            return {160, 160, 160};
    }
}

}  // namespace

NodeItem::NodeItem(Node* node, const QString& id, const QIcon& icon)
    : mNode(node), mId(id), mIcon(icon) {
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setAcceptHoverEvents(true);
    for (const auto& output : mNode->GetOutplugs()) {
        mHasImageOutput = mHasImageOutput || output.plugType == Node::kImagePlug;
        mCanShowThumbnail = mCanShowThumbnail || output.plugType == Node::kImagePlug ||
                            output.plugType == Node::kTexturePlug;
    }
    SetPorts({});
    UpdateState();
}

void NodeItem::SetPorts(const std::vector<unsigned>& linkedAttributeInplugs) {
    prepareGeometryChange();
    mPorts.clear();
    for (const auto& inplug : mNode->GetInplugs()) {
        const bool linkedAttribute =
            inplug.attributeId >= 0 &&
            std::find(linkedAttributeInplugs.begin(), linkedAttributeInplugs.end(), inplug.id) !=
                linkedAttributeInplugs.end();
        if (inplug.regularInputId >= 0 || linkedAttribute)
            mPorts.push_back(
                {false, inplug.id, QString::fromStdString(inplug.name), inplug.plugType});
    }
    for (const auto& output : mNode->GetOutplugs())
        mPorts.push_back({true, output.id, QString::fromStdString(output.name), output.plugType});
    update();
}

int NodeItem::Rows() const {
    const auto inputs =
        std::count_if(mPorts.begin(), mPorts.end(), [](const Port& p) { return !p.output; });
    const auto outputs = static_cast<long>(mPorts.size()) - inputs;
    return static_cast<int>(std::max<long>({inputs, outputs, 1}));
}

QRectF NodeItem::BoxRect() const {
    double height = kTitleHeight + Rows() * kRowHeight;
    if (ShowsThumbnail())
        height += kThumbnailSide + 8;
    return {0, 0, kWidth, height};
}

QRectF NodeItem::ThumbnailRect() const {
    return {(kWidth - kThumbnailSide) / 2, kTitleHeight + Rows() * kRowHeight + 4,
            static_cast<double>(kThumbnailSide), static_cast<double>(kThumbnailSide)};
}

bool NodeItem::ShowsThumbnail() const {
    return mCanShowThumbnail && mThumbnailWanted && mThumbnailsAllowed;
}

void NodeItem::SetThumbnailWanted(bool wanted) {
    if (mThumbnailWanted == wanted)
        return;
    prepareGeometryChange();
    mThumbnailWanted = wanted;
}

void NodeItem::SetThumbnailsAllowed(bool allowed) {
    if (mThumbnailsAllowed == allowed)
        return;
    prepareGeometryChange();
    mThumbnailsAllowed = allowed;
}

void NodeItem::SetThumbnail(const QImage& image, const QString& why) {
    mThumbnail = image;
    mThumbnailWhy = why;
    mThumbnailStale = false;
    update();
}

void NodeItem::SetThumbnailStale(bool stale) {
    mThumbnailStale = stale;
}

QPointF NodeItem::LocalPortPosition(const Port& port) const {
    int row = 0;
    for (const Port& other : mPorts) {
        if (&other == &port)
            break;
        if (other.output == port.output)
            ++row;
    }
    return {port.output ? kWidth : 0.0, kTitleHeight + (row + 0.5) * kRowHeight};
}

QPointF NodeItem::PortPosition(bool output, unsigned plug) const {
    for (const Port& port : mPorts)
        if (port.output == output && port.plug == plug)
            return mapToScene(LocalPortPosition(port));
    return mapToScene(boundingRect().center());
}

const NodeItem::Port* NodeItem::PortAt(const QPointF& scenePoint) const {
    const QPointF local = mapFromScene(scenePoint);
    for (const Port& port : mPorts) {
        const QPointF d = local - LocalPortPosition(port);
        if (d.x() * d.x() + d.y() * d.y() <= (kPortRadius + 3) * (kPortRadius + 3))
            return &port;
    }
    return nullptr;
}

void NodeItem::SetDisplay(bool display) {
    if (mDisplay == display)
        return;
    mDisplay = display;
    update();
}

void NodeItem::UpdateState() {
    mState = mNode->GetState();
    QString tip = mId + " (" + QString::fromStdString(mNode->GetTypeName()) + ")";
    if (mState != Node::kStateOk)
        tip += "\n" + QString::fromStdString(mNode->GetStateMessage());
    if (!mNode->IsEvaluationEnabled())
        tip += "\n" + QObject::tr("evaluation disabled");
    setToolTip(tip);
    update();
}

QRectF NodeItem::boundingRect() const {
    const double margin = kPortRadius + 2;
    // The id is written under the box.
    const QRectF box = BoxRect();
    return {-margin, -margin, kWidth + 2 * margin, box.height() + 2 * margin + 16};
}

void NodeItem::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) {
    painter->setRenderHint(QPainter::Antialiasing, true);
    const QRectF box = BoxRect();
    QColor title(70, 74, 82);
    if (mState == Node::kStateError)
        title = QColor(170, 50, 50);
    else if (mState == Node::kStateWarning)
        title = QColor(170, 140, 40);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(48, 50, 56, mNode->IsEvaluationEnabled() ? 235 : 140));
    painter->drawRoundedRect(box, 5, 5);
    painter->setBrush(title);
    painter->drawRoundedRect(QRectF(0, 0, kWidth, kTitleHeight), 5, 5);

    QPen outline(isSelected() ? QColor(255, 255, 255) : QColor(20, 20, 20),
                 isSelected() ? 2.0 : 1.0);
    if (mDisplay)
        outline = QPen(QColor(80, 200, 120), 3.0);
    painter->setPen(outline);
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(box, 5, 5);
    if (mState == Node::kStateError) {
        // Outside the display and selection outlines, so that neither hides it.
        painter->setPen(QPen(QColor(235, 60, 60), 3.0));
        painter->drawRoundedRect(box.adjusted(-4, -4, 4, 4), 7, 7);
    }
    if (ShowsThumbnail())
        PaintThumbnail(painter);

    double textLeft = 6;
    if (!mIcon.isNull()) {
        mIcon.paint(painter, QRect(5, 5, 14, 14));
        textLeft = 24;
    }
    painter->setPen(Qt::white);
    QFont font = painter->font();
    font.setBold(true);
    painter->setFont(font);
    const QString caption = QString::fromStdString(mNode->GetTypeName());
    painter->drawText(QRectF(textLeft, 0, kWidth - textLeft - 4, kTitleHeight),
                      Qt::AlignVCenter | Qt::AlignLeft,
                      painter->fontMetrics().elidedText(caption, Qt::ElideRight,
                                                        static_cast<int>(kWidth - textLeft - 4)));
    font.setBold(false);
    painter->setFont(font);

    for (const Port& port : mPorts) {
        const QPointF at = LocalPortPosition(port);
        painter->setPen(QPen(Qt::black, 1));
        painter->setBrush(PlugColor(port.plugType));
        painter->drawEllipse(at, kPortRadius, kPortRadius);
        painter->setPen(QColor(220, 220, 220));
        const QRectF label = port.output
                                 ? QRectF(at.x() - kWidth / 2 - 10, at.y() - 9, kWidth / 2, 18)
                                 : QRectF(at.x() + 10, at.y() - 9, kWidth / 2, 18);
        painter->drawText(label, Qt::AlignVCenter | (port.output ? Qt::AlignRight : Qt::AlignLeft),
                          port.name);
    }
    // The id sits under the box, where it does not compete with the plug names.
    painter->setPen(QColor(150, 150, 150));
    painter->drawText(QRectF(0, box.bottom() + 1, kWidth, 14), Qt::AlignLeft | Qt::TextDontClip,
                      mId);
}

void NodeItem::PaintThumbnail(QPainter* painter) const {
    const QRectF area = ThumbnailRect();
    painter->setPen(QPen(QColor(20, 20, 20), 1));
    painter->setBrush(QColor(30, 30, 34));
    painter->drawRect(area);
    if (mThumbnail.isNull()) {
        painter->setPen(QColor(150, 150, 150));
        QFont font = painter->font();
        font.setPointSizeF(font.pointSizeF() * 0.85);
        painter->setFont(font);
        painter->drawText(area.adjusted(4, 4, -4, -4), Qt::AlignCenter | Qt::TextWordWrap,
                          mThumbnailWhy.isEmpty() ? QObject::tr("rendering...") : mThumbnailWhy);
        return;
    }
    const QSizeF size = QSizeF(mThumbnail.size()).scaled(area.size(), Qt::KeepAspectRatio);
    const QRectF target(area.center().x() - size.width() / 2, area.center().y() - size.height() / 2,
                        size.width(), size.height());
    painter->drawImage(target, mThumbnail);
}

QVariant NodeItem::itemChange(GraphicsItemChange change, const QVariant& value) {
    if (change == ItemPositionHasChanged)
        if (auto* graph = qobject_cast<GraphScene*>(scene()))
            graph->UpdateLinkPaths();
    return QGraphicsItem::itemChange(change, value);
}
