#pragma once

#include <QImage>
#include <algorithm>

// A picture whose turn and mirror can be read back after any decoder: grey, with a red block at the top
// left and a green one at the top right. The blocks are big enough to survive JPEG, HEIC and an 8×
// reduction.
inline QImage markedCorners(int width, int height, int block = 0) {
    if (block <= 0)
        block = std::max(16, width / 20);
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::gray);
    for (int y = 0; y < block; ++y)
        for (int x = 0; x < block; ++x) {
            image.setPixel(x, y, qRgb(255, 0, 0));
            image.setPixel(width - 1 - x, y, qRgb(0, 255, 0));
        }
    return image;
}

inline bool isRed(QRgb c) {
    return qRed(c) > 190 && qGreen(c) < 70 && qBlue(c) < 70;
}

inline bool isGreen(QRgb c) {
    return qGreen(c) > 190 && qRed(c) < 70 && qBlue(c) < 70;
}
