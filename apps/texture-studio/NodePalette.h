#pragma once

#include <QTreeWidget>

class NodeInterface;
class PluginLoader;

/// The catalogue of node types, grouped by library and category, each with its icon. A type
/// is added to the graph by double click, by Enter, or by dragging it onto the graph.
class NodePalette : public QTreeWidget {
    Q_OBJECT

public:
    /// The drag format: the type's display name as UTF-8.
    static constexpr const char* kMimeType = "application/x-texture-node-type";

    explicit NodePalette(const PluginLoader& catalogue, QWidget* parent = nullptr);

signals:
    void addRequested(QString typeName);

protected:
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QList<QTreeWidgetItem*>& items) const override;
    void keyPressEvent(QKeyEvent* event) override;
};
