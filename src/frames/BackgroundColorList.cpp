#include "frames/BackgroundColorList.h"

namespace {

constexpr Color rgb255(double red, double green, double blue) {
    return Color(red / 255.0, green / 255.0, blue / 255.0, 1.0);
}

} // namespace

const std::vector<Color>& backgroundColorList() {
    // One green (entry 36) is written as a component already, not as a number to divide.
    static const std::vector<Color> colors{
        rgb255(340, 82, 78),
        rgb255(77, 70, 78),
        rgb255(180, 38, 92),
        rgb255(123, 26, 70),
        rgb255(200, 26, 90),
        rgb255(143, 36, 19),
        rgb255(349, 41, 99),
        rgb255(264, 39, 59),
        rgb255(201, 63, 42),
        rgb255(130, 46, 129),
        rgb255(206, 87, 12),
        rgb255(210, 1, 92),
        rgb255(11, 29, 76),
        rgb255(201, 74, 75),
        rgb255(177, 91, 48),
        rgb255(204, 2, 96),
        rgb255(49, 48, 87),
        rgb255(102, 2, 92),
        rgb255(32, 62, 80),
        rgb255(338, 31, 46),
        rgb255(180, 50, 64),
        rgb255(99, 6, 98),
        rgb255(204, 18, 33),
        rgb255(225, 225, 225),
        rgb255(67, 6, 51),
        rgb255(39, 11, 85),
        rgb255(309, 6, 88),
        rgb255(46, 12, 98),
        rgb255(164, 41, 15),
        rgb255(196, 20, 29),
        rgb255(180, 50, 64),
        rgb255(71, 13, 96),
        rgb255(81, 25, 94),
        rgb255(154, 13, 100),
        rgb255(16, 30, 93),
        rgb255(342, 32, 89),
        Color(254 / 255.0, 0.18181818181818182, 251 / 255.0),
        rgb255(254, 45, 45),
        rgb255(146, 47, 48),
        rgb255(238, 52, 38),
        rgb255(99, 34, 63),
        rgb255(22, 100, 77),
        rgb255(34, 34, 34),
        rgb255(175, 59, 23),
        rgb255(336, 65, 50),
        rgb255(60, 62, 93),
        rgb255(28, 57, 75),
        rgb255(23, 60, 94),
        rgb255(351, 36, 96),
        rgb255(235, 74, 61),
        rgb255(7, 87, 100),
    };
    return colors;
}
