#include "export/ExportScreens.h"

#include "export/JPGController.h"
#include "export/MP4VideoController.h"
#include "export/PDFPrintController.h"
#include "export/PDFStandardController.h"
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
    Storyboard::registerController(board, QStringLiteral("PDFStandardController"),
                                   [] { return new PDFStandardController; });
    Storyboard::registerController(board, QStringLiteral("PDFPrintController"),
                                   [] { return new PDFPrintController; });
    Storyboard::registerController(board, QStringLiteral("ColorProfileController"),
                                   [] { return new ColorProfileController; });
    Storyboard::registerController(board, QStringLiteral("MP4VideoController"),
                                   [] { return new MP4VideoController; });
    Storyboard::registerController(board, QStringLiteral("TiffController"),
                                   [] { return new TiffController; });
}
