#pragma once

#include <QPushButton>

// One source of a background ("Import", "Color", "Gradient"): its symbol above its title, white on a
// dark rounded tile.
class CustomBackgroundActionButton : public QPushButton {
    Q_OBJECT
public:
    CustomBackgroundActionButton(const QString& title, const QString& symbolName, QWidget* parent = nullptr);

    QString title() const { return title_; }
    QString symbolName() const { return symbolName_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
    QString symbolName_;
};
