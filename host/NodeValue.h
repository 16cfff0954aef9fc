#pragma once

#include <string>

#include "host/HostTypes.h"

class Image;
struct TextureHandle;

/// The value on one plug. Known as Node::Value.
///
/// The type code says which payload field is meaningful. A value holding an image or a
/// texture handle owns one reference to it: copying takes another, destruction releases it.
class NodeValue {
public:
    enum Type : unsigned {
        kNone = 0,
        kNumber = 1,
        kBool = 2,
        kChoice = 3,
        kColor = 4,
        kPoint = 5,
        kFrame = 6,
        kMesh = 7,
        kImage = 8,
        kTexture = 9,
        kText = 10,
    };

    NodeValue() = default;
    ~NodeValue();
    NodeValue(const NodeValue& other);
    NodeValue& operator=(const NodeValue& other);

    static NodeValue Number(double value);
    static NodeValue Bool(bool value);
    /// A choice carries both the item's text and its index in the attribute's item list.
    static NodeValue Choice(int index, const std::string& text);
    static NodeValue Color(const Rgbo& value);
    static NodeValue FromPoint(const Point& value);
    static NodeValue FromFrame(const Frame& value);
    static NodeValue Mesh(const MeshReference& value);
    static NodeValue Text(const std::string& value);
    /// Takes a new reference to `image` (which may be null: the value then has type kNone).
    static NodeValue FromImage(Image* image);
    /// Adopts the caller's reference to `handle` (null gives type kNone).
    static NodeValue AdoptTexture(TextureHandle* handle);

    /// The type code's name: "none", "number", "bool", "choice", "colour", "point", "frame",
    /// "mesh", "image", "texture" or "text" (for messages).
    static const char* GetTypeName(unsigned type);

    unsigned GetType() const { return mType; }
    bool IsPresent() const { return mType != kNone; }

    double GetNumber() const { return mNumber; }
    bool GetBool() const { return mBool; }
    int GetChoiceIndex() const { return mIndex; }
    const std::string& GetText() const { return mText; }
    const Rgbo& GetColor() const { return mColor; }
    const Point& GetPoint() const { return mPoint; }
    const Frame& GetFrame() const { return mFrame; }
    const MeshReference& GetMesh() const { return mMesh; }
    Image* GetImage() const { return mImage; }
    TextureHandle* GetTexture() const { return mTexture; }

    friend bool operator==(const NodeValue& l, const NodeValue& r);

private:
    void Release();
    void Retain();

    unsigned mType = kNone;
    double mNumber = 0.0;
    bool mBool = false;
    int mIndex = 0;
    std::string mText;
    Rgbo mColor{0, 0, 0, 0};
    Point mPoint;
    Frame mFrame;
    MeshReference mMesh;
    Image* mImage = nullptr;
    TextureHandle* mTexture = nullptr;
};
