#pragma once

#include <QObject>
#include <QString>

// Everything the join wizard window shows, as values. The join run writes
// them; the window only mirrors them into its controls (named as in the
// comments) and forwards its clicks to the run. Each setter emits changed()
// when the value really changed.
class JoinWizardState : public QObject {
    Q_OBJECT
public:
    explicit JoinWizardState(QObject* parent = nullptr) : QObject(parent) {}

    // The window's caption: "Join Wizard", "Join Wizard (NN%)" while a file
    // grows, "Join Wizard (Cancelling...)" during the cancel wait.
    const QString& windowCaption() const { return windowCaption_; }
    void setWindowCaption(const QString& v) { set(windowCaption_, v); }

    // HeaderText (bold) and HeaderSubText.
    const QString& headerText() const { return headerText_; }
    void setHeaderText(const QString& v) { set(headerText_, v); }
    const QString& headerSubText() const { return headerSubText_; }
    void setHeaderSubText(const QString& v) { set(headerSubText_, v); }

    // Inside Frame1: the label ElapsedTime ("Elapsed time:", then "Time
    // taken:") and its value ElapsedTimeLabel ("hh:mm:ss").
    const QString& elapsedTimeCaption() const { return elapsedTimeCaption_; }
    void setElapsedTimeCaption(const QString& v) { set(elapsedTimeCaption_, v); }
    const QString& elapsedTimeText() const { return elapsedTimeText_; }
    void setElapsedTimeText(const QString& v) { set(elapsedTimeText_, v); }

    // Inside Frame1: the label WrittenSize and its value WrittenSizeLabel
    // ("0 KB", "1,234 KB", "[Cancelled]").
    const QString& writtenSizeCaption() const { return writtenSizeCaption_; }
    void setWrittenSizeCaption(const QString& v) { set(writtenSizeCaption_, v); }
    const QString& writtenSizeText() const { return writtenSizeText_; }
    void setWrittenSizeText(const QString& v) { set(writtenSizeText_, v); }

    // lblOperation: "Initializing...", "Operation 1 of 2", "Operation 2 of 2",
    // "Finished!", "Cancelled!". Its tag holds the JoinOperation, "1" or "2".
    const QString& operationText() const { return operationText_; }
    void setOperationText(const QString& v) { set(operationText_, v); }
    const QString& operationTag() const { return operationTag_; }
    void setOperationTag(const QString& v) { set(operationTag_, v); }

    // ProgressBar: value and maximum as the run counts them (bytes of the
    // watched file against the list's bytes, or seconds done against the
    // list's seconds). Both can exceed the range of an int bar; a window
    // shows progressFraction() on a bar of its own range.
    float progressValue() const { return progressValue_; }
    void setProgressValue(float v) { set(progressValue_, v); }
    float progressMax() const { return progressMax_; }
    void setProgressMax(float v) { set(progressMax_, v); }
    // value / maximum, within 0..1 (0 while the maximum is not positive).
    double progressFraction() const;

    // CancelButton: "&Cancel" while the join runs, "&Close" after its end.
    const QString& cancelButtonCaption() const { return cancelButtonCaption_; }
    void setCancelButtonCaption(const QString& v) { set(cancelButtonCaption_, v); }
    bool cancelButtonEnabled() const { return cancelButtonEnabled_; }
    void setCancelButtonEnabled(bool v) { set(cancelButtonEnabled_, v); }

    // OptionsButton ("&Options", disabled until a join has finished) and the
    // entries of its pop-up menu OptionsMenu, in this order: OptionsLaunchFile
    // "&Launch File", OptionsOpenFolder "&Open Folder", a separator
    // (OptionsSeperator1), OptionsSetID3Tag "&Set ID3 Tag".
    const QString& optionsButtonCaption() const { return optionsButtonCaption_; }
    bool optionsButtonEnabled() const { return optionsButtonEnabled_; }
    void setOptionsButtonEnabled(bool v) { set(optionsButtonEnabled_, v); }
    const QString& launchFileCaption() const { return launchFileCaption_; }
    const QString& openFolderCaption() const { return openFolderCaption_; }
    const QString& setID3TagCaption() const { return setID3TagCaption_; }
    bool launchFileEnabled() const { return launchFileEnabled_; }
    bool openFolderEnabled() const { return openFolderEnabled_; }
    bool setID3TagEnabled() const { return setID3TagEnabled_; }

    // The two timers of the window: Timer (10 ms, the run) and ElapsedTimer
    // (1 s, the clock). The run switches them; a window shows nothing of them.
    bool timerEnabled() const { return timerEnabled_; }
    void setTimerEnabled(bool v) { set(timerEnabled_, v); }
    bool elapsedTimerEnabled() const { return elapsedTimerEnabled_; }
    void setElapsedTimerEnabled(bool v) { set(elapsedTimerEnabled_, v); }

    // The window's inner size in twips and the font family of its controls.
    static constexpr int kInnerWidthTwips = 4680;
    static constexpr int kInnerHeightTwips = 2880;
    static inline const QString kFontFamily = QStringLiteral("Verdana");

    // Requests to the window.
    void requestClose() { emit closeRequested(); }
    void requestFocusOnFord() { emit focusOnFordRequested(); }
    void requestTagEditor(const QString& outputFile) { emit tagEditorRequested(outputFile); }

signals:
    void changed();
    // Unload the window (the join is over).
    void closeRequested();
    // Give the focus to Ford, the button outside the visible area.
    void focusOnFordRequested();
    // "&Set ID3 Tag": show the tag editor modally over the wizard, with
    // txtFilename set to this path.
    void tagEditorRequested(const QString& outputFile);

private:
    template <typename T>
    void set(T& field, const T& value) {
        if (field == value) {
            return;
        }
        field = value;
        emit changed();
    }

    QString windowCaption_ = QStringLiteral("Join Wizard");
    QString headerText_ = QStringLiteral("Join Wizard");
    QString headerSubText_ = QStringLiteral("Your files are being joined...");
    QString elapsedTimeCaption_ = QStringLiteral("Elapsed time:");
    QString elapsedTimeText_ = QStringLiteral("00:00:00");
    QString writtenSizeCaption_ = QStringLiteral("Total written size:");
    QString writtenSizeText_ = QStringLiteral("0 KB");
    QString operationText_ = QStringLiteral("Initializing...");
    QString operationTag_;
    float progressValue_ = 0.0F;
    float progressMax_ = 100.0F;
    QString cancelButtonCaption_ = QStringLiteral("&Cancel");
    bool cancelButtonEnabled_ = true;
    QString optionsButtonCaption_ = QStringLiteral("&Options");
    bool optionsButtonEnabled_ = false;
    QString launchFileCaption_ = QStringLiteral("&Launch File");
    QString openFolderCaption_ = QStringLiteral("&Open Folder");
    QString setID3TagCaption_ = QStringLiteral("&Set ID3 Tag");
    bool launchFileEnabled_ = true;
    bool openFolderEnabled_ = true;
    bool setID3TagEnabled_ = true;
    bool timerEnabled_ = false;
    bool elapsedTimerEnabled_ = false;
};
