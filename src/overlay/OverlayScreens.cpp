#include "overlay/OverlayScreens.h"

#include "overlay/StickerCategoryController.h"
#include "overlay/StickerViewController.h"
#include "overlay/TextEditViewController.h"
#include "platform/Storyboard.h"

void registerOverlayScreens() {
    const QString board = QStringLiteral("Main");
    Storyboard::registerController(board, QStringLiteral("StickerCategoryController"),
                                   [] { return new StickerCategoryController; });
    Storyboard::registerController(board, QStringLiteral("StickerViewController"),
                                   [] { return new StickerViewController; });
    Storyboard::registerController(board, QStringLiteral("TextEditViewController"),
                                   [] { return new TextEditViewController; });
}
