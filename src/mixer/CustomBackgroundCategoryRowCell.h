#pragma once

#include <QScrollArea>
#include <functional>
#include <optional>

class CustomBackgroundThumbnailCell;

// One category of stock pictures as a row that scrolls sideways: 88-point thumbnails, 10 apart, 16 from
// the sides. A tap reports the item's index.
class CustomBackgroundCategoryRowCell : public QScrollArea {
    Q_OBJECT
public:
    explicit CustomBackgroundCategoryRowCell(QWidget* parent = nullptr);
    static constexpr int rowHeight = 112;

    std::function<void(int item)> onSelectItem;

    void configure(const QString& assetPrefix, int itemCount, std::optional<int> selectedItem);
    QString assetPrefix() const { return assetPrefix_; }
    int itemCount() const { return itemCount_; }
    std::optional<int> selectedItem() const { return selectedItem_; }
    const QList<CustomBackgroundThumbnailCell*>& cells() const { return cells_; }

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    QString assetPrefix_;
    int itemCount_ = 0;
    std::optional<int> selectedItem_;
    QList<CustomBackgroundThumbnailCell*> cells_;
};
