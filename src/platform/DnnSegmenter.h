#pragma once

#include "platform/ForegroundSegmenter.h"

#include <QSize>
#include <memory>

// A salient-object or portrait matting model (a U²-Net, ISNet or MODNet export in ONNX) run through
// OpenCV's dnn module. The picture goes in as RGB scaled to the model's square input, normalised with
// the ImageNet mean and spread; the first output's first channel, stretched to 0…255 between its lowest
// and highest value, is the mask, at the model's size (the cut-out stretches it to the picture).
//
// The input side is read from the file name when it ends in "_<side>.onnx" (u2net_320.onnx), and is 320
// otherwise. The network is not safe to run on two threads at once, so runs take turns on a lock.
class DnnSegmenter : public ForegroundSegmenter {
public:
    // Null, with the reason in `error`, when the file is not a model OpenCV can run.
    static std::shared_ptr<DnnSegmenter> load(const QString& path, QString* error = nullptr);
    ~DnnSegmenter() override;

    std::optional<QImage> foregroundMask(const QImage& upright) const override;
    QString name() const override;
    int inputSide() const;

private:
    struct Model;
    explicit DnnSegmenter(std::unique_ptr<Model> model);
    std::unique_ptr<Model> model_;
};
