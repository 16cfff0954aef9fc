#include "host/widgets/QGradientEditor.h"

#include <algorithm>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "host/widgets/QColorButton.h"
#include "host/widgets/QGradientBar.h"

namespace {

QColor ToQColor(const Rgbo& c) {
    return QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                            static_cast<float>(c.blue), static_cast<float>(c.opacity));
}

Rgbo ToRgbo(const QColor& c) {
    return {c.redF(), c.greenF(), c.blueF(), c.alphaF()};
}

/// Sorted by position (keeping the order of equal ones), positions within 0...1, two stops
/// at least.
VertexGradient Normalized(VertexGradient gradient) {
    auto& stops = gradient.vertices;
    for (auto& stop : stops)
        stop.position = std::clamp(stop.position, 0.0, 1.0);
    while (stops.size() < 2) {
        const bool hasStart = std::any_of(stops.begin(), stops.end(),
                                          [](const auto& s) { return s.position == 0.0; });
        if (!hasStart)
            stops.push_back({0.0, Rgbo{0, 0, 0, 1}});
        else
            stops.push_back({1.0, Rgbo{1, 1, 1, 1}});
    }
    std::stable_sort(stops.begin(), stops.end(),
                     [](const auto& a, const auto& b) { return a.position < b.position; });
    if (gradient.interpolation < VertexGradient::kStep ||
        gradient.interpolation > VertexGradient::kSmooth)
        gradient.interpolation = VertexGradient::kLinear;
    return gradient;
}

}  // namespace

QGradientEditor::QGradientEditor(QWidget* parent, int options)
    : QWidget(parent), mGradient(Normalized({})) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    mBar = new QGradientBar(this);
    mBar->setObjectName("m_gradient_bar");
    layout->addWidget(mBar, 1);

    auto* controls = new QHBoxLayout;
    auto* colorLabel = new QLabel(tr("Color"), this);
    mColorButton = new QColorButton(this);
    mColorButton->setObjectName("m_stop_qcolor");
    colorLabel->setBuddy(mColorButton);
    controls->addWidget(colorLabel);
    controls->addWidget(mColorButton);
    controls->addStretch(1);
    if (options & kShowInterpolation) {
        mInterpolation = new QComboBox(this);
        mInterpolation->setObjectName("m_interpolation_qcombo");
        // Item index = interpolation mode.
        mInterpolation->addItems({tr("Step"), tr("Linear"), tr("Smooth")});
        controls->addWidget(mInterpolation);
        connect(mInterpolation, &QComboBox::activated, this, [this](int index) {
            if (index == mGradient.interpolation)
                return;
            emit colorPressed();
            VertexGradient changed = mGradient;
            changed.interpolation = index;
            changeGradient(changed);
            emit colorReleased();
        });
    }
    layout->addLayout(controls);

    connect(mColorButton, &QColorButton::colorPressed, this, &QGradientEditor::colorPressed);
    connect(mColorButton, &QColorButton::colorReleased, this, &QGradientEditor::colorReleased);
    connect(mColorButton, &QColorButton::colorChanged, this, [this](const QColor& color) {
        if (mSelected >= 0)
            setStopColor(mSelected, color);
    });
    mSelected = 0;
    syncControls();
}

QGradientEditor::~QGradientEditor() = default;

void QGradientEditor::setVertexGradient(const VertexGradient& gradient) {
    changeGradient(Normalized(gradient));
}

VertexGradient QGradientEditor::getVertexGradient() const {
    return mGradient;
}

int QGradientEditor::stopCount() const {
    return static_cast<int>(mGradient.vertices.size());
}

int QGradientEditor::selectedStop() const {
    return mSelected;
}

void QGradientEditor::setSelectedStop(int index) {
    mSelected = index >= 0 && index < stopCount() ? index : -1;
    syncControls();
}

int QGradientEditor::addStop(double position) {
    position = std::clamp(position, 0.0, 1.0);
    VertexGradient changed = mGradient;
    auto& stops = changed.vertices;
    const auto at = std::upper_bound(stops.begin(), stops.end(), position,
                                     [](double p, const auto& s) { return p < s.position; });
    const int index = static_cast<int>(at - stops.begin());
    stops.insert(at, {position, ToRgbo(colorAt(position))});
    mSelected = index;
    changeGradient(changed);
    return index;
}

int QGradientEditor::moveStop(int index, double position) {
    if (index < 0 || index >= stopCount())
        return index;
    position = std::clamp(position, 0.0, 1.0);
    VertexGradient changed = mGradient;
    auto& stops = changed.vertices;
    auto moved = stops[index];
    moved.position = position;
    stops.erase(stops.begin() + index);
    // A stop dragged onto others goes after them when it came from the left, before them when
    // it came from the right, so that dragging across never reorders equal stops by surprise.
    const auto at = moved.position >= mGradient.vertices[index].position
                        ? std::upper_bound(stops.begin(), stops.end(), position,
                                           [](double p, const auto& s) { return p < s.position; })
                        : std::lower_bound(stops.begin(), stops.end(), position,
                                           [](const auto& s, double p) { return s.position < p; });
    const int newIndex = static_cast<int>(at - stops.begin());
    stops.insert(at, moved);
    if (mSelected == index)
        mSelected = newIndex;
    changeGradient(changed);
    return newIndex;
}

double QGradientEditor::stopPosition(int index) const {
    return index >= 0 && index < stopCount() ? mGradient.vertices[index].position : 0.0;
}

QColor QGradientEditor::stopColor(int index) const {
    return index >= 0 && index < stopCount() ? ToQColor(mGradient.vertices[index].color) : QColor();
}

void QGradientEditor::setStopColor(int index, const QColor& color) {
    if (index < 0 || index >= stopCount() || !color.isValid())
        return;
    VertexGradient changed = mGradient;
    changed.vertices[index].color = ToRgbo(color);
    changeGradient(changed);
}

bool QGradientEditor::removeStop(int index) {
    if (index < 0 || index >= stopCount() || stopCount() <= 2)
        return false;
    VertexGradient changed = mGradient;
    changed.vertices.erase(changed.vertices.begin() + index);
    if (mSelected == index)
        mSelected = std::min(index, static_cast<int>(changed.vertices.size()) - 1);
    else if (mSelected > index)
        --mSelected;
    changeGradient(changed);
    return true;
}

QColor QGradientEditor::colorAt(double position) const {
    const auto& stops = mGradient.vertices;
    if (stops.empty())
        return Qt::black;
    if (position <= stops.front().position)
        return ToQColor(stops.front().color);
    if (position >= stops.back().position)
        return ToQColor(stops.back().color);
    std::size_t next = 1;
    while (next < stops.size() && stops[next].position <= position)
        ++next;
    const auto& a = stops[next - 1];
    const auto& b = stops[std::min(next, stops.size() - 1)];
    if (mGradient.interpolation == VertexGradient::kStep || b.position <= a.position)
        return ToQColor(a.color);
    double t = (position - a.position) / (b.position - a.position);
    if (mGradient.interpolation == VertexGradient::kSmooth)
        t = t * t * (3.0 - 2.0 * t);
    const auto mix = [t](double x, double y) { return x + (y - x) * t; };
    return ToQColor({mix(a.color.red, b.color.red), mix(a.color.green, b.color.green),
                     mix(a.color.blue, b.color.blue), mix(a.color.opacity, b.color.opacity)});
}

QSize QGradientEditor::sizeHint() const {
    return {280, 80};
}

QSize QGradientEditor::minimumSizeHint() const {
    return {120, 64};
}

void QGradientEditor::syncControls() {
    {
        const QSignalBlocker block(mColorButton);
        mColorButton->setEnabled(mSelected >= 0);
        if (mSelected >= 0)
            mColorButton->setColor(stopColor(mSelected));
    }
    if (mInterpolation != nullptr) {
        const QSignalBlocker block(mInterpolation);
        mInterpolation->setCurrentIndex(mGradient.interpolation);
    }
    mBar->update();
}

void QGradientEditor::changeGradient(const VertexGradient& gradient) {
    const bool changed = !(gradient == mGradient);
    mGradient = gradient;
    if (mSelected >= stopCount())
        mSelected = stopCount() - 1;
    syncControls();
    if (changed)
        emit gradientChanged();
}
