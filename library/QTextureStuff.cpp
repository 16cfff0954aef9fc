#include "library/QTextureStuff.h"

#include <QAction>
#include <QMessageBox>
#include <QWidget>

#include "host/widgets/Manager.h"
#include "ui/QTextureDialog.h"

namespace {

const char* const kAboutText = QT_TRANSLATE_NOOP(
    "QTextureStuff",
    "Texture adds procedural textures to the node graph: fractal and cellular noise, "
    "patterns, images, coordinate and value modifiers and combiners, rendered onto a plane "
    "or onto the UV layout of a 3D scene.\n\n"
    "A texture travels along the graph as a tree of noise modules and is only sampled by "
    "the render nodes and the preview. The module's own noise engine compiles each tree into "
    "immutable evaluation elements and fills images line by line on one worker thread per "
    "processor, with strict floating point so that every build renders the same values.");

}  // namespace

QTextureStuff::QTextureStuff(QObject* parent) : QObject(parent) {}

QTextureStuff::~QTextureStuff() {
    Close();
}

QTextureDialog* QTextureStuff::GetDialog() const {
    return mDialog.data();
}

void QTextureStuff::AddMenuActions(QWidget* menu) {
    mPreviewAction = new QAction(this);
    mPreviewAction->setText(tr("Texture Preview"));
    connect(mPreviewAction, &QAction::triggered, this, &QTextureStuff::OnActionTextureDialog);
    mAboutAction = new QAction(this);
    mAboutAction->setText(tr("About Texture Module"));
    connect(mAboutAction, &QAction::triggered, this, &QTextureStuff::OnActionAboutTexture);
    menu->addAction(mPreviewAction);
    menu->addAction(mAboutAction);
}

void QTextureStuff::RemoveMenuActions(QWidget* menu) {
    menu->removeAction(mPreviewAction);
    menu->removeAction(mAboutAction);
}

void QTextureStuff::Close() {
    if (mDialog == nullptr)
        return;
    mDialog->close();
    delete mDialog;
    mDialog = nullptr;
}

void QTextureStuff::OnActionTextureDialog() {
    if (mDialog == nullptr)
        mDialog = new QTextureDialog(Manager::Get()->GetMainWidget());
    mDialog->show();
}

void QTextureStuff::OnActionAboutTexture() {
    QMessageBox::information(nullptr, tr("About Texture Module"), tr(kAboutText), QMessageBox::Ok);
}
