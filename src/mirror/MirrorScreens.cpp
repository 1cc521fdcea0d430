#include "mirror/MirrorScreens.h"

#include "mirror/MirrorVController.h"
#include "platform/Storyboard.h"

void registerMirrorScreens() {
    Storyboard::registerController(QStringLiteral("Main"), QStringLiteral("MirrorVController"),
                                   [] { return new MirrorVController; });
}
