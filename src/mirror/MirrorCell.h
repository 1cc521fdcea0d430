#pragma once

#include "platform/Image.h"

#include <QAbstractButton>

// A cell of the overlay pattern strip, 78 × 78: the pattern's preview with a yellow border when chosen.
class MirrorCell : public QAbstractButton {
    Q_OBJECT
public:
    static constexpr int side = 78;

    MirrorCell(int index, QWidget* parent = nullptr);
    int index() const { return index_; }
    const ImagePtr& preview() const { return preview_; }
    void setChosen(bool chosen);
    bool isChosen() const { return chosen_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int index_;
    ImagePtr preview_;
    QImage upright_;
    bool chosen_ = false;
};
