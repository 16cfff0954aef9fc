#pragma once

#include <QObject>
#include <QPointer>

class QAction;
class QTextureDialog;
class QWidget;

/// The Qt side of the library's menu entries: owns the "Texture Preview" and "About Texture
/// Module" actions and the one preview dialog they share. Lives inside the library interface.
class QTextureStuff : public QObject {
    Q_OBJECT

public:
    explicit QTextureStuff(QObject* parent = nullptr);
    ~QTextureStuff() override;

    /// Creates both actions, connects them and adds them to `menu`: preview first, then about.
    void AddMenuActions(QWidget* menu);
    /// Takes both actions off `menu`; they stay owned by this object.
    void RemoveMenuActions(QWidget* menu);
    /// Closes and deletes the preview dialog, if one was ever opened.
    void Close();

    /// The preview dialog, or null before the first "Texture Preview" and after Close.
    QTextureDialog* GetDialog() const;

public slots:
    /// Opens the preview dialog, making it on first use; later triggers show the same one.
    void OnActionTextureDialog();
    /// Shows the modal about box.
    void OnActionAboutTexture();

private:
    QAction* mPreviewAction = nullptr;
    QAction* mAboutAction = nullptr;
    // Guarded: the dialog's parent is the host's main window, which may delete it first.
    QPointer<QTextureDialog> mDialog;
};
