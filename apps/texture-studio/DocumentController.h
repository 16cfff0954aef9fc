#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class Engine;
class GraphEditor;
class PluginLoader;
class QWidget;

/// The studio's document: opening, saving (atomically, through the host's document files) and
/// starting anew, the file it refers to and whether the graph changed since it was last saved.
/// The File menu's commands ask through dialogs over `window`.
class DocumentController : public QObject {
    Q_OBJECT

public:
    /// `catalogue`, `editor` and `window` must outlive the controller.
    DocumentController(const PluginLoader& catalogue, GraphEditor* editor, QWidget* window);

    /// Replaces the graph with a document; false with a message naming the file and place,
    /// and the graph as it was.
    bool Open(const QString& path, QString* error);
    /// Saves the graph with the manager's active and display nodes; the document then refers
    /// to `path`.
    bool Save(const QString& path, QString* error);
    /// Empties the graph.
    void New();

    const QString& GetPath() const { return mPath; }
    /// The file's name, or "Untitled".
    QString GetName() const;
    bool IsModified() const { return mModified; }
    void SetModified(bool modified);

    // The File menu.
    void OpenAfterAsking();
    void SaveOrAsk();
    void SaveAsAfterAsking();
    void NewAfterAsking();
    /// Offers to save unsaved changes; false when the user cancels.
    bool MaybeSave();
    /// Opens `path` after offering to save unsaved changes (the Open Recent menu).
    void OpenRecentAfterAsking(const QString& path);

    /// The documents opened or saved last, newest first, those that still exist; kept in the
    /// user's settings across sessions.
    QStringList GetRecentFiles() const;

signals:
    /// The engine holds another graph (opened or new).
    void replaced();
    /// The path or the modified state changed.
    void stateChanged();
    void report(const QString& message);

private:
    void RememberRecent(const QString& path);

    const PluginLoader& mCatalogue;
    GraphEditor* mEditor;
    QWidget* mWindow;
    Engine* mEngine;
    QString mPath;
    bool mModified = false;
};
