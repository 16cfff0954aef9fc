#include "apps/texture-studio/NodePalette.h"

#include <map>
#include <set>

#include <QKeyEvent>
#include <QMimeData>

#include "host/NodeInterface.h"
#include "host/PluginLoader.h"

namespace {
constexpr int kTypeRole = Qt::UserRole + 1;
}

NodePalette::NodePalette(const PluginLoader& catalogue, QWidget* parent) : QTreeWidget(parent) {
    setObjectName("m_node_palette");
    setHeaderHidden(true);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setIconSize(QSize(16, 16));

    // Types are grouped by library, and by category within a library that has several.
    // Groups keep the catalogue's order: the first type of a group places the group.
    const auto& types = catalogue.GetNodeInterfaces();
    const auto libraryOf = [&](std::size_t i) {
        const QString library = QString::fromStdString(types[i]->GetLibraryName());
        if (!library.isEmpty())
            return library;
        return i < catalogue.GetPluginInterfaceCount() ? tr("Plug-in") : tr("Host");
    };
    std::map<QString, std::set<int>> categories;
    for (std::size_t i = 0; i < types.size(); ++i)
        categories[libraryOf(i)].insert(types[i]->GetCategory());
    std::map<QString, QTreeWidgetItem*> groups;
    for (std::size_t i = 0; i < types.size(); ++i) {
        const NodeInterface* type = types[i];
        const QString library = libraryOf(i);
        const QString group = categories[library].size() > 1
                                  ? tr("%1, category %2").arg(library).arg(type->GetCategory())
                                  : library;
        QTreeWidgetItem*& parentItem = groups[group];
        if (parentItem == nullptr) {
            parentItem = new QTreeWidgetItem(this, {group});
            parentItem->setFlags(Qt::ItemIsEnabled);
            parentItem->setExpanded(true);
        }
        const QString name = QString::fromStdString(type->GetTypeName());
        auto* item = new QTreeWidgetItem(parentItem, {name});
        item->setData(0, kTypeRole, name);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
        std::string icon = type->GetSmallIconPath();
        if (icon.empty())
            icon = type->GetIconPath();
        if (!icon.empty())
            item->setIcon(0, QIcon(QString::fromStdString(icon)));
        item->setToolTip(0, tr("%1: double click or drag onto the graph").arg(name));
    }
    expandAll();
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        const QString name = item->data(0, kTypeRole).toString();
        if (!name.isEmpty())
            emit addRequested(name);
    });
}

QStringList NodePalette::mimeTypes() const {
    return {kMimeType};
}

QMimeData* NodePalette::mimeData(const QList<QTreeWidgetItem*>& items) const {
    if (items.isEmpty() || items[0]->data(0, kTypeRole).toString().isEmpty())
        return nullptr;
    auto* data = new QMimeData;
    data->setData(kMimeType, items[0]->data(0, kTypeRole).toString().toUtf8());
    return data;
}

void NodePalette::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentItem()) {
        emit itemActivated(currentItem(), 0);
        return;
    }
    QTreeWidget::keyPressEvent(event);
}
