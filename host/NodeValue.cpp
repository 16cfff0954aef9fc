#include "host/NodeValue.h"

#include <utility>

#include "host/Image.h"
#include "host/TextureHandle.h"

NodeValue::~NodeValue() {
    Release();
}

NodeValue::NodeValue(const NodeValue& other)
    : mType(other.mType),
      mNumber(other.mNumber),
      mBool(other.mBool),
      mIndex(other.mIndex),
      mText(other.mText),
      mColor(other.mColor),
      mPoint(other.mPoint),
      mFrame(other.mFrame),
      mMesh(other.mMesh),
      mImage(other.mImage),
      mTexture(other.mTexture) {
    Retain();
}

NodeValue& NodeValue::operator=(const NodeValue& other) {
    if (this == &other)
        return *this;
    // Take the new references before dropping the old ones: `other` may be the only holder
    // of an image this value also holds.
    NodeValue copy(other);
    Release();
    mType = copy.mType;
    mNumber = copy.mNumber;
    mBool = copy.mBool;
    mIndex = copy.mIndex;
    mText = std::move(copy.mText);
    mColor = copy.mColor;
    mPoint = copy.mPoint;
    mFrame = copy.mFrame;
    mMesh = copy.mMesh;
    mImage = std::exchange(copy.mImage, nullptr);
    mTexture = std::exchange(copy.mTexture, nullptr);
    return *this;
}

NodeValue NodeValue::Number(double value) {
    NodeValue v;
    v.mType = kNumber;
    v.mNumber = value;
    return v;
}

NodeValue NodeValue::Bool(bool value) {
    NodeValue v;
    v.mType = kBool;
    v.mBool = value;
    return v;
}

NodeValue NodeValue::Choice(int index, const std::string& text) {
    NodeValue v;
    v.mType = kChoice;
    v.mIndex = index;
    v.mText = text;
    return v;
}

NodeValue NodeValue::Color(const Rgbo& value) {
    NodeValue v;
    v.mType = kColor;
    v.mColor = value;
    return v;
}

NodeValue NodeValue::FromPoint(const Point& value) {
    NodeValue v;
    v.mType = kPoint;
    v.mPoint = value;
    return v;
}

NodeValue NodeValue::FromFrame(const Frame& value) {
    NodeValue v;
    v.mType = kFrame;
    v.mFrame = value;
    return v;
}

NodeValue NodeValue::Mesh(const MeshReference& value) {
    NodeValue v;
    v.mType = kMesh;
    v.mMesh = value;
    return v;
}

NodeValue NodeValue::Text(const std::string& value) {
    NodeValue v;
    v.mType = kText;
    v.mText = value;
    return v;
}

NodeValue NodeValue::FromImage(Image* image) {
    NodeValue v;
    if (image == nullptr)
        return v;
    v.mType = kImage;
    v.mImage = image;
    image->AddRef();
    return v;
}

NodeValue NodeValue::AdoptTexture(TextureHandle* handle) {
    NodeValue v;
    if (handle == nullptr)
        return v;
    v.mType = kTexture;
    v.mTexture = handle;
    return v;
}

const char* NodeValue::GetTypeName(unsigned type) {
    switch (type) {
        case kNone:
            return "none";
        case kNumber:
            return "number";
        case kBool:
            return "bool";
        case kChoice:
            return "choice";
        case kColor:
            return "colour";
        case kPoint:
            return "point";
        case kFrame:
            return "frame";
        case kMesh:
            return "mesh";
        case kImage:
            return "image";
        case kTexture:
            return "texture";
        case kText:
            return "text";
        default:
            return "unknown";
    }
}

bool operator==(const NodeValue& l, const NodeValue& r) {
    if (l.mType != r.mType)
        return false;
    switch (l.mType) {
        case NodeValue::kNone:
            return true;
        case NodeValue::kNumber:
            return l.mNumber == r.mNumber;
        case NodeValue::kBool:
            return l.mBool == r.mBool;
        case NodeValue::kChoice:
            return l.mIndex == r.mIndex && l.mText == r.mText;
        case NodeValue::kColor:
            return l.mColor == r.mColor;
        case NodeValue::kPoint:
            return l.mPoint == r.mPoint;
        case NodeValue::kFrame:
            return l.mFrame == r.mFrame;
        case NodeValue::kMesh:
            return l.mMesh == r.mMesh;
        case NodeValue::kImage:
            return l.mImage == r.mImage;
        case NodeValue::kTexture:
            return l.mTexture == r.mTexture;
        case NodeValue::kText:
            return l.mText == r.mText;
        default:
            return false;
    }
}

void NodeValue::Release() {
    if (mImage != nullptr)
        std::exchange(mImage, nullptr)->Release();
    if (mTexture != nullptr)
        std::exchange(mTexture, nullptr)->Release();
}

void NodeValue::Retain() {
    if (mImage != nullptr)
        mImage->AddRef();
    if (mTexture != nullptr)
        mTexture->Retain();
}
