#pragma once

#include "platform/ViewController.h"
#include "platform/WeakDelegate.h"

#include <QImage>
#include <optional>

class QPushButton;
class QTextEdit;

// The editor's side of text entry. In both cases the editor dismisses the entry screen itself.
class NewTextPassed {
public:
    virtual ~NewTextPassed() = default;
    // A new caption.
    virtual void newTextAdded(const QString& text) = 0;
    // The caption with the editor's current tag, rewritten.
    virtual void textEdited(const QString& text) = 0;
};

// A full-screen text entry over a blurred copy of what it covers: the user writes a new caption or
// rewrites one. Cancel leaves everything as it was; Done with an empty field does nothing; any other
// text, spaces alone included, goes to `newtextDelegate`.
class TextEditViewController : public ViewController {
    Q_OBJECT
public:
    static constexpr int cancelTag = 800;
    static constexpr int doneTag = 801;

    explicit TextEditViewController(QWidget* parent = nullptr);

    QTextEdit* initialTextView = nullptr; // spare
    std::optional<QString> copyStringtag; // spare
    // Put in the field when the screen loads.
    QString textedited;
    // False: a new text; true: an edit of the label the editor has selected.
    bool isdoubleTap = false;
    std::optional<int> currentTag; // spare
    WeakDelegate<NewTextPassed> newtextDelegate;

    // Where the field shows what is behind the screen blurred; when false the page is plain black.
    static void setReduceTransparency(bool reduce);
    static bool isReduceTransparencyEnabled();

    // Builds the entry field (once) and puts `text` in it.
    void setInitialText(const QString& text);
    // Both top buttons' action, told apart by their tag.
    void cancel_DoneAction(QPushButton* sender);

    QTextEdit* inputTextView();
    QPushButton* cancelButton() const { return cancelButton_; }
    QPushButton* doneButton() const { return doneButton_; }
    // The blurred picture of what the screen covers; null when transparency is reduced.
    const QImage& blurredBackground() const { return background_; }

protected:
    void viewDidLoad() override;
    void viewDidAppear(bool animated) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void captureBackground();
    void layoutViews();

    QTextEdit* inputTextView_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* doneButton_ = nullptr;
    QImage background_;
};
