#pragma once

class QLabel;
class QPushButton;
class QWidget;

// The look shared by the catalogue screens: a dark page with a title bar and a back chevron.
namespace OverlayStyle {

constexpr int topBarHeight = 56;

void styleDarkPage(QWidget* page);
QPushButton* makeBackButton(QWidget* parent);
// A centred title in the catalogue's title font at 18 points.
QLabel* makeTitleLabel(QWidget* parent);

} // namespace OverlayStyle
