#include "overlay/TextEditViewController.h"

#include "overlay/FontList.h"
#include "platform/ImageFilters.h"
#include "platform/Log.h"

#include <QPainter>
#include <QPushButton>
#include <QTextEdit>

namespace {

bool reduceTransparency = false;
constexpr int barHeight = 50;
constexpr int sideMargin = 10;
// A dark blur: the picture behind, blurred at a quarter of its size and dimmed.
constexpr double blurSigma = 6.0;
constexpr int dimAlpha = 140;

QPushButton* makeTopButton(const QString& title, int tag, bool bold, QWidget* parent) {
    auto* button = new QPushButton(title, parent);
    button->setProperty("tag", tag);
    button->setFlat(true);
    button->setCursor(Qt::PointingHandCursor);
    button->setFocusPolicy(Qt::NoFocus);
    button->setStyleSheet(QStringLiteral("QPushButton { color: white; border: none; background: transparent; "
                                         "font-size: 17px; font-weight: %1; }")
                              .arg(bold ? 700 : 400));
    return button;
}

} // namespace

TextEditViewController::TextEditViewController(QWidget* parent) : ViewController(parent) {
    setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
}

void TextEditViewController::setReduceTransparency(bool reduce) {
    reduceTransparency = reduce;
}

bool TextEditViewController::isReduceTransparencyEnabled() {
    return reduceTransparency;
}

QTextEdit* TextEditViewController::inputTextView() {
    if (!inputTextView_) {
        inputTextView_ = new QTextEdit(this);
        inputTextView_->setAcceptRichText(false);
        inputTextView_->setFrameShape(QFrame::NoFrame);
        inputTextView_->setFont(FontList::font(QStringLiteral("Helvetica Neue"), 24));
        inputTextView_->setAlignment(Qt::AlignCenter);
        inputTextView_->setStyleSheet(
            QStringLiteral("QTextEdit { color: white; background: transparent; selection-background-color: "
                           "rgba(255, 255, 255, 80); }"));
        inputTextView_->viewport()->setAutoFillBackground(false);
        // No spelling help: captions are often not words.
        inputTextView_->setInputMethodHints(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
        layoutViews();
    }
    return inputTextView_;
}

void TextEditViewController::setInitialText(const QString& text) {
    QTextEdit* field = inputTextView();
    field->setPlainText(text);
    // Every paragraph centred, the new ones too.
    QTextCursor cursor = field->textCursor();
    cursor.select(QTextCursor::Document);
    QTextBlockFormat format;
    format.setAlignment(Qt::AlignCenter);
    cursor.mergeBlockFormat(format);
    cursor.movePosition(QTextCursor::End);
    field->setTextCursor(cursor);
}

void TextEditViewController::viewDidLoad() {
    cancelButton_ = makeTopButton(tr("Cancel"), cancelTag, false, this);
    doneButton_ = makeTopButton(tr("Done"), doneTag, true, this);
    for (QPushButton* button : {cancelButton_, doneButton_})
        connect(button, &QPushButton::clicked, this, [this, button] { cancel_DoneAction(button); });
    setInitialText(textedited);
    layoutViews();
    // Loaded after it is placed over the screen it covers and before it shows: the picture below is
    // still free of it.
    captureBackground();
}

void TextEditViewController::viewDidAppear(bool) {
    // The keyboard comes up at once.
    inputTextView()->setFocus(Qt::OtherFocusReason);
}

void TextEditViewController::captureBackground() {
    background_ = QImage();
    if (reduceTransparency)
        return;
    QWidget* host = parentWidget();
    if (!host || !presentingViewController() || size().isEmpty())
        return;
    // What lies under this screen, as the user sees it, taken once: the screen covers it while it is up.
    const QImage shot = host->grab(geometry()).toImage();
    if (shot.isNull())
        return;
    const QImage small = shot.scaled(shot.size() / 4, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    background_ = ImageFilters::gaussianBlur(small.convertToFormat(QImage::Format_RGB32), blurSigma)
                      .scaled(size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    update();
}

void TextEditViewController::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (reduceTransparency || background_.isNull()) {
        painter.fillRect(rect(), reduceTransparency ? QColor(Qt::black) : QColor(28, 28, 30, 235));
        return;
    }
    painter.drawImage(rect(), background_);
    painter.fillRect(rect(), QColor(0, 0, 0, dimAlpha));
}

void TextEditViewController::resizeEvent(QResizeEvent*) {
    layoutViews();
}

void TextEditViewController::layoutViews() {
    if (cancelButton_) {
        cancelButton_->setGeometry(sideMargin, 0, 90, barHeight);
        doneButton_->setGeometry(width() - sideMargin - 90, 0, 90, barHeight);
    }
    if (inputTextView_)
        inputTextView_->setGeometry(sideMargin, barHeight, std::max(0, width() - 2 * sideMargin),
                                    static_cast<int>(height() * 0.4));
}

void TextEditViewController::cancel_DoneAction(QPushButton* sender) {
    const int tag = sender ? sender->property("tag").toInt() : 0;
    if (tag == cancelTag) {
        dismiss(true);
        return;
    }
    if (tag != doneTag)
        return;
    const QString text = inputTextView()->toPlainText();
    if (text.isEmpty())
        return; // the screen stays, without a word
    inputTextView()->clearFocus();
    NewTextPassed* receiver = newtextDelegate.get();
    if (!receiver)
        fatalError("TextEditViewController has no delegate to take the text");
    if (isdoubleTap)
        receiver->textEdited(text);
    else
        receiver->newTextAdded(text);
}
