#pragma once

#include <QImage>

class Image;

/// A host image as a picture for the screen: rows flipped (the host's row 0 is the bottom
/// row), channels clamped to 0...1 and rounded to 8 bits, opacity kept unassociated.
QImage ToQImage(const Image& image);
