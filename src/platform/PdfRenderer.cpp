#include "platform/PdfRenderer.h"

#include <QSaveFile>
#include <QTemporaryFile>
#include <cmath>
#include <hpdf.h>

bool PdfRaster::isValid() const {
    const qint64 components = space == Space::deviceCMYK ? 4 : 3;
    return size.width() > 0 && size.height() > 0 &&
           samples.size() == qint64(size.width()) * size.height() * components;
}

struct PdfRenderer::Context::State {
    HPDF_Doc doc = nullptr;
    HPDF_Page page = nullptr;
    QSizeF bounds;
    QColor stroke = Qt::black;
    HPDF_STATUS firstError = HPDF_OK;
    HPDF_STATUS detail = 0;
};

namespace {

void recordError(HPDF_STATUS error, HPDF_STATUS detail, void* userData) {
    auto* state = static_cast<PdfRenderer::Context::State*>(userData);
    if (state->firstError == HPDF_OK) {
        state->firstError = error;
        state->detail = detail;
    }
}

struct DocFreer {
    void operator()(HPDF_Doc doc) const { HPDF_Free(doc); }
};

QString errorText(HPDF_STATUS error, HPDF_STATUS detail) {
    return QStringLiteral("libharu error 0x%1 (detail %2)").arg(error, 4, 16, QLatin1Char('0')).arg(detail);
}

// Adds the output intent of a print file: the profile as an ICC stream and the intent dictionary
// naming it, in the catalogue's OutputIntents.
void addOutputIntent(HPDF_Doc doc, const QByteArray& profile, int components, const QString& identifier) {
    // libharu reads profiles from files only.
    QTemporaryFile file;
    if (!file.open() || file.write(profile) != profile.size() || !file.flush())
        return;
    HPDF_OutputIntent icc =
        HPDF_LoadIccProfileFromFile(doc, QFile::encodeName(file.fileName()).constData(), components);
    if (!icc)
        return;
    HPDF_Dict intent = HPDF_Dict_New(doc->mmgr);
    if (!intent || HPDF_Xref_Add(doc->xref, intent) != HPDF_OK)
        return;
    const QByteArray name = identifier.toLatin1();
    HPDF_Dict_AddName(intent, "Type", "OutputIntent");
    HPDF_Dict_AddName(intent, "S", "GTS_PDFX");
    HPDF_Dict_Add(intent, "OutputConditionIdentifier", HPDF_String_New(doc->mmgr, name.constData(), nullptr));
    HPDF_Dict_Add(intent, "Info", HPDF_String_New(doc->mmgr, name.constData(), nullptr));
    HPDF_Dict_Add(intent, "DestOutputProfile", icc);
    HPDF_Array intents = HPDF_Array_New(doc->mmgr);
    HPDF_Array_Add(intents, intent);
    HPDF_Dict_Add(doc->catalog, "OutputIntents", intents);
}

} // namespace

PdfRenderer::PdfRenderer(QSizeF bounds) : bounds_(bounds) {}

void PdfRenderer::setOutputIntent(QByteArray iccProfile, int components, QString identifier) {
    intentProfile_ = std::move(iccProfile);
    intentComponents_ = components;
    intentIdentifier_ = std::move(identifier);
}

PdfRenderer::Result PdfRenderer::writePDF(const QString& path, const std::function<void(Context&)>& actions) {
    Result result;
    const double w = bounds_.width();
    const double h = bounds_.height();
    if (!std::isfinite(w) || !std::isfinite(h) || w < 1 || h < 1 || w > kMaxPageSide || h > kMaxPageSide) {
        result.error =
            QStringLiteral("The page size %1 × %2 is outside 1…%3 points").arg(w).arg(h).arg(kMaxPageSide);
        return result;
    }
    Context::State state;
    state.bounds = bounds_;
    std::unique_ptr<_HPDF_Doc_Rec, DocFreer> doc(HPDF_New(recordError, &state));
    if (!doc) {
        result.error = QStringLiteral("libharu could not start a document");
        return result;
    }
    state.doc = doc.get();
    HPDF_SetCompressionMode(doc.get(), HPDF_COMP_ALL);
    HPDF_SetInfoAttr(doc.get(), HPDF_INFO_PRODUCER, "Lumivex");
    if (!intentProfile_.isEmpty())
        addOutputIntent(doc.get(), intentProfile_, intentComponents_, intentIdentifier_);

    Context context(&state);
    if (actions)
        actions(context);
    if (!state.page)
        context.beginPage(); // a document needs a page
    if (state.firstError == HPDF_OK)
        HPDF_SaveToStream(doc.get());
    if (state.firstError != HPDF_OK) {
        result.error = errorText(state.firstError, state.detail);
        return result;
    }
    QByteArray bytes(static_cast<qsizetype>(HPDF_GetStreamSize(doc.get())), Qt::Uninitialized);
    HPDF_UINT32 length = static_cast<HPDF_UINT32>(bytes.size());
    HPDF_ResetStream(doc.get());
    HPDF_ReadFromStream(doc.get(), reinterpret_cast<HPDF_BYTE*>(bytes.data()), &length);
    bytes.truncate(length);

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        result.error = path + QStringLiteral(": ") + file.errorString();
        return result;
    }
    result.ok = true;
    return result;
}

void PdfRenderer::Context::beginPage() {
    state_->page = HPDF_AddPage(state_->doc);
    if (!state_->page)
        return;
    HPDF_Page_SetWidth(state_->page, static_cast<HPDF_REAL>(state_->bounds.width()));
    HPDF_Page_SetHeight(state_->page, static_cast<HPDF_REAL>(state_->bounds.height()));
}

void PdfRenderer::Context::drawImage(const PdfRaster& raster, const QRectF& rect) {
    if (!state_->page || !raster.isValid())
        return;
    const bool cmyk = raster.space == PdfRaster::Space::deviceCMYK;
    HPDF_Image image = HPDF_LoadRawImageFromMem(
        state_->doc, reinterpret_cast<const HPDF_BYTE*>(raster.samples.constData()),
        static_cast<HPDF_UINT>(raster.size.width()), static_cast<HPDF_UINT>(raster.size.height()),
        cmyk ? HPDF_CS_DEVICE_CMYK : HPDF_CS_DEVICE_RGB, 8);
    if (!image)
        return;
    const double pageHeight = state_->bounds.height();
    HPDF_Page_DrawImage(state_->page, image, static_cast<HPDF_REAL>(rect.x()),
                        static_cast<HPDF_REAL>(pageHeight - rect.y() - rect.height()),
                        static_cast<HPDF_REAL>(rect.width()), static_cast<HPDF_REAL>(rect.height()));
}

void PdfRenderer::Context::setStrokeColor(const QColor& color) {
    state_->stroke = color;
}

void PdfRenderer::Context::strokeRect(const QRectF& rect, double lineWidth) {
    if (!state_->page)
        return;
    const QColor c = state_->stroke.toRgb();
    HPDF_Page_SetRGBStroke(state_->page, static_cast<HPDF_REAL>(c.redF()), static_cast<HPDF_REAL>(c.greenF()),
                           static_cast<HPDF_REAL>(c.blueF()));
    HPDF_Page_SetLineWidth(state_->page, static_cast<HPDF_REAL>(lineWidth));
    HPDF_Page_Rectangle(state_->page, static_cast<HPDF_REAL>(rect.x()),
                        static_cast<HPDF_REAL>(state_->bounds.height() - rect.y() - rect.height()),
                        static_cast<HPDF_REAL>(rect.width()), static_cast<HPDF_REAL>(rect.height()));
    HPDF_Page_Stroke(state_->page);
}

void PdfRenderer::Context::drawText(const QString& text, const QRectF& rect, double fontSize,
                                    const QColor& color) {
    if (!state_->page)
        return;
    HPDF_Font font = HPDF_GetFont(state_->doc, "Helvetica-Bold", "WinAnsiEncoding");
    if (!font)
        return;
    const QColor c = color.toRgb();
    const double ascent = HPDF_Font_GetAscent(font) / 1000.0 * fontSize;
    const QByteArray latin = text.toLatin1();
    HPDF_Page_BeginText(state_->page);
    HPDF_Page_SetFontAndSize(state_->page, font, static_cast<HPDF_REAL>(fontSize));
    HPDF_Page_SetRGBFill(state_->page, static_cast<HPDF_REAL>(c.redF()), static_cast<HPDF_REAL>(c.greenF()),
                         static_cast<HPDF_REAL>(c.blueF()));
    HPDF_Page_TextOut(state_->page, static_cast<HPDF_REAL>(rect.x()),
                      static_cast<HPDF_REAL>(state_->bounds.height() - rect.y() - ascent), latin.constData());
    HPDF_Page_EndText(state_->page);
}
