#include "frames/FramesScreens.h"

#include "frames/CollageViewController.h"
#include "frames/GridViewController.h"
#include "platform/Storyboard.h"

void registerFramesScreens() {
    const QString board = QStringLiteral("Main");
    Storyboard::registerController(board, QStringLiteral("GridViewController"),
                                   [] { return new GridViewController; });
    Storyboard::registerController(board, QStringLiteral("CollageViewController"),
                                   [] { return new CollageViewController; });
}
