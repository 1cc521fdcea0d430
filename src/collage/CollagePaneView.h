#pragma once

#include "collage/FeatherMaskLoader.h"
#include "platform/Dispatch.h"
#include "platform/Image.h"

#include <QGraphicsObject>
#include <QImage>
#include <QPointer>
#include <QVariantAnimation>
#include <functional>
#include <optional>

class CollagePaneView;
class CheckmarkItem;

// Told when a pane is tapped; the canvas is the one listener.
class CollagePaneViewDelegate {
public:
    virtual ~CollagePaneViewDelegate() = default;
    virtual void collagePaneViewDidTap(CollagePaneView* pane) = 0;
};

// One photo of a collage: a crop window on the photo's subject, the user's move and zoom, quarter
// turns and a mirror of the picture, and a feather mask that fades the picture towards the edges.
// Geometry is in canvas points; the pane's frame is set by the canvas.
class CollagePaneView : public QGraphicsObject {
    Q_OBJECT
public:
    explicit CollagePaneView(QGraphicsItem* parent = nullptr);
    ~CollagePaneView() override;

    CollagePaneViewDelegate* delegate = nullptr;
    double maxScale = 3.0;
    double minScale = 1.0;

    // Finds a photo's subject on a worker: SubjectDetection unless a test holds the worker with its own.
    std::function<std::optional<QRectF>(const Image&)> subjectDetector;
    void setFeatherMaskBuilder(FeatherMaskLoader::Builder builder) {
        maskLoader_.builder = std::move(builder);
    }

    // The pane's place in the canvas before its own transform, and its size.
    void setFrame(const QRectF& frame);
    QRectF frame() const { return frame_; }
    QSizeF boundsSize() const { return frame_.size(); }

    bool isSelected() const { return selected_; }
    void setIsSelected(bool selected) { selected_ = selected; }

    void setImage(ImagePtr image);
    const ImagePtr& currentImage() const { return currentImage_; }
    const std::optional<QRectF>& subjectBoundingBox() const { return subjectBoundingBox_; }

    // User move and zoom; all of these act only on a selected pane.
    void translate(double dx, double dy);
    void zoom(double factor);
    void clampTranslation(bool rubberBand);
    void applyTransform();
    void rotateQuarterTurn();
    void toggleFlip();
    void resetTransform();
    // After a gesture: the translation already holds the clamped place, and the pane is drawn travelling
    // there from `from` on a spring. Another pane's gesture leaves the spring running.
    void springBack(const QPointF& from);
    // A new gesture on this pane goes on from where the pane is drawn.
    void takeOverSpringBack();
    bool isSpringingBack() const { return springBack_ != nullptr; }

    double scale() const { return scale_; }
    QPointF translation() const { return translation_; }
    void setTranslation(const QPointF& translation) { translation_ = translation; }
    int imageRotationQuarterTurns() const { return imageRotationQuarterTurns_; }
    bool isImageFlipped() const { return isImageFlipped_; }

    double horizontalFeather() const { return horizontalFeather_; }
    double verticalFeather() const { return verticalFeather_; }
    void setFeathers(double horizontal, double vertical);
    void updateFeatherMask();
    FeatherMaskLoader::Request maskRequest() const;
    const ImagePtr& featherMask() const { return maskLoader_.mask(); }

    // The part of the upright photo shown, in fractions of the photo (the crop window).
    QRectF contentsRect() const { return contentsRect_; }
    void applySubjectCrop();

    void showCheckmark(bool animated);
    // The canvas takes the checkmark away from a pane that loses the selection.
    void cancelCheckmarkHide();
    void fadeOutCheckmark();
    double checkmarkAlpha() const;
    void setCheckmarkAlpha(double alpha);
    bool isCheckmarkVisible() const;
    std::optional<double> checkmarkAlphaBeforeSnapshot;

    void handleTap();

    // The canvas's scale-in of the whole pane when it is built (1 when settled).
    void setAppearScale(double scale);

    // Work in flight: a mask being built or a subject being looked for.
    bool hasPendingWork() const;
    // For flattening: a mask built now if the asynchronous one has not arrived.
    void ensureFeatherMask();

    // Crop window of a pane of `paneSize` on a picture of `imageSize` centred on `subject` (normalised,
    // origin bottom left), kept inside the picture; the whole picture without a subject.
    static QRectF subjectContentsRect(const std::optional<QRectF>& subject, const QSizeF& paneSize,
                                      const QSizeF& imageSize);
    // How far the translation may go: at least 32 points of the pane stay inside `canvas`.
    struct TranslationLimits {
        double minX, maxX, minY, maxY;
    };
    static TranslationLimits translationLimits(const QRectF& canvas, const QRectF& frame, double scale);
    static double rubberBand(double value, double min, double max, double dimension);

    // The first entrance of a run waits for the editor's own transition to end.
    static bool hasPlayedEntrance;

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    void stopSpringBack();
    void fadeCheckmark(double to, double duration, bool hideAtZero);
    void layoutSubviews();
    void startSubjectDetection();
    void playEntrance();
    void animateImageTransform();
    void invalidateLayer();
    const QImage& sourceFor(double pixelsPerPoint);

    QRectF frame_;
    bool selected_ = false;
    ImagePtr currentImage_;
    QImage upright_;
    QImage reducedSource_;
    double reducedFactor_ = 1.0;
    std::optional<QRectF> subjectBoundingBox_;
    QRectF contentsRect_{0, 0, 1, 1};

    double scale_ = 1.0;
    QPointF translation_;
    // Where the pane is drawn while it springs back; the translation otherwise.
    std::optional<QPointF> drawnTranslation_;
    QPointer<QVariantAnimation> springBack_;
    double appearScale_ = 1.0;
    int imageRotationQuarterTurns_ = 0;
    bool isImageFlipped_ = false;
    // Picture transform as drawn, animated towards the quarter turns and flip.
    double drawnAngle_ = 0.0;
    double drawnFlip_ = 1.0;
    // Container transform of the entrance.
    double containerOffsetY_ = 0.0;
    double containerScale_ = 1.0;

    double horizontalFeather_ = 25.0;
    double verticalFeather_ = 25.0;
    FeatherMaskLoader maskLoader_;
    int detectionGeneration_ = 0;
    bool detectionPending_ = false;

    bool needsEntranceAnimation_ = false;
    std::optional<WorkItem> detectionWorkItem_;
    std::optional<WorkItem> entranceAnimationWorkItem_;
    std::optional<WorkItem> checkmarkHideWorkItem_;
    CheckmarkItem* checkmarkView_ = nullptr;
    // One fade at a time: a fade-in must stop a fade-out that is still running, or the later one to
    // finish decides.
    QPointer<QVariantAnimation> checkmarkFade_;

    struct LayerKey {
        const Image* image = nullptr;
        const Image* mask = nullptr;
        QRectF contents;
        QSizeF size;
        double angle = 0.0;
        double flip = 1.0;
        double pixelScale = 0.0;
        bool operator==(const LayerKey&) const = default;
    };
    LayerKey layerKey_;
    QImage layer_;
};
