#include "export/ExportScreens.h"

#include "export/JPGController.h"
#include "export/PNGController.h"
#include "export/RateShareController.h"
#include "export/SVGController.h"
#include "export/SavingTypeController.h"
#include "export/TiffController.h"
#include "platform/Storyboard.h"

void registerExportScreens() {
    const QString board = QStringLiteral("Main");
    Storyboard::registerController(board, QStringLiteral("RateShareController"),
                                   [] { return new RateShareController; });
    Storyboard::registerController(board, QStringLiteral("SavingTypeController"),
                                   [] { return new SavingTypeController; });
    Storyboard::registerController(board, QStringLiteral("JPGController"), [] { return new JPGController; });
    Storyboard::registerController(board, QStringLiteral("PNGController"), [] { return new PNGController; });
    Storyboard::registerController(board, QStringLiteral("SVGController"), [] { return new SVGController; });
    Storyboard::registerController(board, QStringLiteral("TiffController"),
                                   [] { return new TiffController; });
}
