#include "apps/texture-studio/BakeView.h"

#include <algorithm>
#include <memory>

#include <QLabel>
#include <QMatrix4x4>
#include <QMouseEvent>
#include <QOffscreenSurface>
#include <QOpenGLBuffer>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLShaderProgram>
#include <QOpenGLTexture>
#include <QOpenGLWidget>
#include <QStackedLayout>
#include <QWheelEvent>

namespace {

constexpr const char* kVertexShader = R"(
attribute vec3 position;
attribute vec3 normal;
attribute vec2 uv;
uniform mat4 projection;
uniform mat4 modelView;
varying vec2 surfaceUv;
varying vec3 surfaceNormal;
void main() {
    surfaceUv = uv;
    surfaceNormal = (modelView * vec4(normal, 0.0)).xyz;
    gl_Position = projection * modelView * vec4(position, 1.0);
}
)";

// Faces are lit from the viewer's side, both faces alike, so that open meshes read too.
constexpr const char* kFragmentShader = R"(
uniform sampler2D image;
varying vec2 surfaceUv;
varying vec3 surfaceNormal;
void main() {
    float light = 0.35 + 0.65 * abs(normalize(surfaceNormal).z);
    vec4 colour = texture2D(image, surfaceUv);
    gl_FragColor = vec4(colour.rgb * light, 1.0);
}
)";

}  // namespace

/// Draws the model with OpenGL; owned by the view, which keeps what it shows.
class BakeCanvas : public QOpenGLWidget, protected QOpenGLFunctions {
public:
    explicit BakeCanvas(QWidget* parent) : QOpenGLWidget(parent) {
        setMinimumSize(160, 160);
        setToolTip(tr("Drag to turn the model, wheel to zoom"));
    }
    ~BakeCanvas() override {
        makeCurrent();
        mTexture.reset();
        mBuffer.destroy();
        doneCurrent();
    }

    void Show(const BakeModel& model, const QImage& texture) {
        mModel = model;
        mImage = texture;
        mUploaded = false;
        update();
    }

protected:
    void initializeGL() override {
        initializeOpenGLFunctions();
        mProgram.addShaderFromSourceCode(QOpenGLShader::Vertex, kVertexShader);
        mProgram.addShaderFromSourceCode(QOpenGLShader::Fragment, kFragmentShader);
        mProgram.link();
        mBuffer.create();
        glEnable(GL_DEPTH_TEST);
    }

    void paintGL() override {
        glClearColor(0.16f, 0.17f, 0.19f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        if (mModel.GetVertexCount() == 0 || !mProgram.isLinked())
            return;
        if (!mUploaded)
            Upload();

        QMatrix4x4 projection;
        const float aspect =
            static_cast<float>(width()) / static_cast<float>(std::max(1, height()));
        projection.perspective(40.0f, aspect, mModel.radius * 0.05f, mModel.radius * 20.0f);
        QMatrix4x4 modelView;
        modelView.translate(0.0f, 0.0f, -mModel.radius * 2.6f / mZoom);
        modelView.rotate(mPitch, 1.0f, 0.0f, 0.0f);
        modelView.rotate(mYaw, 0.0f, 1.0f, 0.0f);
        modelView.translate(-mModel.centre[0], -mModel.centre[1], -mModel.centre[2]);

        mProgram.bind();
        mProgram.setUniformValue("projection", projection);
        mProgram.setUniformValue("modelView", modelView);
        mProgram.setUniformValue("image", 0);
        mTexture->bind(0);
        mBuffer.bind();
        const int count = mModel.GetVertexCount();
        const int normals = count * 3 * static_cast<int>(sizeof(float));
        mProgram.enableAttributeArray("position");
        mProgram.enableAttributeArray("normal");
        mProgram.enableAttributeArray("uv");
        mProgram.setAttributeBuffer("position", GL_FLOAT, 0, 3);
        mProgram.setAttributeBuffer("normal", GL_FLOAT, normals, 3);
        mProgram.setAttributeBuffer("uv", GL_FLOAT, 2 * normals, 2);
        glDrawArrays(GL_TRIANGLES, 0, count);
        mBuffer.release();
        mProgram.release();
    }

    void mousePressEvent(QMouseEvent* event) override { mLast = event->position(); }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!(event->buttons() & Qt::LeftButton))
            return;
        const QPointF delta = event->position() - mLast;
        mLast = event->position();
        mYaw += static_cast<float>(delta.x()) * 0.5f;
        mPitch = std::clamp(mPitch + static_cast<float>(delta.y()) * 0.5f, -89.0f, 89.0f);
        update();
    }
    void wheelEvent(QWheelEvent* event) override {
        mZoom = std::clamp(mZoom * std::pow(1.15f, event->angleDelta().y() / 120.0f), 0.2f, 20.0f);
        update();
    }

private:
    void Upload() {
        mUploaded = true;
        std::vector<float> data;
        data.reserve(mModel.positions.size() * 2 + mModel.uvs.size());
        data.insert(data.end(), mModel.positions.begin(), mModel.positions.end());
        data.insert(data.end(), mModel.normals.begin(), mModel.normals.end());
        data.insert(data.end(), mModel.uvs.begin(), mModel.uvs.end());
        mBuffer.bind();
        mBuffer.allocate(data.data(), static_cast<int>(data.size() * sizeof(float)));
        mBuffer.release();
        // The image's bottom row is v = 0; QOpenGLTexture mirrors the image to match.
        mTexture = std::make_unique<QOpenGLTexture>(
            mImage.isNull() ? QImage(1, 1, QImage::Format_RGB32) : mImage);
        mTexture->setMinificationFilter(QOpenGLTexture::LinearMipMapLinear);
        mTexture->setMagnificationFilter(QOpenGLTexture::Linear);
    }

    BakeModel mModel;
    QImage mImage;
    bool mUploaded = false;
    QOpenGLShaderProgram mProgram;
    QOpenGLBuffer mBuffer{QOpenGLBuffer::VertexBuffer};
    std::unique_ptr<QOpenGLTexture> mTexture;
    QPointF mLast;
    float mYaw = 30.0f;
    float mPitch = 20.0f;
    float mZoom = 1.0f;
};

BakeView::BakeView(QWidget* parent) : QWidget(parent) {
    setObjectName("m_bake_view");
    mStack = new QStackedLayout(this);
    mMessage = new QLabel(this);
    mMessage->setAlignment(Qt::AlignCenter);
    mMessage->setWordWrap(true);
    mMessage->setMargin(12);
    mStack->addWidget(mMessage);
    if (IsOpenGlAvailable()) {
        mCanvas = new BakeCanvas(this);
        mStack->addWidget(mCanvas);
    }
    SetMessage(tr("Display a node that bakes onto a mesh (Render 3D) to see the bake here"));
}

bool BakeView::IsOpenGlAvailable() {
    static const bool available = [] {
        QOpenGLContext context;
        if (!context.create())
            return false;
        QOffscreenSurface surface;
        surface.create();
        return surface.isValid() && context.makeCurrent(&surface);
    }();
    return available;
}

void BakeView::Show(const BakeModel& model, const QImage& texture) {
    mModel = model;
    mTexture = texture;
    if (mCanvas == nullptr) {
        mMessage->setText(tr("%1: %2 triangles baked. The 3D view needs OpenGL, which this "
                             "session does not offer (no display or no GPU driver).")
                              .arg(model.caption)
                              .arg(model.GetVertexCount() / 3));
        mStack->setCurrentWidget(mMessage);
        return;
    }
    mCanvas->Show(model, texture);
    mCanvas->setToolTip(tr("%1 - drag to turn the model, wheel to zoom").arg(model.caption));
    mStack->setCurrentWidget(mCanvas);
}

void BakeView::SetMessage(const QString& message) {
    mModel = BakeModel();
    mTexture = QImage();
    mMessage->setText(message);
    mStack->setCurrentWidget(mMessage);
}

QString BakeView::GetMessage() const {
    return mStack->currentWidget() == mMessage ? mMessage->text() : QString();
}
