#pragma once

#include <QDialog>
#include <memory>

class ID3Reader;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
struct MainModel;

// The ID3 Tag Editor: the ID3v1 tag of one MP3 file, and what its first MPEG
// frame tells. The opener writes the file's path into txtFilename and shows
// the window; each time it is shown the file is analysed anew. It refuses to
// work on an MPEG list. However it closes, the selected row of the list is
// filled again from its file.
class ID3Tag : public QDialog {
    Q_OBJECT
public:
    explicit ID3Tag(MainModel& model, QWidget* parent = nullptr);
    ~ID3Tag() override;

    // The path in txtFilename.
    void setFileName(const QString& path);
    QString fileName() const;

    // The analysis that runs whenever the window is shown: the tag fields,
    // the genre and the frame facts. False (after the message) on an MPEG
    // list, where the window then closes.
    bool Activate();

    // The three buttons.
    void Save();
    void RemoveTag();
    void Cancel();

    // Every way out ends here: the selected row is filled again.
    void done(int result) override;

    // The ViewID3Tag command: the editor for the selected row's file, shown
    // modally; without a selection (an empty path) it closes unseen.
    static void ViewID3Tag(MainModel& model, QWidget* parent);
    // The editor for any file, shown modally (the Join Wizard's Set ID3 Tag).
    static void ShowFor(MainModel& model, const QString& path, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;

private:
    ID3Reader& reader();

    MainModel& model_;
    std::unique_ptr<ID3Reader> reader_;
    QLineEdit* txtFilename_ = nullptr;
    QLineEdit* txtTitle_ = nullptr;
    QLineEdit* txtArtist_ = nullptr;
    QLineEdit* txtAlbum_ = nullptr;
    QLineEdit* txtYear_ = nullptr;
    QComboBox* cboGenre_ = nullptr;
    QLineEdit* txtComment_ = nullptr;
    QGroupBox* frame1_ = nullptr;
    QLabel* lblInfo_ = nullptr;
    QPushButton* cmdSave_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
    QPushButton* cmdRemove_ = nullptr;
    bool closing_ = false;
};
