#pragma once

#include <QString>

class QLabel;
class QPushButton;
class QWidget;

// Pieces both tutorial screens are made of, so the pages look like one sequence.
namespace TutorialStyle {

constexpr int kSideMargin = 32;
constexpr int kButtonHeight = 56;
constexpr int kBackButtonSize = 32;
// The chevron inside it, in points: about half the circle, as on the phone.
constexpr int kBackChevronSize = 16;

QPushButton* makeBackButton(QWidget* parent);
QPushButton* makeContinueButton(const QString& title, QWidget* parent);
QLabel* makeTitleLabel(const QString& text, const QString& objectName, QWidget* parent);
QLabel* makeSubtitleLabel(const QString& text, QWidget* parent);
// The dark page background every tutorial screen shares.
QString pageStyleSheet();

} // namespace TutorialStyle
