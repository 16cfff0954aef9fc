#pragma once

#include <QImage>
#include <QWidget>

#include "apps/texture-studio/BakeModel.h"

class QLabel;
class QStackedLayout;
class BakeCanvas;

/// The 3D view of a bake: a render node's mesh wearing the image the node baked, turned by
/// dragging with the left button (orbit) and zoomed with the wheel. Where the platform offers
/// no OpenGL (a headless session, no GPU driver) it shows a message saying so instead.
class BakeView : public QWidget {
    Q_OBJECT

public:
    explicit BakeView(QWidget* parent = nullptr);

    /// Shows `model` wearing `texture` (the baked image, row 0 at the top).
    void Show(const BakeModel& model, const QImage& texture);
    /// Shows `message` instead of a model.
    void SetMessage(const QString& message);

    const BakeModel& GetModel() const { return mModel; }
    const QImage& GetTexture() const { return mTexture; }
    /// The message shown, or empty while a model shows.
    QString GetMessage() const;
    /// False where this session cannot draw with OpenGL; the view then only shows messages.
    static bool IsOpenGlAvailable();

private:
    BakeModel mModel;
    QImage mTexture;
    QStackedLayout* mStack = nullptr;
    QLabel* mMessage = nullptr;
    BakeCanvas* mCanvas = nullptr;
};
