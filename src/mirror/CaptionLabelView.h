#pragma once

#include <QColor>
#include <QFont>
#include <QGraphicsWidget>
#include <QString>

// A caption carried by an overlay, as a label with any number of lines: word-wrapped in its frame and,
// where the text does not fit, drawn smaller until it does (the font itself keeps its size). Its alpha
// is its own, so the overlay's handles stay solid.
class CaptionLabelView : public QGraphicsWidget {
    Q_OBJECT
public:
    CaptionLabelView(int tag, QGraphicsItem* parent = nullptr);

    int tag() const { return tag_; }

    QString text() const { return text_; }
    void setText(const QString& text);
    QFont font() const { return font_; }
    void setFont(const QFont& font);
    QString fontName() const { return fontName_; }
    // The font by the name the font list uses; the name is kept for later size changes.
    void setFont(const QString& name, double size);
    QColor textColor() const { return textColor_; }
    void setTextColor(const QColor& color);
    Qt::Alignment textAlignment() const { return alignment_; }
    void setTextAlignment(Qt::Alignment alignment);
    double alpha() const { return opacity(); }
    void setAlpha(double alpha) { setOpacity(alpha); }

    // The point size the text is drawn at in the present frame: the font's, or less where it must shrink.
    double fittedPointSize() const;

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

private:
    int tag_;
    QString text_;
    QFont font_;
    QString fontName_;
    QColor textColor_ = Qt::white;
    Qt::Alignment alignment_ = Qt::AlignHCenter;
};
