#pragma once

#include "platform/Image.h"
#include "platform/WeakDelegate.h"

#include <QAbstractButton>
#include <QWidget>

class QLabel;
class QPushButton;
class QScrollArea;

// A sticker tile: the picture on a dark rounded square. The picture is looked up by name the first time
// the tile is drawn, so only tiles that come into view load theirs.
class StickerTileCell : public QAbstractButton {
    Q_OBJECT
public:
    explicit StickerTileCell(QWidget* parent = nullptr);
    void setStickerName(const QString& name);
    const QString& stickerName() const { return name_; }
    // The picture once the tile has been drawn (or asked for); null while it has not been, or is missing.
    const ImagePtr& loadedImage() const { return image_; }
    bool hasLoaded() const { return loaded_; }
    ImagePtr stickerImage();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    ImagePtr image_;
    bool loaded_ = false;
};

// A tile in a category's row.
class StickerCollectionCell : public StickerTileCell {
    Q_OBJECT
public:
    using StickerTileCell::StickerTileCell;
};

// A tile in the grid of one whole category.
class SeeAllCollectionVIew : public StickerTileCell {
    Q_OBJECT
public:
    using StickerTileCell::StickerTileCell;
};

// What a category row's owner hears when a sticker is chosen in it.
class StickerTablehandler {
public:
    virtual ~StickerTablehandler() = default;
    virtual void stickerTableCellDidPick(ImagePtr image) = 0;
};

// One category: its name, "See All", and a strip of two rows of stickers that scrolls sideways.
// The strip's tag is the category it shows, so a row given another section shows that one's pictures.
class StickerTableCell : public QWidget {
    Q_OBJECT
public:
    static constexpr int rowHeight = 265;

    explicit StickerTableCell(QWidget* parent = nullptr);

    // Shows category `section` of the catalogue, reusing the tiles it has.
    void configure(int section);

    WeakDelegate<StickerTablehandler> delegate;

    QPushButton* seeAllBtn() const { return seeAllBtn_; }
    QLabel* categoryNameLbl() const { return categoryNameLbl_; }
    QScrollArea* stickerCollectionVIew() const { return stickerCollectionVIew_; }
    int collectionTag() const;
    QList<StickerCollectionCell*> visibleCells() const;
    // The tile's side: half the strip's height less 10, so two rows fill it.
    int itemSide() const;

signals:
    void seeAllRequested(int tag);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void layoutTiles();
    void pick(StickerCollectionCell* cell);

    QLabel* categoryNameLbl_ = nullptr;
    QPushButton* seeAllBtn_ = nullptr;
    QScrollArea* stickerCollectionVIew_ = nullptr;
    QWidget* strip_ = nullptr;
    QList<StickerCollectionCell*> cells_;
    int shown_ = 0;
};
