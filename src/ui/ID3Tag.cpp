#include "ui/ID3Tag.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "list/Columns.h"
#include "list/FillListItem.h"
#include "list/MainModel.h"
#include "media/GenreComboTarget.h"
#include "media/ID3Reader.h"
#include "ui/ProgramLook.h"
#include "ui/Twips.h"

namespace {
constexpr int kInnerWidth = 5400;
constexpr int kInnerHeight = 6165;
constexpr int kFieldLeft = 1200;
}  // namespace

ID3Tag::ID3Tag(MainModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName(QStringLiteral("ID3Tag"));
    ProgramLook::apply(this);
    setWindowTitle(QStringLiteral("ID3 Tag Editor"));
    setModal(true);
    setFixedSize(Twips::rect(0, 0, kInnerWidth, kInnerHeight).size());

    txtFilename_ = new QLineEdit(this);
    txtFilename_->setObjectName(QStringLiteral("txtFilename"));
    txtFilename_->setReadOnly(true);
    txtFilename_->setGeometry(Twips::rect(120, 120, 5160, 315));

    // The labels of the fields: the control array lblFields, 0 to 5.
    const QStringList labels = {QStringLiteral("Title"), QStringLiteral("Artist"),
                                QStringLiteral("Album"), QStringLiteral("Year"),
                                QStringLiteral("Genre"), QStringLiteral("Comment")};
    for (int i = 0; i < labels.size(); ++i) {
        auto* label = new QLabel(labels[i], this);
        label->setObjectName(QStringLiteral("lblFields"));
        label->setProperty("index", i);
        label->setGeometry(Twips::rect(120, 600 + i * 390, 1000, 315));
    }

    auto field = [this](const char* name, int row, int width, int limit) {
        auto* edit = new QLineEdit(this);
        edit->setObjectName(QString::fromLatin1(name));
        edit->setMaxLength(limit);
        edit->setGeometry(Twips::rect(kFieldLeft, 600 + row * 390, width, 315));
        return edit;
    };
    txtTitle_ = field("txtTitle", 0, 4080, 30);
    txtArtist_ = field("txtArtist", 1, 4080, 30);
    txtAlbum_ = field("txtAlbum", 2, 4080, 30);
    txtYear_ = field("txtYear", 3, 735, 4);

    cboGenre_ = new QComboBox(this);
    cboGenre_->setObjectName(QStringLiteral("cboGenre"));
    cboGenre_->setEditable(false);
    cboGenre_->setMaxVisibleItems(16);
    cboGenre_->setGeometry(Twips::rect(kFieldLeft, 600 + 4 * 390, 2520, 315));

    txtComment_ = field("txtComment", 5, 4080, 30);

    frame1_ = new QGroupBox(QStringLiteral("MPEG Info"), this);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    frame1_->setGeometry(Twips::rect(120, 2985, 5160, 2565));
    lblInfo_ = new QLabel(frame1_);
    lblInfo_->setObjectName(QStringLiteral("lblInfo"));
    lblInfo_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    lblInfo_->setGeometry(Twips::rect(120, 300, 4920, 2160));

    cmdRemove_ = new QPushButton(QStringLiteral("&Remove Tag"), this);
    cmdRemove_->setObjectName(QStringLiteral("cmdRemove"));
    cmdRemove_->setAutoDefault(false);
    cmdRemove_->setGeometry(Twips::rect(120, 5670, 1335, 375));
    connect(cmdRemove_, &QPushButton::clicked, this, &ID3Tag::RemoveTag);

    cmdSave_ = new QPushButton(QStringLiteral("&Save"), this);
    cmdSave_->setObjectName(QStringLiteral("cmdSave"));
    cmdSave_->setDefault(true);  // the Enter key saves
    cmdSave_->setGeometry(Twips::rect(3180, 5670, 975, 375));
    connect(cmdSave_, &QPushButton::clicked, this, &ID3Tag::Save);

    cmdCancel_ = new QPushButton(QStringLiteral("&Cancel"), this);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel_->setAutoDefault(false);
    cmdCancel_->setGeometry(Twips::rect(4305, 5670, 975, 375));
    connect(cmdCancel_, &QPushButton::clicked, this, &ID3Tag::Cancel);

    setTabOrder(txtFilename_, txtTitle_);
    setTabOrder(txtTitle_, txtArtist_);
    setTabOrder(txtArtist_, txtAlbum_);
    setTabOrder(txtAlbum_, txtYear_);
    setTabOrder(txtYear_, cboGenre_);
    setTabOrder(cboGenre_, txtComment_);
    setTabOrder(txtComment_, cmdSave_);
    setTabOrder(cmdSave_, cmdCancel_);
    setTabOrder(cmdCancel_, cmdRemove_);
}

ID3Tag::~ID3Tag() = default;

ID3Reader& ID3Tag::reader() {
    if (!reader_) {
        reader_ = std::make_unique<ID3Reader>();
    }
    return *reader_;
}

void ID3Tag::setFileName(const QString& path) {
    txtFilename_->setText(path);
}

QString ID3Tag::fileName() const {
    return txtFilename_->text();
}

void ID3Tag::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!Activate()) {
        // Closed from the event loop, so that a modal run ends as well.
        QMetaObject::invokeMethod(this, &QDialog::reject, Qt::QueuedConnection);
    }
}

bool ID3Tag::Activate() {
    if (model_.state.type() == ListType::Mpeg) {
        model_.questions.msgBox(QStringLiteral("Cannot set an ID3 Tag on MPEG Files."),
                                Msg::OkOnly + Msg::Exclamation);
        return false;
    }
    ID3Reader& tag = reader();
    tag.setFileName(txtFilename_->text());
    GenreComboAdapter<QComboBox> genres(*cboGenre_);
    if (tag.HasTag()) {
        // A genre outside the table selects the first entry.
        std::int16_t genre = static_cast<std::int16_t>(tag.Genre());
        ID3Reader::FillComboGenre(genres, genre);
        txtAlbum_->setText(tag.Album());
        txtArtist_->setText(tag.Artist());
        txtComment_->setText(tag.Comments());
        txtTitle_->setText(tag.Title());
        txtYear_->setText(tag.Year());
    } else {
        std::int16_t genre = 0;
        ID3Reader::FillComboGenre(genres, genre);
    }
    lblInfo_->setText(tag.InfoString());
    return true;
}

void ID3Tag::Save() {
    ID3Reader& tag = reader();
    tag.setAlbum(txtAlbum_->text());
    tag.setArtist(txtArtist_->text());
    tag.setComments(txtComment_->text());
    tag.setTitle(txtTitle_->text());
    tag.setYear(txtYear_->text());
    tag.setGenre(cboGenre_->currentIndex());
    // A failed write shows nothing; the window closes as usual.
    tag.WriteTag();
    accept();
}

void ID3Tag::RemoveTag() {
    reader().ClearTag();
    accept();
}

void ID3Tag::Cancel() {
    reject();
}

void ID3Tag::done(int result) {
    if (closing_) {
        return;
    }
    closing_ = true;
    QDialog::done(result);
    // Without a selected row there is nothing to fill again.
    const int selected = model_.state.selectedIndex();
    if (selected > 0 && selected <= model_.items.count()) {
        FillListItem(model_, selected);
    }
    closing_ = false;
}

void ID3Tag::ViewID3Tag(MainModel& model, QWidget* parent) {
    ID3Tag window(model, parent);
    const int selected = model.state.selectedIndex();
    window.setFileName(selected > 0 ? model.items.cell(selected, SharedCell::Filepath) : QString());
    if (window.fileName().isEmpty()) {
        window.done(QDialog::Rejected);
        return;
    }
    window.exec();
}

void ID3Tag::ShowFor(MainModel& model, const QString& path, QWidget* parent) {
    ID3Tag window(model, parent);
    window.setFileName(path);
    window.exec();
}
