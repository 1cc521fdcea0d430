#include "export/ExportScreens.h"

#include "export/RateShareController.h"
#include "export/SavingTypeController.h"
#include "platform/Storyboard.h"

void registerExportScreens() {
    const QString board = QStringLiteral("Main");
    Storyboard::registerController(board, QStringLiteral("RateShareController"),
                                   [] { return new RateShareController; });
    Storyboard::registerController(board, QStringLiteral("SavingTypeController"),
                                   [] { return new SavingTypeController; });
}
